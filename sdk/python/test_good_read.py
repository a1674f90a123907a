"""A good read, as an operator notices it: the device vibrates, plays two tones and flashes its LED."""
from typing import List, Tuple

import palsim
import pytest

PAL = r"HKLM\SOFTWARE\Dravonel\PAL"
TETHERED = "PAL_SCAN_TYPE_TETHERED"


def lines(device: palsim.Device, effect: str) -> List[Tuple[int, str]]:
    return [(line.time_ms, line.text) for line in device.journal(effect)]


def test_good_read_vibrates_beeps_and_flashes(device: palsim.Device) -> None:
    device.set(PAL + r"\TethGRI", 5)  # a vibration, then two tones
    device.set(PAL + r"\TethGrLedOnDur", 250)
    device.set("gain", 60)  # another program has turned it down

    scanner = device.start("scanner")
    flash = scanner.begin("PALLEDGrLedToggle", TETHERED)  # returns when the flash is over
    assert scanner.call("PALBEEPGoodReadEx", TETHERED).result == "S_OK"
    assert flash.wait().result == "S_OK"

    device.expect("vibration preset 3 for 250 ms at 0 ms")
    device.expect("audio gain 85")  # the beep has the gain of its own level
    device.expect("audio sound begins *goodread.wav 90 ms at 0 ms")
    device.expect("audio sound begins *goodread.wav 90 ms at 140 ms")
    device.expect("2 times audio sound begins *")
    assert device.get("gain") == 60  # as it was
    assert lines(device, "led") == [(0, "LED 3 on"), (250, "LED 3 off")]


@pytest.mark.parametrize("indicator, vibrations, tones", [
    ("PAL_GRI_NONE", 0, 0),
    ("PAL_GRI_TWO_TONES", 0, 2),
    ("PAL_GRI_VIBRATION_ONE_TONE", 1, 1),
])
def test_good_read_does_what_is_set(device: palsim.Device, indicator: str, vibrations: int, tones: int) -> None:
    settings = device.start("settings")
    assert settings.call("PALBEEPSetGRI", TETHERED, indicator).result == "S_OK"
    assert settings.call("PALBEEPGetGRI", TETHERED).names["value"] == indicator
    assert settings.call("PALBEEPGoodReadEx", TETHERED).result == "S_OK"
    assert len(lines(device, "vibration")) == vibrations
    assert sum(text.startswith("sound begins") for _, text in lines(device, "audio")) == tones


def test_killed_scanner_does_not_keep_the_beeper(device: palsim.Device) -> None:
    device.set(PAL + r"\TethGRI", 5)
    scanner = device.start("scanner")
    read = scanner.begin("PALBEEPGoodReadEx", TETHERED)
    device.advance(20)
    scanner.kill()
    assert read.wait().cut == "killed"
    assert device.start("settings").call("PALBEEPGoodReadEx", TETHERED).result == "S_OK"
