#!/usr/bin/env python3
"""Writes the man pages: man_pages.py PALSIM DCECFG SCENARIOS.md OUTPUT_FOLDER

palsim(1) and dcecfg(1) have what the tools print for --help, command by command; palsim-scenario(7) is the guide with
the statements and effects that palsim lists. go-md2man makes a page of each text.
"""
import gzip
import pathlib
import re
import subprocess
import sys

palsim, dcecfg, scenarios, folder = map(pathlib.Path, sys.argv[1:])
TEXT_COLUMN = 30  # of the tools' help
SEE_ALSO = "## SEE ALSO\n**palsim**(1), **dcecfg**(1), **palsim-scenario**(7), and the documents in share/doc/dvlorqpal\n"


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def escape(text):
    return re.sub(r"([\\`*_<>\[\]|])", r"\\\1", text)


def definitions(rows):
    return "".join(f"**{escape(left)}**\n: {escape(right)}\n\n" for left, right in rows)


def rows_of(lines):
    """What can be typed, and what it does, which stands in the line below where there is no room."""
    rows = []
    for line in lines:
        left, right = line[:TEXT_COLUMN].strip(), line[TEXT_COLUMN:].strip()
        if len(line) > TEXT_COLUMN and line[TEXT_COLUMN - 1] != " ":
            left, right = line.strip(), ""
        if left:
            rows.append([left, right])
        else:
            rows[-1][1] += right
    return [row for row in rows if not row[0].startswith(("-h,", "--help"))]


class Help:
    """A help text: what it is about, its usage, its lists, and the text at the end."""

    def __init__(self, text):
        head, *lists = text.split("\n\n\n")[0].rstrip().split("\n\n")
        self.about, self.usage = re.match(r"(.*)\nUsage: (.*)", head, re.DOTALL).groups()
        self.lists = {block.split(":\n")[0]: rows_of(block.splitlines()[1:]) for block in lists}
        self.end = text.partition("\n\n\n")[2].strip("\n")

    def lists_text(self, level):
        return "".join(f"{level} {title.upper()}\n{definitions(rows)}" for title, rows in self.lists.items() if rows)

    def end_text(self):
        """Paragraphs; lines that are indented stand as they are."""
        text, was_code = "", False
        for line in self.end.splitlines():
            is_code = line.startswith(" ")
            text += "\n" * (is_code != was_code) + (f"  {line}\n" if is_code else f"{escape(line)}\n")
            was_code = is_code if line else was_code
        return text + "\n"


def of_tool(tool):
    whole = Help(output(tool, "--help"))
    text = f"## NAME\n{tool.name} - {escape(whole.about.rstrip('.'))}\n\n## SYNOPSIS\n{escape(whole.usage)}\n\n"
    text += whole.lists_text("##")
    for title, rows in whole.lists.items():
        for name, _ in rows if "ommands" in title else ():
            command = Help(output(tool, name, "--help"))
            text += f"## {tool.name} {name}\n{escape(command.about)}.\n\n{command.lists_text('###')}"
            text += command.end_text() if command.end != whole.end else ""
    return f"{text}## EXAMPLES AND EXIT STATUS\n{whole.end_text().removeprefix('Examples:')}"


def of_guide():
    title, _, guide = scenarios.read_text().partition("\n")
    guide = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", guide)
    text = f"## NAME\npalsim-scenario - {title.partition(': ')[2]}\n\n## DESCRIPTION\n{guide}\n"
    for name in ("statements", "effects"):
        rows = [re.split(r"\s{2,}", line.strip(), maxsplit=1) for line in output(palsim, f"--{name}").splitlines()]
        text += f"## {name.upper()}\n" + definitions(row for row in rows if len(row) == 2)
    return text


version = output(palsim, "--version").strip()
folder.mkdir(exist_ok=True)
for name, section, text in (("palsim", 1, of_tool(palsim)), ("dcecfg", 1, of_tool(dcecfg)),
                            ("palsim-scenario", 7, of_guide())):
    title = f'# {name.upper()} {section} "" "{version}" DVLORQPAL\n\n'
    page = subprocess.run(["go-md2man"], input=title + text + SEE_ALSO, capture_output=True, text=True, check=True)
    (folder / f"{name}.{section}.gz").write_bytes(gzip.compress(page.stdout.encode(), mtime=0))
