#!/usr/bin/env python3
"""Checks which folders of the library know each other: usage: check_includes.py PROJECT_ROOT

A family includes frame/, include/, platform/, its own files, and of another family only the header
internal.h. frame/ includes no family; of the exports' headers only its entry includes others than
frame's own.
"""
import pathlib
import re
import sys

FAMILIES = {"configstore", "feedback", "power", "keypad", "display", "switches", "sysinfo",
            "scanner", "security"}
FOR_ALL = {"frame", "include", "platform"}
HEADERS_OF_FRAME = {"include/palresult.h", "include/palsysio.h", "include/paltypes.h", "include/palvalues.h",
                    "include/palver.h"}
INCLUDE = re.compile(r'\s*#\s*include\s*"([^"]+)"')


def fault(source, included):
    """Why a file, both named from the root, may not include another; None where it may."""
    folder, target = source.split("/")[0], included.split("/")[0]
    if target not in FAMILIES | FOR_ALL:
        return "is no path from the root to a file of the library"
    if folder == "frame":
        if target in FAMILIES:
            return "is of a family: frame/ stands below all of them"
        if target == "include" and source != "frame/entry.cpp" and included not in HEADERS_OF_FRAME:
            return "is of a family: only frame/entry.cpp calls the families' exports"
    elif target not in FOR_ALL | {folder} and included != f"{target}/internal.h":
        return f"is of another family: include its exports' header or {target}/internal.h"
    return None


root = pathlib.Path(sys.argv[1])
faults = 0
for folder in sorted(FAMILIES | {"frame"}):
    for path in sorted((root / folder).rglob("*.*")):
        source = path.relative_to(root).as_posix()
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            reason = fault(source, match[1]) if match else None
            if reason:
                faults += 1
                print(f"{source}:{number}: {match[1]} {reason}", file=sys.stderr)
sys.exit(1 if faults else 0)
