#!/usr/bin/env python3
"""Reads the exported interface, include/ and exports.def: contract.py PROJECT_ROOT FOLDER

Writes to FOLDER what others take from it: contract.inc, the table of exports, results and enumerators; exports.inc,
the names of the exports alone; exports.map and exports.cmake for the linker. Each fault of a header is one line with
its place; then nothing is written. The comment of a header or a declaration has this form:

  /**
   * Sentences, lists and tables. Then tags, of which each ends with the next tag or with an empty line:
   *
   * @family FOLDER            of a header: where its functions are; of an export: where that one is instead
   * @param[out] NAME  [UNIT] Sentences. #PALEnumeration says what the numbers mean.
   * @retval NAME  The cause.
   * @return Sentences: for answers that have no name.
   * @like EXPORT              parameters and results are those of EXPORT, but for those that are given here
   */
"""
import collections
import dataclasses
import pathlib
import re
import sys

UNITS = {"minutes", "seconds", "milliseconds", "degrees", "baud", "bytes", "percent", "level"}
COMMENT = r"(?:/\*\*(?P<comment>(?:[^*]|\*(?!/))*)\*/\s*)?^"
FORMS = {kind: re.compile(COMMENT + form, re.MULTILINE) for kind, form in {
    "export": r"(?P<type>\w+) PALAPI (?P<name>\w+)\((?P<body>[^()]*)\);$",
    "enumeration": r"typedef enum (?P<name>\w+) \{(?P<body>[^{}]*)\} (?P=name);$",
    "structure": r"typedef struct (?P<name>\w+) \{(?P<body>[^{}]*)\} (?P=name);$",
    "type": r"typedef (?P<body>\w+) (?P<name>\w+);$",
    "result": r"#define (?P<name>\w+(?:\(error\))?) (?P<body>PAL_(?:RESULT|E_WIN32)\(.*\))$",
    "constant": r"#define (?P<name>PAL_\w+) (?P<body>\w+)$"}.items()}
# What a header has besides: guards, conditions, includes, and plain comments.
PLAIN = re.compile(r"#(?:ifndef|ifdef|else|endif|include)\b.*|#define (?:PAL\w*_H_$|PAL_RESULT\(.*)"
                   r"|PAL_INTERFACE_(?:BEGIN|END)|/\*(?:[^*]|\*(?!/))*\*/", re.MULTILINE)
TAG = re.compile(r"@(\w+)(?:\[([a-z,]+)\])?[ \t]*(.*)", re.DOTALL)
NAME = re.compile(r"(?<![\w.])#?((?:PAL_?[A-Z]|Pal[A-Z])\w+)")
FIELD = re.compile(COMMENT.rstrip("^") + r"(?P<type>\w+) (?P<name>\w+);")
ENUMERATOR = re.compile(COMMENT.rstrip("^") + r"(?P<name>\w+) = (?P<number>-?\w+)")


@dataclasses.dataclass
class Named:
    """A declaration: an enumeration with its enumerators, a structure with its fields, a result, a constant."""
    kind: str
    name: str
    header: str
    line: int
    text: list  # the comment's lines without its tags
    tags: list  # rows of a tag, its direction and its text
    body: str
    type: str = ""
    rows: list = dataclasses.field(default_factory=list)  # of a name, a value or type, and a text


@dataclasses.dataclass
class Parameter:
    type: str
    name: str
    direction: str = "in"
    unit: str = ""
    enumeration: str = ""
    text: str = ""


@dataclasses.dataclass
class Result:
    name: str
    code: int
    mask: int  # which bits of the code the name tells
    text: str


@dataclasses.dataclass
class Export(Named):
    family: str = ""
    function: str = ""  # several exports may be one function
    like: str = ""
    is_complete: bool = False  # has what it takes over from another
    answer: str = ""
    parameters: list = dataclasses.field(default_factory=list)
    results: list = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Header:
    name: str
    brief: str = ""
    family: str = ""
    text: list = dataclasses.field(default_factory=list)
    declarations: list = dataclasses.field(default_factory=list)


def split_comment(comment):
    """The lines of a comment before its first tag, and its tags."""
    comment = re.sub(r" (@(?:like|retval) .*)$", r"\n\1", (comment or "").strip())  # all in one line
    lines = [re.sub(r"^\* ?", "", line.strip()).rstrip() for line in comment.split("\n")]
    text, tags, is_open = [], [], True
    for line in lines:
        if line.startswith("@") and not line.startswith("@p "):
            tags.append([line])
            is_open = True
        elif not line:
            is_open = not tags
            text += [] if tags else [line]
        elif tags and is_open:
            tags[-1].append(line.strip())
        elif tags:
            tags.append(["@text " + line])  # stands behind the tags, where nothing may
        else:
            text.append(line)
    while text and not text[-1]:
        text.pop()
    return text, [TAG.fullmatch(" ".join(tag)).groups() for tag in tags]


class Contract:
    def __init__(self, root):
        self.root, self.faults, self.headers, self.named = root, [], [], {}
        self.functions = self.read_definition()
        for path in sorted((root / "include").glob("*.h")):
            if path.name != "paltypes.h":  # the platform's types
                self.headers.append(self.read_header(path))
        self.exports = {name: self.named[name] for name in self.functions
                        if isinstance(self.named.get(name), Export)}
        self.results = {each.name: self.result_of(each) for each in self.of_kind("result")}
        for enumeration in self.of_kind("enumeration"):
            self.results |= {row[0]: Result(row[0], row[1], 0xFFFFFFFF, row[2]) for row in enumeration.rows}
        for export in self.exports.values():
            self.read_tags(export)
        for export in self.exports.values():
            self.take_over(export, ())
        self.check()

    def fault(self, where, line, what):
        self.faults.append(f"{where}:{line}: {what}")

    def fault_of(self, named, what):
        self.fault(f"include/{named.header}", named.line, f"{named.name}: {what}")

    def of_kind(self, kind):
        return [each for each in self.named.values() if each.kind == kind]

    def read_definition(self):
        """The exports, in the order of exports.def, with the function of each."""
        functions = {}
        for number, line in enumerate((self.root / "exports.def").read_text().splitlines()[2:], 3):
            row = re.fullmatch(r" +(\w+)(?: *= *(\w+))?", line)
            if not row:
                self.fault("exports.def", number, f"'{line}' is neither NAME nor NAME = FUNCTION")
            elif functions and row[1] <= next(reversed(functions)):
                self.fault("exports.def", number, f"{row[1]} is not in the order of the alphabet, or stands twice")
            else:
                functions[row[1]] = row[2] or row[1]
        return functions

    def read_header(self, path):
        whole = path.read_text()
        header = Header(path.name)
        opening = re.match(r"/\*\*((?:[^*]|\*(?!/))*)\*/", whole)
        rest = whole[opening.end():] if opening else whole
        lines, tags = split_comment(opening[1] if opening else "")
        found = {tag: text for tag, _, text in tags}
        header.brief, header.family = found.get("brief", ""), found.get("family", "")
        # The text of a header stands behind its tags.
        header.text = [re.sub(r"^ \*[ /]?", "", line) for line in opening[1].partition("\n *\n")[2].split("\n")] \
            if opening else []
        if found.get("file") != path.name or not header.brief:
            self.fault(f"include/{path.name}", 1, "does not begin with @file, its own name, and @brief")
        matches = sorted((match.start(), kind, match) for kind, form in FORMS.items() for match in form.finditer(rest))
        for start, kind, match in matches:
            line = whole.count("\n", 0, len(whole) - len(rest) + match.start("name")) + 1
            header.declarations.append(self.read_declaration(header, kind, match, line))
            rest = rest[:start] + re.sub(r"[^\n]", " ", match[0]) + rest[match.end():]
        # What is left may be nothing of consequence; it keeps its place.
        for match in re.finditer(r"\S.*", PLAIN.sub(lambda plain: re.sub(r"[^\n]", " ", plain[0]), rest)):
            line = whole.count("\n", 0, len(whole) - len(rest) + match.start()) + 1
            self.fault(f"include/{path.name}", line, f"'{match[0]}' is no declaration of a known form")
        return header

    def read_declaration(self, header, kind, match, line):
        text, tags = split_comment(match["comment"])
        make = Export if kind == "export" else Named
        named = make(kind, match["name"], header.name, line, text, tags, match["body"],
                     match["type"] if kind == "export" else "")
        if kind == "export":
            named.family = header.family
            named.function = self.functions.get(named.name, "")
            if not named.function:
                self.fault_of(named, "is not in exports.def")
        if kind == "enumeration":
            named.rows = [(row["name"], int(row["number"], 0) & 0xFFFFFFFF, " ".join(split_comment(row["comment"])[0]))
                          for row in ENUMERATOR.finditer(match["body"])]
        if kind == "structure":
            named.rows = [(row["name"], row["type"], " ".join(split_comment(row["comment"])[0]))
                          for row in FIELD.finditer(match["body"])]
        if not any(text):
            self.fault_of(named, "has no comment")
        for row in named.rows:
            if not row[2]:
                self.fault_of(named, f"{row[0]} has no comment")
        if named.name in self.named:
            self.fault_of(named, f"is declared in {self.named[named.name].header} too")
        self.named[named.name] = named
        return named

    def result_of(self, named):
        number = re.fullmatch(r"PAL_RESULT\((0x[0-9A-F]+|\d+)U?( \| \(error\))?\)", named.body)
        system = re.fullmatch(r"PAL_E_WIN32\((\d+)\)", named.body)
        if not number and not system:
            self.fault_of(named, f"'{named.body}' is no result code")
            return Result(named.name, 0, 0, "")
        code = int(number[1], 0) if number else 0x80070000 | int(system[1])
        return Result(named.name, code, 0xFFFF0000 if number and number[2] else 0xFFFFFFFF, " ".join(named.text))

    def read_tags(self, export):
        for declared in [] if export.body == "void" else export.body.split(","):
            match = re.fullmatch(r"\s*(\w[\w ]*[ *]+)(\w+)", declared)
            if match:
                export.parameters.append(Parameter(match[1].strip(), match[2]))
            else:
                self.fault_of(export, f"'{declared}' is no parameter of the form TYPE NAME")
        parameters = {each.name: each for each in export.parameters}
        for tag, direction, text in export.tags:
            first, _, others = text.partition(" ")
            if tag == "param" and first in parameters:
                self.read_parameter(export, parameters[first], direction or "in", others.strip())
            elif tag == "param":
                self.fault_of(export, f"documents {first}, which is no parameter")
            elif tag == "retval" and first in self.results and others.strip():
                export.results.append(dataclasses.replace(self.results[first], text=others.strip()))
            elif tag == "retval":
                self.fault_of(export, f"the cause of {first} is missing" if first in self.results else
                              f"{first} is no result that palresult.h or an enumeration names")
            elif tag == "return":
                export.answer = text
            elif tag == "like":
                export.like = text
            elif tag == "family":
                export.family = text
            else:
                self.fault_of(export, f"'{text}' stands behind the tags" if tag == "text" else f"@{tag} is no tag")

    def read_parameter(self, export, parameter, direction, text):
        unit = re.match(r"\[(\w+)\] *", text)
        enumeration = re.search(r"#(\w+)", text)
        is_written = parameter.type.endswith("*") and not parameter.type.startswith("const ")
        if (direction != "in") != is_written:
            self.fault_of(export, f"@param[{direction}] {parameter.name} is not what {parameter.type} says")
        if unit and unit[1] not in UNITS:
            self.fault_of(export, f"[{unit[1]}] of {parameter.name} is none of the units {', '.join(sorted(UNITS))}")
        if enumeration and getattr(self.named.get(enumeration[1]), "kind", "") != "enumeration":
            self.fault_of(export, f"#{enumeration[1]} of {parameter.name} is no enumeration")
        parameter.direction, parameter.unit = direction, unit[1] if unit else ""
        parameter.enumeration = enumeration[1] if enumeration else ""
        parameter.text = text[unit.end():] if unit else text

    def take_over(self, export, askers):
        """What the export has from the one that it is like."""
        other = self.exports.get(export.like)
        if export.like and (not other or export.name in askers):
            what = "comes back to it" if other else "there is no such export"
            self.fault_of(export, f"@like {export.like}: {what}")
            return
        if not other or export.is_complete:
            return
        self.take_over(other, (*askers, export.name))
        export.is_complete = True
        theirs = {each.name: each for each in other.parameters}
        export.parameters = [dataclasses.replace(theirs[each.name], type=each.type)
                             if not each.text and each.name in theirs else each for each in export.parameters]
        own = {each.name: each for each in export.results}
        export.results = [own.pop(each.name, each) for each in other.results] + list(own.values())
        export.answer = export.answer or other.answer

    def check(self):
        known = self.named.keys() | self.results.keys() | {name.partition("(")[0] for name in self.results}
        for name, number in ((name, number) for number, name in enumerate(self.functions, 3)):
            if name not in self.exports:
                self.fault("exports.def", number, f"no header declares {name}")
        for export in self.exports.values():
            for parameter in export.parameters:
                if not parameter.text:
                    self.fault_of(export, f"the parameter {parameter.name} has no @param")
            if not export.results and not export.answer:
                self.fault_of(export, "does not say what it returns")
            self.check_family(export)
            names = {each.name for each in export.parameters}
            for name in re.findall(r"@p (\w+)", " ".join([*export.text, *(tag[2] for tag in export.tags)])):
                if name not in names:
                    self.fault_of(export, f"@p {name} is no parameter")
        for header in self.headers:
            text = (self.root / "include" / header.name).read_text()
            for number, line in enumerate(text.split("\n"), 1):
                if line.lstrip().startswith(("*", "/*")):
                    self.check_words(header, number, line, known)
        pal = (self.root / "include" / "pal.h").read_text()
        for header in self.headers:
            if header.name != "pal.h" and f'#include "{header.name}"' not in pal:
                self.fault("include/pal.h", 1, f"does not include {header.name}")

    def check_words(self, header, number, line, known):
        if header.name != "palresult.h" and re.search(r"\b0x[48][0-9A-F]{7}\b", line):
            self.fault(f"include/{header.name}", number, "a result stands as a number; palresult.h names it")
        for name in NAME.findall(re.sub(r'"[^"]*"', "", line)):
            if name not in known and f"{name}.h" not in line:
                self.fault(f"include/{header.name}", number, f"{name} is no export, result, enumerator or type")

    def check_family(self, export):
        sources = sorted((self.root / export.family).glob("*.cpp")) if export.family else []
        if not sources:
            self.fault_of(export, f"@family '{export.family}' is no folder of the library")
        elif export.function == export.name and not any(
                re.search(rf"\bPALAPI {export.name}\(", source.read_text()) for source in sources):
            self.fault_of(export, f"is not defined in {export.family}/, its @family")


def table(contract):
    """contract.inc: rows of macros, of which a source defines those that it wants."""
    rows = collections.defaultdict(list)
    for each in contract.of_kind("result"):
        result = contract.results[each.name]
        rows["PAL_CONTRACT_RESULT"].append(f'"{result.name}", 0x{result.code:08X}, 0x{result.mask:08X}')
    for each in contract.of_kind("enumeration"):
        rows["PAL_CONTRACT_ENUMERATOR"] += [f'"{each.name}", "{name}", 0x{number:08X}'
                                            for name, number, _ in each.rows]
    for export in contract.exports.values():
        parameters = "".join(f', {{"{each.type}", "{each.name}", "{each.direction}", "{each.unit}", '
                             f'"{each.enumeration}"}}' for each in export.parameters)
        rows["PAL_CONTRACT_EXPORT"].append(f'"{export.name}", "{export.header}", "{export.family}", "{export.type}", '
                                           f'"{export.function}"{parameters}')
        rows["PAL_CONTRACT_ANSWER"] += [f'"{export.name}", "{each.name}", 0x{each.code:08X}, 0x{each.mask:08X}'
                                        for each in export.results]
    lines = [f"#ifndef {macro}\n#define {macro}(...)\n#endif" for macro in rows]
    lines += [f"{macro}({row})" for macro, each in rows.items() for row in each]
    return "\n".join([*lines, *(f"#undef {macro}" for macro in rows)]) + "\n"


def thunks(contract):
    """Each export as a row with its parameters as C has them, and with their names alone."""
    rows = []
    for export in contract.exports.values():
        declared = ", ".join(f"{each.type} {each.name}" for each in export.parameters) or "void"
        names = ", ".join(each.name for each in export.parameters)
        rows.append(f"PAL_THUNK({export.type}, {export.name}, ({declared}), ({names}))\n")
    return "".join(rows)


def main():
    contract, folder = Contract(pathlib.Path(sys.argv[1]).resolve()), pathlib.Path(sys.argv[2])
    if contract.faults:
        sys.exit("\n".join(contract.faults))
    names = list(contract.functions)
    aliases = [f"-Wl,--defsym={name}={function}" for name, function in contract.functions.items() if name != function]
    folder.mkdir(parents=True, exist_ok=True)
    for file, text in {
            "contract.inc": table(contract),
            "thunks.inc": thunks(contract),
            "exports.inc": "".join(f"PAL_EXPORT({name})\n" for name in names),
            # The entry is found by name here; on the device the loader knows it.
            "exports.map": f"{{ global: DllMain; CountersBegin; CountersEnd; {'; '.join(names)}; local: *; }};\n",
            "exports.cmake": f"set(PAL_EXPORT_ALIASES {' '.join(aliases)})\n"
                             f"set(PAL_EXPORTED_FUNCTIONS {' '.join(sorted(set(contract.functions.values())))})\n"}.items():
        if not (folder / file).exists() or (folder / file).read_text() != text:
            (folder / file).write_text(text)


if __name__ == "__main__":
    main()
