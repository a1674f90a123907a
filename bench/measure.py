#!/usr/bin/env python3
"""Measures the library: usage: measure.py BUILD_DIRECTORY [--write FILE]

Prints, for every export, the instructions of one call against the same call of the library that is
written by hand, then the sizes of the library and what an attach and a detach of a process take.
Fails where the ratio of the median or of the worst export is beyond its limit. --write adds the times
and puts the tables into FILE, between its lines "<!-- measured: NAME -->" and "<!-- end -->".
"""
import argparse
import collections
import pathlib
import re
import shutil
import statistics
import subprocess
import sys
import tempfile

CALLS = 10  # of each row in a dump, as in instructions_main.cpp
BUILDS = ("library", "untraced", "bare")
ENTRY_ROWS = ("attach", "detach")
MEDIAN_RATIO, WORST_RATIO = 1.3, 2.0  # of the whole call, and of the library's own instructions
# Above that by their own instructions; docs/performance.md says why.
EXPLAINED = ("PALMFGOpt_ConfigStoreRegUpdate", "PALSysinfo_GetDeviceDetailA",
             "PALSysinfo_GetHardwareConfigurationA", "PALSysinfo_GetHwConfigExA",
             "PALSysinfo_GetSerialNumberA", "PALSysinfo_GetSerialNumberExA",
             "PALSysinfo_IsDravonelDevice")
# What the C runtime does for a library is its own work, wherever the code of it lies.
RUNTIME = re.compile(r"_*(mem|str|wcs|mbs)[a-z0-9]*(_|\(|$|')")


class Counts:
    def __init__(self):
        self.all = 0  # instructions of the call, the platform's included
        self.own = 0  # of the library and of the C runtime's functions that it calls


def parse(dumps):
    """The counts of each row and build, from callgrind's dumps in one file."""
    counts = collections.defaultdict(Counts)
    current, this_object, this_function = None, "", ""
    called_object, called_function, is_call_cost = None, "", False
    for line in dumps:
        if line.startswith("desc: Trigger: Client Request: "):
            key = tuple(line.rsplit(": ", 1)[1].split())
            current = counts[key] if len(key) == 2 and key[1] in BUILDS else None
            this_object = ""
        elif line.startswith("part:"):
            current = None
        elif line.startswith("ob="):
            this_object = line[3:]
        elif line.startswith("fn="):
            this_function = line[3:]
        elif line.startswith("cob="):
            called_object = line[4:]
        elif line.startswith("cfn="):
            called_function = line[4:]
        elif line.startswith("calls="):
            is_call_cost = True
        elif current is not None and line[:1].isdigit():
            cost = int(line.split()[1])
            is_own = "/DVLORQPAL" in this_object
            if is_call_cost:
                if is_own and called_object is not None and RUNTIME.match(called_function):
                    current.own += cost
                is_call_cost, called_object = False, None
                continue
            if "/pal_instructions" in this_object:
                continue
            current.all += cost
            if is_own:
                current.own += cost
    return counts


def run_callgrind(program):
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
    return run.stdout, counts


class Row:
    def __init__(self, name, calls, allocations, counts):
        traced, untraced, bare = (counts[(name, build)] for build in BUILDS)
        self.name, self.calls, self.allocations = name, calls, allocations
        self.library, self.bare = untraced.all // CALLS, bare.all // CALLS
        self.own, self.own_bare = untraced.own // CALLS, bare.own // CALLS
        self.lines = (traced.all - untraced.all) // CALLS
        self.ratio = self.library / max(self.bare, 1)
        self.own_ratio = self.own / max(self.own_bare, 1)
        self.time_ratio = None


def read_rows(stdout, counts):
    pattern = re.compile(r"^(\w+) calls=(\d+) malloc=(\d+)$", re.MULTILINE)
    return [Row(name, int(calls), int(allocations), counts)
            for name, calls, allocations in pattern.findall(stdout)]


def sections(library):
    listing = subprocess.run(["readelf", "--section-headers", "--wide", str(library)],
                             capture_output=True, text=True, check=True).stdout
    return {name: (int(size, 16), flags) for name, size, flags in re.findall(
        r"\] (\.\S+) +\w+ +\w+ \w+ (\w+) \w+ +([A-Z]+) ", listing)}


RELOCATED = {".data.rel.ro", ".dynamic", ".got", ".got.plt", ".init_array", ".fini_array"}


def sizes(library):
    code = constant = relocated = writable = 0
    for name, (size, flags) in sections(library).items():
        if "A" not in flags:
            continue
        if "X" in flags:
            code += size
        elif "W" not in flags:
            constant += size
        elif name in RELOCATED:
            relocated += size
        else:
            writable += size
    return code, constant, relocated, writable


def read_times(program):
    """Ratios and times by row, of pal_bench's lines."""
    out = subprocess.run([str(program)], capture_output=True, text=True, check=True).stdout
    times = {}
    for line in out.splitlines():
        match = re.match(r"(.{48}) +(\d+) ns +(\d+) ns +(\d+) ns +([\d.]+)$", line)
        if match:
            times[match[1].strip()] = (int(match[2]), int(match[3]), int(match[4]), float(match[5]))
    return times


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|---" + "|--:" * (len(header) - 1) + "|"]
    return "\n".join(lines + ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows])


def export_table(rows):
    header = ["export", "platform calls", "library", "by hand", "ratio", "own", "own by hand",
              "own ratio", "trace lines", "heap blocks"]
    if rows[0].time_ratio is not None:
        header.append("time ratio")
    cells = [[f"`{row.name}`", row.calls, row.library, row.bare, f"{row.ratio:.2f}", row.own,
              row.own_bare, f"{row.own_ratio:.2f}", row.lines, row.allocations] +
             ([] if row.time_ratio is None else [f"{row.time_ratio:.2f}"]) for row in rows]
    return table(header, cells)


def summary_table(rows):
    def extremes(key, ratio):
        ordered = sorted(rows, key=key)
        median = statistics.median(key(row) for row in rows)
        show = [f"{key(row):.2f} `{row.name}`" for row in ordered]
        return [ratio, f"{median:.2f}", "; ".join(reversed(show[-3:])), "; ".join(show[:3])]
    lines = [extremes(lambda row: row.ratio, "whole call"),
             extremes(lambda row: row.own_ratio, "own instructions")]
    if rows[0].time_ratio is not None:
        lines.append(extremes(lambda row: row.time_ratio, "time"))
    return table(["ratio of", "median", "three worst", "three best"], lines)


def size_table(build):
    names = (("as shipped", "DVLORQPAL"), ("without trace lines", "DVLORQPAL_untraced"),
             ("by hand", "DVLORQPAL_bare"))
    rows = [[title, *sizes(build / "bin" / f"{name}.so")] for title, name in names]
    return table(["bytes", "code", "constants", "constants with addresses", "writable"], rows)


def entry_table(rows, times):
    text = table(["entry", "platform calls", "instructions", "by hand", "ratio", "trace lines"],
                 [[row.name, row.calls, row.library, row.bare, f"{row.ratio:.2f}", row.lines]
                  for row in rows])
    if "attach" in times:
        library, untraced, bare, _ = times["attach"]
        text += (f"\n\nAn attach and the detach behind it take {library / 1000:.1f} µs, without trace lines "
                 f"{untraced / 1000:.1f} µs, by hand {bare / 1000:.1f} µs.")
    return text


def beyond_limits(rows):
    """What the library must hold to, and does not."""
    faults = []
    for what, ratio, excepted in (("instructions", lambda row: row.ratio, ()),
                                  ("own instructions", lambda row: row.own_ratio, EXPLAINED)):
        faults += [f"{row.name}: {ratio(row):.2f} times the {what} of the call by hand"
                   for row in rows if ratio(row) > WORST_RATIO and row.name not in excepted]
        median = statistics.median(ratio(row) for row in rows)
        if median > MEDIAN_RATIO:
            faults.append(f"the median export: {median:.2f} times the {what} of the call by hand")
    return faults


def write(path, tables):
    text = path.read_text()
    for name, content in tables.items():
        if f"<!-- measured: {name} -->" not in text:
            sys.exit(f"measure.py: {path} has no place for the table {name}")
        text = re.sub(rf"(<!-- measured: {name} -->\n).*?(<!-- end -->)",
                      lambda match, content=content: match[1] + content + "\n" + match[2],
                      text, flags=re.DOTALL)
    path.write_text(text)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--write", type=pathlib.Path, metavar="FILE")
    arguments = parser.parse_args()

    rows = read_rows(*run_callgrind(arguments.build / "bin" / "pal_instructions"))
    times = read_times(arguments.build / "bin" / "pal_bench") if arguments.write else {}
    entries = [row for row in rows if row.name in ENTRY_ROWS]
    exports = [row for row in rows if row.name not in ENTRY_ROWS]
    for row in exports:
        if row.name in times:
            row.time_ratio = times[row.name][3]
    tables = {"summary": summary_table(exports), "exports": export_table(exports),
              "sizes": size_table(arguments.build), "entry": entry_table(entries, times)}
    if arguments.write:
        write(arguments.write, tables)
    else:
        print("\n\n".join(tables[name] for name in ("exports", "sizes", "entry", "summary")))
    faults = beyond_limits(exports)
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


sys.exit(main())
