#!/usr/bin/env python3
"""Runs one test under Wine: run.py BUILD_FOLDER PROJECT_ROOT first|conformance|processes|load

Each test has a folder of its own with the files for a PC and the device rm21, and begins with no registry. Wine keeps
everything in a prefix in the build folder; the user's own prefix is never touched.
"""
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys

build, root, test = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
folder = build / "run" / test
REGISTRY = r"HKCU\Software\DVLORQPAL"
# Without a display, and without the parts of Wine that would ask for more to be installed.
WINE = {**{name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")},
        "WINEPREFIX": str(build / "prefix"), "WINEDEBUG": "-all", "WINEDLLOVERRIDES": "mscoree,mshtml="}

GUIDE = (root / "docs/windows.md").read_text()


def wine(*command):
    run = subprocess.run(["wine", *command], cwd=folder, env=WINE, capture_output=True, text=True, errors="replace",
                         timeout=90)
    return run.returncode, run.stdout


def prepare():
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name in ("DVLORQPAL.dll", "coredll.dll", "DVLEventLog.dll"):
        shutil.copy(build / name, folder)
    shutil.copytree(root / "devices" / "rm21", folder / "device")
    for program in (build / "bin").glob("*.exe"):
        shutil.copy(program, folder)
    wine("reg", "delete", REGISTRY, "/f")


def give_long_sound():
    """A sound that lasts until its player is ended."""
    samples = bytes([128]) * (8000 * 60)
    wave = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(samples), b"WAVE", b"fmt ", 16, 1, 1, 8000, 8000, 1, 8,
                       b"data", len(samples)) + samples
    (folder / "device/files/Windows/Sounds/long.wav").write_bytes(wave)
    registry = folder / "device/registry.reg"
    text = registry.read_text()
    changed = text.replace("Sounds\\\\configchange.wav", "Sounds\\\\long.wav")
    assert changed != text
    registry.write_text(changed)


def run_first():
    code, output = wine("first.exe")
    said = re.search(r"prints:\n+```\n(.*?)```", GUIDE, re.DOTALL)[1]
    if output.replace("\r", "") != said:
        sys.exit(f"{output}\ndocs/windows.md says otherwise:\n{said}")
    return code


def answers(text):
    lines = re.findall(r"^(\w[^=\n]*: [^=\n]*) = (.*?)(?: \[chosen\])?\r?$", text, re.MULTILINE)
    return dict(lines)


def run_conformance():
    """The guide declares which facts differ, and why that does not matter to the library."""
    code, _ = wine("palcheck.exe")
    report = (folder / "device/files/palcheck.txt").read_text(encoding="latin-1")
    found = answers(report)
    source = (root / "tests/simulator/conformance_test.cpp").read_text()
    simulated = answers(re.search(r'kAnswers = R"\((.*?)\)"', source, re.DOTALL)[1])
    declared = dict(re.findall(r"^\| (\w+: [^|]*) \| `([^`|]*)` \| \S", GUIDE, re.MULTILINE))
    faults = [] if "palcheck: done" in report else ["palcheck.exe did not come to its end"]
    for row in sorted(simulated.keys() | found.keys() | declared.keys()):
        expected = declared.get(row, simulated.get(row))
        if found.get(row) != expected:
            faults.append(f"{row}: Windows answers '{found.get(row)}', expected '{expected}'")
        elif declared.get(row) == simulated.get(row):
            faults.append(f"{row}: docs/windows.md declares a difference, and there is none")
    print("\n".join(f"FAILED: {fault}" for fault in faults))
    print(f"{len(found)} facts; {len(declared)} are declared to differ from the simulated device")
    return code or len(faults)


def run_processes():
    give_long_sound()
    return show("processes.exe")


def run_load():
    return show("load.exe")


def show(program):
    code, output = wine(program)
    print(output, end="")
    return code


prepare()
sys.exit(min(1, globals()[f"run_{test}"]()))
