#!/usr/bin/env python3
"""Checks that headers and export list agree: usage: check_exports.py LIBRARY PROJECT_ROOT

Every name of exports.def is declared in one public header, and nothing else is; pal.h includes them all.
Every export has a Doxygen comment with its results and parameters, or one that says which other export it
is like. Names that exports.def gives to one function stand at one address of the library.
"""
import collections
import pathlib
import re
import subprocess
import sys

library, root = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
definition, headers = root / "exports.def", sorted((root / "include").glob("*.h"))
faults = []

rows = re.findall(r"^ +(\w+)(?: *= *(\w+))?[ \t]*$", definition.read_text(), re.MULTILINE)
names = [name for name, _ in rows]
functions = {name: target or name for name, target in rows}
lines = [line for line in definition.read_text().splitlines()[2:] if line.strip()]
if len(rows) != len(lines):
    faults.append(f"exports.def: {len(lines) - len(rows)} line(s) that are neither NAME nor NAME = FUNCTION")
if names != sorted(set(names)):
    faults.append("exports.def: the names are not sorted, or one stands twice")

DECLARATION = re.compile(r"(?P<comment>/\*\*(?:[^*]|\*(?!/))*\*/\s*)?^\w+ PALAPI (?P<name>\w+)"
                         r"\((?P<parameters>[^)]*)\);", re.MULTILINE)
LIKE = re.compile(r"(?:[Aa]s|[Tt]he same function as) (\w+)")


def check_comment(where, name, comment, parameters):
    if not comment:
        faults.append(f"{where}: {name} has no Doxygen comment")
        return
    text = re.sub(r"\s*\n \* ?", " ", comment)
    if any(other in functions and other != name for other in LIKE.findall(text)):
        return
    if not re.search(r"@ret(val|urn)\b", text):
        faults.append(f"{where}: {name} does not say what it returns")
    for parameter in re.findall(r"(\w+) *(?:,|$)", parameters.replace("void", "")):
        if not re.search(rf"@param(?:\[[a-z,]+\])? +{parameter}\b", text):
            faults.append(f"{where}: {name} does not document {parameter}")


declared = collections.Counter()
for header in headers:
    text = header.read_text()
    where = header.relative_to(root)
    for match in DECLARATION.finditer(text):
        name = match["name"]
        declared[name] += 1
        check_comment(where, name, match["comment"], match["parameters"])
        if name not in functions:
            faults.append(f"{where}: {name} is not in exports.def")
    if "PALAPI" in DECLARATION.sub("", re.sub(r"^#define.*", "", text, flags=re.MULTILINE)):
        faults.append(f"{where}: has a PALAPI that begins no declaration of this check's form")
faults += [f"exports.def: no header declares {name}" for name in names if name not in declared]
faults += [f"include: {name} is declared {count} times" for name, count in declared.items() if count > 1]

included = set(re.findall(r'^#include "(\w+\.h)"', (root / "include" / "pal.h").read_text(), re.MULTILINE))
faults += [f"include/pal.h does not include {header.name}" for header in headers
           if header.name not in included | {"pal.h", "paltypes.h"}]

symbols = subprocess.run(["nm", "--dynamic", "--defined-only", str(library)],
                         capture_output=True, text=True, check=True).stdout
addresses = {name: address for address, name in re.findall(r"^(\w+) [A-Z] (\S+)$", symbols, re.MULTILINE)}
faults += [f"{library.name} does not export {name}" for name in names if name not in addresses]
faults += [f"{library.name} exports {name}, which exports.def does not name"
           for name in sorted(addresses.keys() - functions.keys() - {"DllMain"})]
places = collections.defaultdict(set)
for name in functions.keys() & addresses.keys():
    places[functions[name]].add(addresses[name])
for function, found in sorted(places.items()):
    if len(found) != 1:
        faults.append(f"{library.name}: the names of {function} stand for {len(found)} functions")

for fault in faults:
    print(fault, file=sys.stderr)
print(f"{len(names)} exports")
sys.exit(1 if faults else 0)
