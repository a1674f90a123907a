#!/usr/bin/env python3
"""Measures the library: usage: measure.py BUILD_DIRECTORY

Prints the own instructions of every export, those of a dozen calls beside the same calls written by hand, and
the library's size. Fails where a call takes more of them than its limit in instructions_main.cpp allows.
"""
import collections
import pathlib
import re
import shutil
import statistics
import subprocess
import sys
import tempfile

# What the C runtime does for a library is its own work, wherever the code of it lies.
RUNTIME = re.compile(r"_*(mem|str|wcs|mbs)[a-z0-9]*(_|\(|$|')")
# A trace line's way to the event log is left out: calls by hand have no lines.
LINE = re.compile(r"pal::(PALTrace|PALSysioTrace|\(anonymous namespace\)::Echo)\(")


class Counts:
    def __init__(self):
        self.all = 0  # instructions of the call, the simulated platform's included
        self.own = 0  # of the library, and of the C runtime's functions that it calls


def parse(dumps):
    """The counts of each measured call by its name, from callgrind's dumps in one file."""
    counts = collections.defaultdict(Counts)
    current, called = None, ""
    is_own = is_line = called_elsewhere = is_cost_of_call = False
    for line in dumps:
        key, _, value = line.partition("=")
        if line.startswith("desc: Trigger: Client Request: "):
            current = counts[line.rsplit(": ", 1)[1]]
        elif line.startswith("part:"):
            current = None
        elif key == "ob":
            is_own = "/DVLORQPAL" in value
        elif key == "fn":
            is_line = LINE.match(value) is not None
        elif key == "cob":
            called_elsewhere = True
        elif key == "cfn":
            called = value
        elif key == "calls":
            is_cost_of_call = True
        elif current is not None and line[:1].isdigit():
            cost = int(line.split()[1])
            if is_cost_of_call:
                if is_own and not is_line and called_elsewhere and RUNTIME.match(called):
                    current.own += cost
                if not is_line and LINE.match(called):
                    current.all -= cost
                is_cost_of_call = called_elsewhere = False
            else:
                current.all += cost
                current.own += cost if is_own and not is_line else 0
    return counts


def run_callgrind(program):
    """What the program says that it measured, as lists of words, and the counts of it."""
    if shutil.which("valgrind") is None:
        sys.exit("measure.py: valgrind is missing: apt-get install valgrind")
    with tempfile.TemporaryDirectory() as folder:
        dumps = pathlib.Path(folder) / "dumps"
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--collect-atstart=no", "--compress-strings=no",
             "--compress-pos=no", "--combine-dumps=yes", f"--callgrind-out-file={dumps}", str(program)],
            capture_output=True, text=True)
        if run.returncode != 0:
            sys.exit(run.stderr)
        with dumps.open() as lines:
            counts = parse(line.rstrip("\n") for line in lines)
    if not counts:
        sys.exit("measure.py: pal_instructions was built without valgrind/callgrind.h; with valgrind installed, "
                 "touch bench/instructions_main.cpp and build again")
    return [line.split("\t") for line in run.stdout.splitlines()], counts


def print_exports(rows, counts):
    own = sorted(((counts[name].own, title) for name, title in rows), reverse=True)
    for instructions, title in own:
        print(f"{instructions:7}  {title}")
    worst = "; ".join(f"{instructions} {title}" for instructions, title in own[:3])
    print(f"\nown instructions of {len(own)} calls of exports: median "
          f"{statistics.median(instructions for instructions, _ in own):g}, worst {worst}")
    print(f"attach {counts['attach'].own}, detach {counts['detach'].own}")


def print_shapes(shapes, counts):
    """Gives the shapes that are beyond their limit."""
    print(f"\n{'':37} {'whole':>7} {'by hand':>7} {'ratio':>5} {'own':>6} {'by hand':>7} {'ratio':>5} {'limit':>5}")
    beyond = []
    for name, _, what, limit in shapes:
        library, hand = counts[name + ".library"], counts[name + ".by_hand"]
        ratio = library.own / hand.own
        print(f"{what:37} {library.all:7} {hand.all:7} {library.all / hand.all:5.2f} {library.own:6} {hand.own:7} "
              f"{ratio:5.2f} {float(limit):5.2f}")
        if ratio > float(limit):
            beyond.append(f"{what}: {ratio:.2f} times the own instructions of the call by hand, at most {limit}")
    return beyond


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    binaries = pathlib.Path(sys.argv[1]) / "bin"
    measured, counts = run_callgrind(binaries / "pal_instructions")
    print_exports([row for row in measured if len(row) == 2], counts)
    beyond = print_shapes([row for row in measured if len(row) == 4], counts)
    print("\nbytes of the library:")
    sys.stdout.flush()
    subprocess.run(["size", str(binaries / "DVLORQPAL.so")], check=True)
    for fault in beyond:
        print(fault, file=sys.stderr)
    return 1 if beyond else 0


sys.exit(main())
