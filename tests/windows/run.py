#!/usr/bin/env python3
"""Runs one test under Wine: run.py BUILD_FOLDER PROJECT_ROOT first|conformance|processes|load|stockroom

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
WINE = {**{name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY", "WINEARCH")},
        "WINEPREFIX": str(build / "prefix"), "WINEDEBUG": "-all", "WINEDLLOVERRIDES": "mscoree,mshtml="}

GUIDE = (root / "docs/windows.md").read_text()
FACTS = (root / "docs/platform.md").read_text()


def start(*command):
    return subprocess.Popen(["wine", *command], cwd=folder, env=WINE)


def wine(*command):
    run = subprocess.run(["wine", *command], cwd=folder, env=WINE, capture_output=True, text=True, errors="replace",
                         timeout=240)
    if run.returncode != 0:
        print(run.stderr, end="", file=sys.stderr)
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


def declared_differences():
    """What docs/platform.md says of Windows where it answers a question of palcheck.exe otherwise: its answer."""
    declared = {}
    for line in FACTS.splitlines():
        cells = [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
        questions = re.findall(r"`(\w+: [^`]*)`", cells[5]) if len(cells) == 6 else []
        if questions and cells[3] not in ("same", "mended", "simulated"):
            declared.update(dict.fromkeys(questions, cells[3].strip("`")))
    return declared


def run_conformance():
    """Where the answers differ from the simulated device's, docs/platform.md says so, and whether that matters."""
    code, _ = wine("palcheck.exe")
    compared = subprocess.run([root / "build/release/bin/palsim", "facts", "--library", "device/files/palcheck.txt"],
                              cwd=folder, capture_output=True, text=True).stdout
    differing = dict(re.findall(r"^(\w.*?)(?: \[chosen\])?\n  handheld +(.*)\n", compared, re.MULTILINE))
    declared = declared_differences()
    faults = [f"{row}: '{differing.get(row)}', and docs/platform.md says '{declared.get(row)}'"
              for row in sorted(differing.keys() | declared.keys()) if differing.get(row) != declared.get(row)]
    counts = re.findall(r"^(?:Facts|Exports) .*", compared, re.MULTILINE)
    faults += [count for count in counts if not count.endswith(" 0 not in the file, 0 unknown")]
    print("\n".join(counts + [f"FAILED: {fault}" for fault in faults]))
    return code or len(faults) or len(counts) != 2


def run_processes():
    give_long_sound()
    return show("processes.exe")


def run_load():
    return show("load.exe")


def said(name):
    """The lines of a file that the example has written; they are taken away."""
    file = folder / name
    lines = file.read_text().splitlines() if file.exists() else []
    file.unlink(missing_ok=True)
    return lines


def run_stockroom():
    """The example reads an item, then nothing, and ends when its key is left alone; without its library it says so."""
    settings = r"HKCU\Software\Stockroom"
    wine("reg", "add", settings, "/v", "IdleSeconds", "/t", "REG_DWORD", "/d", "5", "/f")
    (folder / "codes.txt").write_text("4006381333931\n\n")
    finger = start("press.exe", "2")
    results = [wine("stockroom.exe")[0], finger.wait(60), said("items.txt"), said("messages.txt")]
    results.append(re.findall(r"(PALKEYSetButtonAction(?= - Flushing)|PALBEEP\w+Read\w*(?=\(.*\) - Entry))",
                              (folder / "eventlog.txt").read_text()))
    wine("reg", "add", settings, "/v", "Key", "/t", "REG_DWORD", "/d", "4", "/f")
    results += [wine("stockroom.exe")[0], said("messages.txt")]
    (folder / "DVLORQPAL.dll").unlink()
    results += [wine("stockroom.exe")[0], said("messages.txt")]
    wine("reg", "delete", settings, "/f")
    expected = [0, 0, ["4006381333931"], [], ["PALKEYSetButtonAction", "PALBEEPGoodReadEx", "PALBEEPBadRead"],
                1, ["Key 4 cannot scan (0x83ED0007)."],
                1, ["DVLORQPAL.dll cannot be loaded (error 126). Install it in \\Windows, or beside this program."]]
    print(*results, sep="\n")
    return results != expected


def show(program):
    code, output = wine(program)
    print(output, end="")
    return code


prepare()
sys.exit(min(1, globals()[f"run_{test}"]()))
