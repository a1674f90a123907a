#!/usr/bin/env python3
"""Makes the wave files of the sample devices: usage: make_sounds.py DEVICES_FOLDER

16-bit mono, the same bytes on every host. A sound is a row of parts: a frequency in Hz (0: silence) and a
length in ms.
"""
import math
import pathlib
import struct
import sys

RATE = 11025
LOUDNESS = 0.6
RAMP_MS = 4  # at both ends of a part, so that it does not click

SOUNDS = {
    "rm21": {  # clear and short, as for a busy warehouse
        "goodread": [(2093, 90)],
        "badread": [(440, 80), (0, 30), (330, 140)],
        "configchange": [(1047, 60), (1319, 60), (1568, 90)],
        "configerror": [(1568, 60), (1319, 60), (1047, 90)],
        "keyclick": [(1800, 60)],
        "tagsearch": [(1319, 80), (0, 120)],
    },
    "rm23": {  # softer and longer
        "goodread": [(1319, 50), (1760, 70)],
        "badread": [(392, 200)],
        "configchange": [(880, 80), (1175, 120)],
        "configerror": [(587, 80), (440, 120)],
        "keyclick": [(1200, 60)],
        "tagsearch": [(988, 60), (0, 60), (988, 60), (0, 120)],
    },
    "rx": {  # low and long, to be heard beside an engine
        "goodread": [(1568, 160)],
        "badread": [(294, 280)],
        "configchange": [(784, 120), (1047, 160)],
        "configerror": [(523, 120), (392, 160)],
    },
    "greywing": {  # one chord for what went well, one for what did not
        "ok": [(1175, 40), (1480, 40), (1760, 60)],
        "fail": [(466, 110), (0, 20), (466, 110)],
    },
}


def samples(frequency, ms):
    count = RATE * ms // 1000
    ramp = RATE * RAMP_MS // 1000
    for at in range(count):
        edge = min(1.0, at / ramp, (count - 1 - at) / ramp)
        wave = math.sin(2 * math.pi * frequency * at / RATE)
        yield round(32767 * LOUDNESS * edge * wave)


def wave_file(parts):
    data = b"".join(struct.pack("<h", sample) for part in parts for sample in samples(*part))
    format_chunk = struct.pack("<4sIHHIIHH", b"fmt ", 16, 1, 1, RATE, RATE * 2, 2, 16)
    chunks = b"WAVE" + format_chunk + struct.pack("<4sI", b"data", len(data)) + data
    return struct.pack("<4sI", b"RIFF", len(chunks)) + chunks


if len(sys.argv) != 2:
    sys.exit(__doc__)
for device, sounds in SOUNDS.items():
    folder = pathlib.Path(sys.argv[1]) / device / "files" / "Windows" / "Sounds"
    folder.mkdir(parents=True, exist_ok=True)
    for name, parts in sounds.items():
        (folder / f"{name}.wav").write_bytes(wave_file(parts))
