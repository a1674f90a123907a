"""Reads module-definition files: the exports and the imports of an image."""
import re


def read_exports(definition):
    """The exported names, each with the name of its function."""
    rows = re.findall(r"^ +(\w+)(?: *= *(\w+))?", definition.read_text(), re.MULTILINE)
    return {name: function or name for name, function in rows}


def read_imports(definitions):
    """For each library its name and its functions; a function has its ordinal or None."""
    for definition in definitions:
        text = definition.read_text()
        rows = re.findall(r"^ +([A-Za-z_]\w*)(?: +@(\d+))?", text, re.MULTILINE)
        library = re.search(r"LIBRARY +(\S+)", text)[1]
        yield library, {name: int(ordinal) if ordinal else None for name, ordinal in rows}
