#!/usr/bin/python3
"""Holds the DLL for the handheld to its budgets: usage: budgets.py BUILD_FOLDER [--write]

Each line of bench/budgets.txt is a budget: the size of the DLL, that of one of its sections, or what an export costs.
A number fails if it is more than 3 % above its budget. It also fails if it is more than 3 % below: else the export
could grow back to its old budget unseen. --write rewrites the file with what is measured.
"""
import pathlib
import statistics
import subprocess
import sys

import pefile

TOLERANCE = 0.03
BUDGETS = pathlib.Path(__file__).with_name("budgets.txt")
WRITE = "./test bench --write writes the new number"
HEAD = """\
# The DLL for the handheld: bytes of the file and of its sections, then the instructions that each export executes in
# the DLL's own code. An export that the tests call in several ways has its dearest call here. attach and detach are
# the DLL's entry when a process begins and ends. Written by ./test bench --write.
"""


def measure_sizes(dll):
    sections = {each.Name.rstrip(b"\0").decode(): each.Misc_VirtualSize for each in pefile.PE(dll).sections}
    return {dll.name: dll.stat().st_size, **sections}


def measure_exports(build):
    """The dearest call of each export, and the entry's."""
    command = ["qemu-arm", "-L", "/usr/arm-linux-gnueabi", "-plugin", build / "release/bin/image_instructions.so",
               build / "device-tests/bin/pal_budgets"]
    run = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if run.returncode != 0:
        sys.exit(f"budgets.py: {command[-1]} ended with {run.returncode}")
    dearest = {}
    for line in run.stdout.splitlines():
        name, count = line.split("\t")
        dearest[name] = max(dearest.get(name, 0), int(count))
    return dearest


def missing_exports(dll, measured):
    exports = {each.name.decode() for each in pefile.PE(dll).DIRECTORY_ENTRY_EXPORT.symbols}
    return [f"{name}: no row of tests/support/export_rows.cpp calls it" for name in sorted(exports - measured.keys())]


def compare(budgets, measured):
    for name in sorted(budgets.keys() | measured.keys()):
        if name not in measured:
            yield f"{name}: it has a budget and is not there any more; {WRITE}"
        elif name not in budgets:
            yield f"{name}: {measured[name]}, and it has no budget; {WRITE}"
        elif measured[name] > budgets[name] * (1 + TOLERANCE):
            yield f"{name}: {measured[name]}, which is above its budget of {budgets[name]}"
        elif measured[name] < budgets[name] * (1 - TOLERANCE):
            yield f"{name}: {measured[name]}, which is below its budget of {budgets[name]}; {WRITE}"


def read_budgets():
    try:
        rows = [line.split() for line in BUDGETS.read_text().splitlines() if not line.startswith("#")]
        return {name: int(number) for number, name in rows}
    except (OSError, ValueError) as error:
        sys.exit(f"budgets.py: {BUDGETS}: {error}")


def print_summary(exports, sizes):
    dearest = sorted(exports, key=exports.get, reverse=True)[:10]
    print(f"\nown instructions of {len(exports)} exports of the DLL for the handheld, attach and detach among them: "
          f"median {statistics.median(exports.values()):g}, dearest")
    for name in dearest:
        print(f"{exports[name]:7}  {name}")
    print("bytes: " + ", ".join(f"{name} {size}" for name, size in sizes.items()))


def main():
    build, *options = sys.argv[1:] or [""]
    if not build or options not in ([], ["--write"]):
        sys.exit(__doc__.strip())
    build = pathlib.Path(build)
    dll = build / "device/DVLORQPAL.dll"
    exports, sizes = measure_exports(build), measure_sizes(dll)
    print_summary(exports, sizes)
    faults = missing_exports(dll, exports)
    measured = sizes | dict(sorted(exports.items()))
    if not options:
        faults += compare(read_budgets(), measured)
    elif not faults:
        BUDGETS.write_text(HEAD + "".join(f"{number:7}  {name}\n" for name, number in measured.items()))
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


sys.exit(main())
