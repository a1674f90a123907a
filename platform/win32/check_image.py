#!/usr/bin/env python3
"""Reads the library for a PC back with objdump: check_image.py DLL PROJECT_ROOT

It exports what exports.def names, imports nothing but the platform's calls, all of them from coredll.dll, and one
section is shared by all processes.
"""
import pathlib
import re
import subprocess
import sys

dll, root = map(pathlib.Path, sys.argv[1:])
faults = []


def names(definition):
    return set(re.findall(r"^ +([A-Za-z_]\w*)", definition.read_text(), re.MULTILINE))


def expect(what, found, wanted):
    faults.extend(f"{what}: {name} should not be there" for name in sorted(found - wanted))
    faults.extend(f"{what}: {name} is missing" for name in sorted(wanted - found))


read = subprocess.run(["x86_64-w64-mingw32-objdump", "--private-headers", "--section-headers", dll],
                      capture_output=True, text=True, check=True).stdout
imports, _, exports = read.partition("The Export Tables")
platform = set().union(*map(names, (root / "platform" / "imports").glob("*.def"))) | {"GetCurrentProcessId"}
expect("libraries", set(re.findall(r"DLL Name: (\S+)", imports)), {"coredll.dll"})
called = set(re.findall(r"^\t[0-9a-f]+\s+\d+\s+(\w+)$", imports, re.MULTILINE))
expect("imports", called, called & platform)
expect("exports", set(re.findall(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\w+)$", exports, re.MULTILINE)),
       names(root / "exports.def"))
if len(called) < 50:
    faults.append(f"only {len(called)} imports were read")
if not re.search(r" \.shared .*\n.*\bSHARED\b", read):
    faults.append("the section .shared is missing, or each process has its own")
for section in re.findall(r" (\.ctors|\.init_array|\.tls|\.CRT\S*) ", read):
    faults.append(f"something runs when it is loaded: {section}")
for fault in faults:
    print(f"{dll.name}: {fault}", file=sys.stderr)
sys.exit(1 if faults else 0)
