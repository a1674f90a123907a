#!/usr/bin/env python3
"""Writes docs/exports.md from the public headers: usage: export_reference.py PROJECT_ROOT [--check]

Doxygen reads the headers; here its XML becomes Markdown, one entry for each name of exports.def.
Fails, with a line for each fault, where an export has no documentation, where a parameter or the
result of one is not documented, and with --check where docs/exports.md is not what would be
written. An export whose text refers to another one, as in "As NAME, in UTF-16", "Results as NAME"
or "The same function as NAME", has its results, and its parameters of the same names, unless it has
its own.
"""
import functools
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap
import xml.etree.ElementTree as ElementTree

WIDTH = 110
SAME_AS = re.compile(r"\b[Aa]s (PAL\w+|Pal\w+|Dll\w+)")
# The headers' commands begin with @, and a backslash is one of a path: Doxygen does not see it.
BACKSLASH = "\u29f5"
HIDE_BACKSLASHES = r"sed -e '/^ *\/\{0,1\}\*/s/\\/" + BACKSLASH + "/g'"
OPTIONS = {
    "GENERATE_XML": "YES", "GENERATE_HTML": "NO", "GENERATE_LATEX": "NO",
    "QUIET": "YES", "WARN_IF_UNDOCUMENTED": "NO",
    "OPTIMIZE_OUTPUT_FOR_C": "YES", "JAVADOC_AUTOBRIEF": "NO", "AUTOLINK_SUPPORT": "NO",
    "MACRO_EXPANSION": "YES", "EXPAND_ONLY_PREDEF": "YES",
    "PREDEFINED": 'PALAPI= "PAL_INTERFACE_BEGIN=extern \\"C\\" {" "PAL_INTERFACE_END=}"',
    "INPUT_FILTER": f'"{HIDE_BACKSLASHES}"',
}
BLOCKS = ("parameterlist", "simplesect", "itemizedlist", "orderedlist", "table")
INTRODUCTION = """\
# The exports of DVLORQPAL.dll

Made from the headers in `include/` by `cmake/export_reference.py`; do not edit. A header's own text stands above
its exports: what the family is for, and its rules for threads and processes.

A result is an `HRESULT` unless an entry says otherwise: not negative is success. `0x8007xxxx` is a system error,
its number in the low 16 bits. `S_OK` is 0, `S_FALSE` 1, `E_NOTIMPL` 0x80004001, `E_FAIL` 0x80004005,
`E_INVALIDARG` 0x80070057.
"""


class Faults(list):
    def add(self, name, what):
        self.append(f"{name}: {what}")


def run_doxygen(include, folder):
    options = OPTIONS | {"INPUT": f'"{include}"', "OUTPUT_DIRECTORY": f'"{folder}"'}
    text = "\n".join(f"{key} = {value}" for key, value in options.items())
    run = subprocess.run(["doxygen", "-"], input=text, capture_output=True, text=True)
    warnings = run.stderr.replace(f"{include}/", "").strip()
    if run.returncode != 0 or warnings:
        sys.exit(f"doxygen: {warnings or 'failed'}")
    return folder / "xml"


def read_exports(definition):
    """The exports in the file's order, each with the name that it is another one for, or None."""
    rows = re.findall(r"^ +(\w+)(?: *= *(\w+))?", definition.read_text(), re.MULTILINE)
    return {name: target or None for name, target in rows}


def inline(element):
    """The text of an element on one line, as Markdown."""
    text = escape(element.text or "")
    for child in element:
        if child.tag == "computeroutput":
            code = "".join(child.itertext()).replace(BACKSLASH, "\\")
            word = code.rstrip(":")  # Doxygen takes a colon behind @p for a part of the name
            text += f"`{word}`{code[len(word):]}"
        elif child.tag in ("ref", "ulink"):
            text += inline(child)
        elif child.tag in ("emphasis", "bold"):
            text += f"*{inline(child)}*"
        elif child.tag in ("ndash", "mdash"):
            text += "--" if child.tag == "ndash" else "---"
        elif child.tag not in BLOCKS:
            sys.exit(f"'{text}': a comment has <{child.tag}>, which is not known here")
        text += escape(child.tail or "")
    return re.sub(r"\s+", " ", text)


def escape(text):
    text = text.replace(BACKSLASH, "\\")
    text = re.sub(r"\\(?=[!-/:-@\[-`{-~])", r"\\\\", text)
    return re.sub(r"[*<`]", r"\\\g<0>", text)


def blocks(description):
    """Paragraphs and lists of a description, without its parameters and results: rows of a mark
    and a text each."""
    result = []
    for paragraph in description.findall("para") if description is not None else []:
        text = inline(paragraph).strip()
        if text:
            result.append([("", text)])
        for items in paragraph:
            if items.tag == "table":
                result.append([(None, row) for row in table_rows(items)])
            if items.tag not in ("itemizedlist", "orderedlist"):
                continue
            mark = "- " if items.tag == "itemizedlist" else "1. "
            rows = [" ".join(inline(each).strip() for each in item.findall("para"))
                    for item in items.findall("listitem")]
            result.append([(mark, row) for row in rows])
    return result


def table_rows(table):
    rows = [[" ".join(inline(each).strip() for each in cell.findall("para"))
             for cell in row.findall("entry")] for row in table.findall("row")]
    rows.insert(1, ["---"] * len(rows[0]))
    return ["| " + " | ".join(row) + " |" for row in rows]


def layout(block, link=lambda text: text):
    """The rows of a block under one another; a row of a table, without a mark, stays whole."""
    return "\n".join(
        link(text) if mark is None else
        textwrap.fill(link(text), WIDTH, initial_indent=mark, subsequent_indent=" " * len(mark),
                      break_long_words=False, break_on_hyphens=False) for mark, text in block)


def table_cell(member):
    parts = blocks(member.find("briefdescription")) + blocks(member.find("detaileddescription"))
    return " ".join(text for block in parts for _, text in block)


class Function:
    """What a header says of one function."""

    def __init__(self, member):
        self.name = member.findtext("name")
        self.type = "".join(member.find("type").itertext()).strip()
        self.parameters = [(each.findtext("declname"), "".join(each.find("type").itertext()))
                           for each in member.findall("param") if each.findtext("declname")]
        brief, detailed = member.find("briefdescription"), member.find("detaileddescription")
        self.text = blocks(brief) + blocks(detailed)
        self.documented = self.items(detailed, "param")
        self.results = [(names, text) for names, _, text in self.items(detailed, "retval")]
        self.answer = [inline(each).strip() for section in detailed.iter("simplesect")
                       if section.get("kind") == "return" for each in section.findall("para")]

    @staticmethod
    def items(description, kind):
        rows = []
        for group in description.iter("parameterlist"):
            if group.get("kind") != kind:
                continue
            for item in group.findall("parameteritem"):
                names = item.findall("parameternamelist/parametername")
                text = " ".join(inline(each).strip()
                                for each in item.findall("parameterdescription/para"))
                rows.append((", ".join(name.text for name in names),
                             names[0].get("direction", ""), text))
        return rows

    def signature(self):
        arguments = ", ".join(re.sub(r" *\*", "*", kind) + " " + name
                              for name, kind in self.parameters)
        return f"{self.type} {self.name}({arguments or 'void'});"

    def same_as(self):
        text = " ".join(text for block in self.text for _, text in block)
        return [name for name in SAME_AS.findall(text) if name != self.name]


def inherit(function, functions, asking=()):
    """Takes over what an entry leaves to those that it refers to."""
    for other in filter(None, map(functions.get, function.same_as())):
        if other.name not in asking:
            inherit(other, functions, (*asking, function.name))
        names = {name for name, _ in function.parameters}
        if not function.documented:
            function.documented = [row for row in other.documented if row[0] in names]
        if not function.results and not function.answer:
            function.results, function.answer = other.results, other.answer


def check(function, faults):
    if not function.text:
        faults.add(function.name, "has no documentation")
    declared = [name for name, _ in function.parameters]
    documented = [name for names, _, text in function.documented if text
                  for name in names.split(", ")]
    for name in declared:
        if name not in documented:
            faults.add(function.name, f"the parameter {name} is not documented")
    for name in documented:
        if name not in declared:
            faults.add(function.name, f"documents {name}, which is no parameter")
    if function.type != "void" and not function.results and not function.answer:
        faults.add(function.name, "its result is not documented")
    for name, text in function.results:
        if not text:
            faults.add(function.name, f"the cause of {name} is not documented")


def entry(function, target, link):
    lines = [f"### {function.name}", f"```c\n{function.signature()}\n```"]
    lines += [layout(block, link) for block in function.text]
    if target:
        lines.append(layout([("", f"One entry of the library with {target}.")], link))
    ways = {"out": " (out)", "inout": " (in, out)"}
    parameters = [("- ", f"`{names}`{ways.get(direction, '')}: {text}")
                  for names, direction, text in function.documented]
    results = [("- ", f"`{name}`: {text}") for name, text in function.results]
    for title, rows in (("Parameters", parameters), ("Results", results)):
        if rows:
            lines.append(f"{title}:\n\n" + layout(rows, link))
    lines += [layout([("", f"Returns: {answer}")], link) for answer in function.answer]
    return "\n\n".join(lines)


def enumeration(member):
    lines = ["| " + member.findtext("name") + " | value | |", "|---|---|---|"]
    number = 0
    for value in member.findall("enumvalue"):
        given = (value.findtext("initializer") or "").lstrip("= ")
        number = int(given, 0) if given else number
        lines.append(f"| `{value.findtext('name')}` | {number} | {table_cell(value)} |")
        number += 1
    return "\n".join(lines)


def structure(xml, reference):
    compound = ElementTree.parse(xml / f"{reference}.xml").getroot().find("compounddef")
    lines = ["| " + compound.findtext("compoundname") + " | type | |", "|---|---|---|"]
    for member in compound.iter("memberdef"):
        kind = "".join(member.find("type").itertext()) + (member.findtext("argsstring") or "")
        lines.append(f"| `{member.findtext('name')}` | `{kind}` | {table_cell(member)} |")
    return "\n".join(lines)


class Header:
    def __init__(self, xml, file):
        compound = ElementTree.parse(file).getroot().find("compounddef")
        self.name = compound.findtext("compoundname")
        self.text = (blocks(compound.find("briefdescription"))
                     + blocks(compound.find("detaileddescription")))
        members = list(compound.iter("memberdef"))
        self.tables = [enumeration(each) for each in members if each.get("kind") == "enum"]
        self.tables += [structure(xml, each.get("refid")) for each in compound.findall("innerclass")]
        self.functions = [Function(each) for each in members if each.get("kind") == "function"]


def write_reference(headers, exports, faults):
    functions = {each.name: each for header in headers for each in header.functions}
    for function in functions.values():
        inherit(function, functions)
    for name in exports:
        if name not in functions:
            faults.add(name, "is declared in no header, so that it has no documentation")
        else:
            check(functions[name], faults)
    for name in functions:
        if name not in exports:
            faults.add(name, "is declared in a header and is no export")
    names = re.compile(r"(?<![\w\[`#])(" + "|".join(sorted(exports, key=len, reverse=True)) + r")(?!\w)")
    contents, chapters = [], []
    for header in sorted((each for each in headers if each.functions), key=lambda each: each.name):
        contents.append(f"- [{header.name}](#{header.name.replace('.', '')})")
        chapters.append("\n\n".join([f"## {header.name}", *map(layout, header.text), *header.tables]))
        for function in header.functions:
            if function.name not in exports:
                continue
            contents.append(f"  - [{function.name}](#{function.name.lower()})")
            link = functools.partial(
                names.sub, lambda match, own=function.name: match.group(1) if match.group(1) == own
                else f"[{match.group(1)}](#{match.group(1).lower()})")
            chapters.append(entry(function, exports[function.name], link))
    return "\n".join([INTRODUCTION, f"{len(exports)} exports:\n", *contents, ""]) + "\n" + \
        "\n\n".join(chapters) + "\n"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    reference = root / "docs" / "exports.md"
    faults = Faults()
    with tempfile.TemporaryDirectory() as folder:
        xml = run_doxygen(root / "include", pathlib.Path(folder))
        headers = [Header(xml, file) for file in sorted(xml.glob("*_8h.xml"))]
    text = write_reference(headers, read_exports(root / "exports.def"), faults)
    if not faults and "--check" not in sys.argv:
        reference.write_text(text)
    elif not faults and (not reference.exists() or reference.read_text() != text):
        faults.add("docs/exports.md", "is not what the headers say; run cmake/export_reference.py .")
    for fault in faults:
        print(fault, file=sys.stderr)
    sys.exit(1 if faults else 0)


main()
