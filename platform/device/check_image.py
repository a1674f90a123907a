#!/usr/bin/python3
"""Reads a packed DLL back with two readers of others, pefile and llvm-readobj: check_image.py ELF DLL PROJECT_ROOT

The ELF file that the DLL was made of gives the instructions; its code has to be the DLL's.
"""
import pathlib
import re
import subprocess
import sys

import pefile

from definitions import read_exports, read_imports

elf, dll, root = map(pathlib.Path, sys.argv[1:])
MOST_BYTES, MOST_WRITABLE_BYTES = 140_000, 4096
# The processor does not have blx and clz; ldrd and strd want an alignment that the stack does not have.
MISSING_INSTRUCTIONS = re.compile(r"\t(ldrd|strd|blx|clz)\w*\t.*")
faults = []


def output(*command):
    return subprocess.run(list(map(str, command)), capture_output=True, text=True, check=True).stdout


def expect(what, found, wanted):
    for name in sorted(found - wanted):
        faults.append(f"{what}: {name} should not be there")
    for name in sorted(wanted - found):
        faults.append(f"{what}: {name} is missing")


image = pefile.PE(dll)
faults += image.get_warnings()
exports = {each.name.decode() for each in image.DIRECTORY_ENTRY_EXPORT.symbols}
expect("exports (pefile)", exports, set(read_exports(root / "exports.def")))
known = {f"{library}.dll": imports for library, imports in
         read_imports((root / "platform" / "imports").glob("*.def"))}
for library in image.DIRECTORY_ENTRY_IMPORT:
    listed = known.get(library.dll.decode(), {})
    expected = {ordinal or name for name, ordinal in listed.items()}
    found = {each.ordinal or each.name.decode() for each in library.imports}
    expect(f"imports from {library.dll.decode()} (pefile)", found, found & expected)

read = output("llvm-readobj", "--file-headers", "--sections", "--coff-exports", "--coff-imports", dll)
expect("exports (llvm-readobj)", set(re.findall(r"Export \{[^}]*Name: (\w+)", read)), exports)
for line in ("Machine: IMAGE_FILE_MACHINE_THUMB (0x1C2)", "Subsystem: IMAGE_SUBSYSTEM_WINDOWS_CE_GUI (0x9)",
             "MajorSubsystemVersion: 5", "ImageBase: 0x10000000", "Name: .shared"):
    if line not in read:
        faults.append(f"llvm-readobj does not read '{line}'")

sections = {each.Name.rstrip(b"\0").decode(): each for each in image.sections}
if sections[".shared"].Characteristics != 0xD0000040:
    faults.append(f".shared has the flags {sections['.shared'].Characteristics:#x}")
writable = sum(each.Misc_VirtualSize for each in image.sections if each.IMAGE_SCN_MEM_WRITE)
for what, size, most in (("writable data", writable, MOST_WRITABLE_BYTES),
                         ("the file", dll.stat().st_size, MOST_BYTES)):
    if size >= most:
        faults.append(f"{what} has {size} bytes; the limit is {most}")

faults += [f"an instruction that the processor does not have: {found[0].strip()}" for found in
           MISSING_INSTRUCTIONS.finditer(output("arm-none-eabi-objdump", "--disassemble", elf))]
code = dll.with_suffix(".text")
output("arm-none-eabi-objcopy", "--dump-section", f".text={code}", elf, "/dev/null")
if not sections[".text"].get_data().startswith(code.read_bytes()):
    faults.append(".text is not the code of the linked program")
code.unlink()

for fault in faults:
    print(f"{dll.name}: {fault}", file=sys.stderr)
sys.exit(1 if faults else 0)
