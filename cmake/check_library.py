#!/usr/bin/env python3
"""Checks what the built library asks of its host: usage: check_library.py LIBRARY PROJECT_ROOT

It may import the platform's calls and the compiler's mem* and str* helpers, it must export what
exports.def names and nothing else, with one address for the names of one function, nothing may run when it is
loaded but its entry, and what each process has of its own to write must stay small.
"""
import collections
import pathlib
import re
import subprocess
import sys

from contract import Contract

library, root = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def names(definition):
    return set(re.findall(r"^ +([A-Za-z_]\w*)", definition.read_text(), re.MULTILINE))


allowed = set().union(*(names(file) for file in (root / "platform" / "imports").glob("*.def")))
allowed.add("GetCurrentProcessId")  # read inline from the kernel's data page on the device
imported = {name.removeprefix("__wrap_")
            for name in re.findall(r"^ +U ([^(@\s]+)", output(
                "nm", "--dynamic", "--demangle", "--undefined-only", str(library)), re.MULTILINE)}
exported = {name: address for address, name in re.findall(r"^(\S+) [A-Z] (\S+)", output(
    "nm", "--dynamic", "--defined-only", str(library)), re.MULTILINE)}
functions = Contract(root).functions
expected = functions.keys() | {"DllMain"}

faults = []
for name in sorted(imported - allowed):
    if not re.match(r"(mem|str)[a-z]+$", name):
        faults.append(f"imports {name}, which the device does not have")
faults += [f"does not export {name}" for name in sorted(expected - exported.keys())]
faults += [f"exports {name}, which exports.def does not name" for name in sorted(exported.keys() - expected)]
places = collections.defaultdict(set)
for name in functions.keys() & exported.keys():
    places[functions[name]].add(exported[name])
faults += [f"has {len(found)} functions for the names of {function}"
           for function, found in sorted(places.items()) if len(found) != 1]
sections = output("readelf", "--section-headers", "--wide", str(library))
if not re.search(r" \.shared +PROGBITS .* WA ", sections):
    faults.append("has no writable section .shared for what all processes share")
for section, size in re.findall(r"(\.(?:pre)?init_array|\.ctors|\.fini_array)\s+\w+\s+\w+ \w+ (\w+)",
                                sections):
    if int(size, 16):
        faults.append(f"has a {section} of {int(size, 16)} bytes: static constructors")
# Constants that hold addresses are written once, by the loader: .data.rel.ro and the like are not
# counted, and on the device they stand with the other constants.
WRITABLE = re.compile(r" (\.data|\.bss|\.shared|\.tdata|\.tbss) +\w+ +\w+ \w+ (\w+) ")
MOST_WRITABLE_BYTES = 4096
writable = sum(int(size, 16) for _, size in WRITABLE.findall(sections))
if writable >= MOST_WRITABLE_BYTES:
    faults.append(f"has {writable} bytes of writable data, more than {MOST_WRITABLE_BYTES}")
# A constant that the compiler takes for a variable: GCC does so where a constexpr std::array has its
# type from its initializer.
data = re.search(r" \.data +\w+ +(\w+) \w+ (\w+) ", sections)
first, size = (int(number, 16) for number in data.groups()) if data else (0, 0)
for address, constant in re.findall(r"^(\w+) d (?:.*::)?(k[A-Z]\w*)$",
                                    output("nm", "--demangle", str(library)), re.MULTILINE):
    if first <= int(address, 16) < first + size:
        faults.append(f"has {constant} in writable data")
for fault in faults:
    print(f"{library.name} {fault}", file=sys.stderr)
sys.exit(1 if faults else 0)
