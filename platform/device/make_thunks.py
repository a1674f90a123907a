#!/usr/bin/python3
"""Writes the import thunks as assembly: make_thunks.py OUTPUT DEFINITION...

Each import has a slot, which the loader fills with the function's address, and a function that jumps there. The
linker drops those that nobody calls. A thunk names the end of its library's slots, so that the end stays too.
"""
import pathlib
import sys

from definitions import read_imports

THUNK = """
.section .text.thunk.{name}, "ax", %progbits
.global {name}
.type {name}, %function
{name}:
  ldr ip, =import_{name}
  ldr ip, [ip]
  bx ip
  .pool
  .reloc ., R_ARM_NONE, end_of_{library}
.size {name}, . - {name}
.section .imports.{library}.{name}, "aw", %progbits
.global import_{name}
import_{name}: .word 0
"""
END = """
.section .imports.{library}.~end, "aw", %progbits
.global end_of_{library}
end_of_{library}: .word 0
"""

text = ".syntax unified\n.arm\n"
for library, imports in read_imports(map(pathlib.Path, sys.argv[2:])):
    text += "".join(THUNK.format(name=name, library=library) for name in imports)
    text += END.format(library=library)
pathlib.Path(sys.argv[1]).write_text(text)
