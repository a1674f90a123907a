#!/usr/bin/env python3
"""Writes the pages of the reference, one for each header, and those that find exports: reference.py PROJECT_ROOT FOLDER

index.md stands in FOLDER already; the headers' pages are added to it.
"""
import collections
import pathlib
import re
import sys

root, folder = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
sys.path.insert(0, str(root / "cmake"))
sys.dont_write_bytecode = True
from contract import Contract  # noqa: E402

contract = Contract(root)
if contract.faults:
    sys.exit("\n".join(contract.faults))

ROLES = {"export": "func", "enumeration": "enum", "structure": "struct", "type": "type", "result": "macro",
         "constant": "macro"}
links = {each.name.partition("(")[0]: ROLES[each.kind] for each in contract.named.values()}
links |= {row[0]: "enumerator" for each in contract.of_kind("enumeration") for row in each.rows}
PIECES = re.compile(r'"(?P<quoted>[^"]*)"|`(?P<code>[^`]*)`|@p (?P<parameter>\w+)|#?(?P<name>\b(?:PAL|Pal|Dll|S_|E_)\w+)'
                    r"(?P<error>\(error\))?|\b(?P<header>pal\w+)\.h\b|(?P<special>[\\*_<>#\[\]])")
SCRIPT = """\
<input class="find" type="search" placeholder="Type a part of a name: PALMFGOpt_, tap, timeout ..." aria-label="Find an export">
<script>
document.addEventListener("DOMContentLoaded", () => {
  const input = document.querySelector("input.find");
  const rows = [...document.querySelectorAll("#all-exports tbody tr")];
  input.addEventListener("input", () => {
    const wanted = input.value.trim().toLowerCase();
    for (const row of rows) row.hidden = !row.textContent.toLowerCase().includes(wanted);
  });
});
</script>
"""


def link(name, text=None):
    return f"{{c:{links[name]}}}`{text or name}`" if text is None else f"{{c:{links[name]}}}`{text} <{name}>`"


def markdown(text, own=""):
    """The words of a comment, with links for what has a place in the reference."""
    def piece(match):
        if match["quoted"] is not None:
            return f"`` {match['quoted']} ``" if "`" in match["quoted"] else f"`{match['quoted'] or ' '}`"
        if match["code"] is not None or match["parameter"]:
            return f"`{match['code'] or match['parameter']}`"
        if match["header"]:
            return f"[{match[0]}]({match['header']}.md)"
        if match["special"]:
            return "\\" + match["special"]
        if match["name"] == own or match["name"] not in links:
            return match[0].lstrip("#").replace("_", "\\_")
        return link(match["name"], match["name"] + match["error"] if match["error"] else None)
    return PIECES.sub(piece, text)


def body(lines, own=""):
    """A comment's text. A row of a table whose first cell is empty goes on with the row above it."""
    rows = []
    for line in lines:
        if re.match(r"\|\s+\|", line):
            cells = zip(rows.pop().split("|"), line.split("|"))
            line = "|".join(f"{above.rstrip()} {cell.strip()}" if cell.strip() else above for above, cell in cells)
        rows.append(line)
    text = "\n".join(rows)
    return "\n".join(line if re.match(r"\|-", line) else markdown_line for line, markdown_line
                     in zip(text.split("\n"), markdown(text, own).split("\n")))


def sentence(text):
    return re.split(r"(?<=[.:;]) (?=[A-Z])|(?<=\w): ", " ".join(text).split("  ")[0])[0].rstrip(".:")


def entries(title, rows):
    return [f"**{title}**", *(f"{name}\n: {text}" for name, text in rows)] if rows else []


def function(export):
    declared = re.sub(r"\s+", " ", export.body)
    parts = [f"### {export.name}", f"``````{{c:function}} {export.type} {export.name}({declared})", body(export.text, export.name)]
    twins = [name for name, target in contract.functions.items()
             if target in (export.name, export.function) and name != export.name and target in contract.exports]
    if twins:
        parts.append("The same function as " + ", ".join(map(link, twins)) + ".")
    parts += entries("Parameters", [
        (f"`{each.name}`" + (f" ({each.direction})" if each.direction != "in" else "")
         + (f" in {each.unit}" if each.unit not in ("", "level") else ""), markdown(each.text))
        for each in export.parameters])
    parts += entries("Results", [(link(each.name.partition("(")[0], each.name), markdown(each.text))
                                 for each in export.results])
    if export.answer:
        parts.append(f"**Other answers**\n: {markdown(export.answer)}")
    return "\n\n".join(parts) + "\n``````"


def enumeration(named):
    rows = [f"`````{{c:enumerator}} {name} = {number if number < 2**31 else number - 2**32}\n{markdown(text, name)}\n`````"
            for name, number, text in named.rows]
    return "\n\n".join([f"### {named.name}", f"``````{{c:enum}} {named.name}", body(named.text, named.name), *rows]) + "\n``````"


def structure(named):
    rows = [f"`````{{c:member}} {kind} {name}\n{markdown(text)}\n`````" for name, kind, text in named.rows]
    return "\n\n".join([f"``````{{c:struct}} {named.name}", body(named.text), *rows]) + "\n``````"


def result(named):
    code = contract.results[named.name]
    number = f"0x{code.code:08X}" if code.mask == 0xFFFFFFFF else f"0x{code.code >> 16:04X}xxxx"
    users = [export.name for export in contract.exports.values() if any(
        named.name == each.name or re.search(rf"\b{re.escape(named.name)}(?!\w)", each.text) for each in export.results)]
    shown = ", ".join(map(link, users)) if len(users) <= 40 else f"{len(users)} exports"
    return "\n\n".join([f"``````{{c:macro}} {named.name}", f"`{number}` -- {body(named.text, named.name)}",
                        f"Answered by {shown}." if users else "No export answers it."]) + "\n``````"


def page(header):
    kinds = collections.defaultdict(list)
    for each in header.declarations:
        kinds[each.kind].append(each)
    exports = [each for each in kinds["export"] if each.name in contract.exports]
    families = sorted({each.family for each in exports})
    title = re.split(r"[:,.]| and ", header.brief)[0]
    lines = [f"# {title}", f"**{header.name}** -- {markdown(header.brief)}"]
    if families:
        lines.append("In " + ", ".join(f"`{family}/`" for family in families) + f", {len(exports)} exports.")
    lines.append(body(header.text))
    if exports:
        lines += ["## Functions", *map(function, exports)]
    if kinds["enumeration"] or kinds["constant"] or kinds["type"] or kinds["structure"]:
        lines.append("## Numbers and types")
        lines += [f"``````{{c:macro}} {each.name}\n`{each.body}` -- {body(each.text)}\n``````"
                  for each in kinds["constant"]]
        lines += [f"``````{{c:type}} {each.body} {each.name}\n{body(each.text)}\n``````" for each in kinds["type"]]
        lines += [*map(enumeration, kinds["enumeration"]), *map(structure, kinds["structure"])]
    if kinds["result"]:
        lines += ["## Codes", *map(result, kinds["result"])]
    return "\n\n".join(lines) + "\n"


def prefix(name):
    """What the names of a family begin with."""
    return re.match(r"Dll|(?:(?!Get|Set)[A-Za-z])+_|PAL[A-Z]+(?=[A-Z][a-z])|PAL[A-Za-z]+?(?=Get|Set)", name)[0]


def finder():
    places = collections.defaultdict(collections.Counter)
    for export in contract.exports.values():
        places[prefix(export.name)][export.family, export.header] += 1
    lines = ["# Find an export", "The beginning of a name tells where the export is described and where its source is.",
             "## By prefix", "| prefix | folder and header |\n|---|---|"]
    for name, found in sorted(places.items(), key=lambda row: row[0].lower()):
        where = [f"{family} ({count}), [{header}]({header[:-2]}.md)" for (family, header), count in found.most_common()]
        lines[-1] += f"\n| `{name}` | {'; '.join(where)} |"
    lines += ["## All exports", SCRIPT, "| export | what it does |\n|---|---|"]
    lines[-1] += "".join(f"\n| {link(export.name)} | {markdown(sentence(export.text), export.name)} |" for export in contract.exports.values())
    return "\n\n".join(lines) + "\n"


toctree = ["```{toctree}", ":caption: Exports by header", ":hidden:", ""]
families = ["## The families", "| header | what it is for | exports |\n|---|---|---|"]
for each in contract.headers:
    if each.name != "pal.h":
        (folder / each.name).with_suffix(".md").write_text(page(each))
    count = sum(declaration.kind == "export" for declaration in each.declarations)
    if count:
        toctree.append(each.name.removesuffix(".h"))
        families[-1] += f"\n| [{each.name}]({each.name[:-2]}.md) | {markdown(each.brief)} | {count} |"
(folder / "find.md").write_text(finder())
index = folder / "index.md"
index.write_text(index.read_text() + "\n".join([*toctree, "```", ""]) + "\n" + "\n\n".join(families) + "\n")
