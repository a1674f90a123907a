#!/usr/bin/env python3
"""Writes what the public headers declare as rows for palsim: export_declarations.py PROJECT_ROOT FILE

One row for each export, with its parameters as they are declared; a parameter whose documentation names an
enumeration has that one's name with it. One row for each enumerator. What is only like another export ("As
NAME, in UTF-16") has that one's enumerations for its parameters of the same names.
"""
import pathlib
import re
import sys

root, output = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
COMMENT = re.compile(r"/\*(?:[^*]|\*(?!/))*\*/")
DECLARATION = re.compile(r"(?P<comment>/\*\*(?:[^*]|\*(?!/))*\*/\s*)?^(?P<result>\w+) PALAPI (?P<name>\w+)"
                         r"\((?P<parameters>[^)]*)\);", re.MULTILINE)
ENUMERATION = re.compile(r"typedef enum \w+ \{(?P<values>[^}]*)\} (?P<name>\w+);"
                         r"|typedef DWORD (?P<alias>\w+);\s*enum \{(?P<plain>[^}]*)\};")
LIKE = re.compile(r"(?:[Aa]s|[Tt]he same function as) (\w+)")

text = "\n".join(path.read_text() for path in sorted((root / "include").glob("*.h")))
rows = []
enumerations = set()
for match in ENUMERATION.finditer(COMMENT.sub("", text)):
    enumeration = match["name"] or match["alias"]
    enumerations.add(enumeration)
    for name, value in re.findall(r"(\w+) = (\d+)", match["values"] or match["plain"]):
        rows.append(f'PAL_ENUMERATOR("{enumeration}", "{name}", {value})')

declarations = {match["name"]: match for match in DECLARATION.finditer(text)}


def enumeration_of(export, parameter):
    comment = re.sub(r"\s*\n \* ?", " ", export["comment"] or "")
    documented = re.search(rf"@param(?:\[[a-z,]+\])? +{parameter}\b((?:(?! @).)*)", comment)
    words = re.findall(r"\w+", documented[1]) if documented else []
    found = [word for word in words if word in enumerations]
    if found or documented:
        return found[0] if found else ""
    like = [declarations[name] for name in LIKE.findall(comment) if name in declarations]
    return enumeration_of(like[0], parameter) if like and like[0] is not export else ""


for export in declarations.values():
    parameters = []
    for declared in export["parameters"].split(","):
        if declared.strip() == "void":
            continue
        type_name, name = re.fullmatch(r"\s*(.*\W)(\w+)\s*", declared, re.DOTALL).groups()
        type_name = type_name.strip()
        enumeration = type_name if type_name in enumerations else enumeration_of(export, name)
        parameters.append(f'{{"{type_name}", "{name}", "{enumeration}"}}')
    rows.append(f'PAL_DECLARATION("{export["name"]}", "{export["result"]}"'
                + "".join(f", {parameter}" for parameter in parameters) + ")")
output.parent.mkdir(parents=True, exist_ok=True)
output.write_text("\n".join(rows) + "\n")
