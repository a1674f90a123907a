#!/usr/bin/python3
"""Makes a Windows CE image of a linked ELF file.

usage: pack.py ELF OUTPUT --imports DEFINITION... [--exports DEFINITION...] [--machine 0x1C2]

The ELF file is linked with image.ld, with its relocations kept (ld --emit-relocs). With exports the image is a DLL,
else a program. What the packer does not know (a section, a relocation, an undefined symbol) is an error that names it.
Unwinding tables go into OUTPUT.exidx: the tests on a host need them, the device does not.
"""
import argparse
import pathlib
import struct
import sys
import zlib

from elftools.elf.descriptions import describe_reloc_type
from elftools.elf.elffile import ELFFile
from elftools.elf.relocation import RelocationSection

from definitions import read_exports, read_imports

PAGE, FILE_ALIGNMENT = 0x1000, 0x200
SUBSYSTEM_WINDOWS_CE, VERSION = 9, (5, 0)
CODE, DATA = 0x20, 0x40
SHARED, EXECUTE, READ, WRITE, DISCARDABLE = 0x10000000, 0x20000000, 0x40000000, 0x80000000, 0x02000000
FLAGS = {
    ".text": CODE | EXECUTE | READ,
    ".rdata": DATA | READ,
    ".shared": DATA | READ | WRITE | SHARED,
    ".data": DATA | READ | WRITE,
    ".edata": DATA | READ,
    ".idata": DATA | READ,
    ".reloc": DATA | READ | DISCARDABLE,
}
UNWINDING = (".ARM.extab", ".ARM.exidx")
ABSOLUTE = {"R_ARM_ABS32"}
# Distances within the image: they stay as they are wherever it is loaded. Those of Thumb code are not known: an export
# in Thumb code has an odd address, which not every caller can jump to.
RELATIVE = {"R_ARM_NONE", "R_ARM_PC24", "R_ARM_REL32", "R_ARM_CALL", "R_ARM_JUMP24", "R_ARM_V4BX", "R_ARM_PREL31"}


def align(number, to):
    return -(-number // to) * to


class Section:
    def __init__(self, rva, data, size=None):
        self.rva, self.data, self.size = rva, bytearray(data), size or len(data)


class Program:
    """The linked program: its sections, the addresses of its symbols, and what the loader has to relocate."""

    def __init__(self, file):
        self.elf = ELFFile(file)
        self.entry = self.elf["e_entry"]
        self.sections, self.relocations = {}, []
        loaded = [each for each in self.elf.iter_sections() if each["sh_flags"] & 2 and each["sh_size"]]
        self.base = min(each["sh_addr"] for each in loaded) - PAGE
        for section in loaded:
            self.add_section(section)
        table = self.elf.get_section_by_name(".symtab")
        self.symbols = {each.name: each["st_value"] - self.base for each in table.iter_symbols() if each.name}
        for section in self.elf.iter_sections():
            if isinstance(section, RelocationSection):
                self.add_relocations(section, table)

    def add_section(self, section):
        name, rva = section.name, section["sh_addr"] - self.base
        if name in UNWINDING:
            return
        if name == ".bss":  # goes on behind .data
            data = self.sections.setdefault(".data", Section(rva, b""))
            data.size = rva - data.rva + section["sh_size"]
        elif name == ".init_array":
            sys.exit(f"{name}: the program has static constructors, which nobody would run")
        elif name not in FLAGS:
            sys.exit(f"{name}: a section that has no place in the image")
        else:
            self.sections[name] = Section(rva, section.data())

    def add_relocations(self, section, table):
        target = self.elf.get_section(section["sh_info"])
        if not target["sh_flags"] & 2 or target.name in UNWINDING:
            return
        for relocation in section.iter_relocations():
            kind = describe_reloc_type(relocation["r_info_type"], self.elf)
            symbol = table.get_symbol(relocation["r_info_sym"])
            if symbol["st_shndx"] == "SHN_UNDEF" and symbol.name:
                sys.exit(f"{symbol.name}: an undefined symbol")
            if kind not in ABSOLUTE | RELATIVE:
                sys.exit(f"{kind} at {relocation['r_offset']:#x}: a relocation that the loader does not have")
            if kind in ABSOLUTE and symbol["st_shndx"] != "SHN_ABS":
                self.relocations.append(relocation["r_offset"] - self.base)

    def unwinding_tables(self):
        parts = [part for part in map(self.elf.get_section_by_name, UNWINDING) if part is not None]
        if not parts:
            return b""
        first, index = min(part["sh_addr"] for part in parts), parts[-1]
        tables = bytearray(index["sh_addr"] + index["sh_size"] - first)
        for part in parts:
            at = part["sh_addr"] - first
            tables[at:at + part["sh_size"]] = part.data()
        header = struct.pack("<4sIII", b"EXID", first - self.base, index["sh_addr"] - self.base,
                             index["sh_size"] // 8)
        return header + tables


class Image:
    """The sections of the file, in the order of their addresses."""

    def __init__(self, program):
        self.program, self.sections = program, dict(program.sections)
        self.directories = [(0, 0)] * 16
        self.end = max(align(each.rva + each.size, PAGE) for each in self.sections.values())

    def add(self, name, data, directory, size=None):
        self.sections[name] = Section(self.end, data)
        self.directories[directory] = (self.end, size or len(data))
        self.end = align(self.end + len(data), PAGE)

    def add_imports(self, definitions):
        """One descriptor for each library that is used. A function stands there by its name or its ordinal."""
        used = {library: {name: ordinal for name, ordinal in imports.items()
                          if f"import_{name}" in self.program.symbols}
                for library, imports in read_imports(definitions)}
        used = {library: imports for library, imports in used.items() if imports}
        descriptors_size = 20 * (len(used) + 1)
        descriptors, texts = b"", bytearray()

        def put(data):
            at = self.end + descriptors_size + len(texts)
            texts.extend(data + b"\0" * (-len(data) % 4))
            return at

        for library, imports in used.items():
            rows = sorted((self.program.symbols[f"import_{name}"], name, imports[name]) for name in imports)
            first = rows[0][0]
            slots = [slot for slot, _, _ in rows] + [self.program.symbols[f"end_of_{library}"]]
            if slots != list(range(first, first + 4 * len(slots), 4)):
                sys.exit(f"{library}: the slots of its imports do not stand together")
            entries = [0x80000000 | ordinal if ordinal else put(b"\0\0" + name.encode() + b"\0")
                       for _, name, ordinal in rows]
            lookup = struct.pack(f"<{len(slots)}I", *entries, 0)
            data = self.sections[".data"]
            data.data[first - data.rva:first - data.rva + len(lookup)] = lookup
            descriptors += struct.pack("<5I", put(lookup), 0, 0, put(f"{library}.dll".encode() + b"\0"), first)
        self.add(".idata", descriptors + bytes(20) + texts, 1, descriptors_size)
        slots = [at for name, at in self.program.symbols.items() if name.startswith(("import_", "end_of_"))]
        self.directories[12] = (min(slots), max(slots) + 4 - min(slots))

    def add_exports(self, definitions, library):
        """The export directory, sorted by name."""
        exports = sorted((name.encode(), function) for definition in definitions
                         for name, function in read_exports(definition).items())
        for _, function in exports:
            if function not in self.program.symbols:
                sys.exit(f"{function}: an export that the program does not have")
        count = len(exports)
        names_at = self.end + 40 + 10 * count
        texts = library.encode() + b"\0"
        addresses, names = [], []
        for name, function in exports:
            addresses.append(self.program.symbols[function])
            names.append(names_at + len(texts))
            texts += name + b"\0"
        tables = [self.end + 40, self.end + 40 + 4 * count, self.end + 40 + 8 * count]
        data = struct.pack("<IIHHIIIIIII", 0, 0, 0, 0, names_at, 1, count, count, *tables)
        data += struct.pack(f"<{2 * count}I{count}H", *addresses, *names, *range(count))
        self.add(".edata", data + texts, 0)

    def add_relocations(self):
        """Blocks of a page each; every entry is an address of 32 bits."""
        pages = {}
        for rva in sorted(set(self.program.relocations)):
            pages.setdefault(rva // PAGE * PAGE, []).append(0x3000 | rva % PAGE)
        data = b""
        for page, entries in pages.items():
            entries += [0] * (len(entries) % 2)
            data += struct.pack(f"<II{len(entries)}H", page, 8 + 2 * len(entries), *entries)
        self.add(".reloc", data, 5)

    def to_bytes(self, machine, is_library):
        sections = sorted(self.sections.items(), key=lambda row: row[1].rva)
        headers_size = align(0x80 + 4 + 20 + 224 + 40 * len(sections), FILE_ALIGNMENT)
        table, body = b"", b""
        for name, section in sections:
            raw = align(len(section.data), FILE_ALIGNMENT)
            table += struct.pack("<8sIIIIIIHHI", name.encode(), section.size, section.rva, raw,
                                 headers_size + len(body) if raw else 0, 0, 0, 0, 0, FLAGS[name])
            body += section.data.ljust(raw, b"\0")

        first_data = next(section.rva for name, section in sections if FLAGS[name] & DATA)

        def total(flag):
            return sum(align(len(each.data), FILE_ALIGNMENT) for name, each in sections if FLAGS[name] & flag)

        optional = struct.pack(
            "<HBBIIIIIIIIIHHHHHHIIIIHHIIIIII", 0x10B, 2, 40, total(CODE), total(DATA), 0,
            self.program.entry - self.program.base, self.sections[".text"].rva, first_data,
            self.program.base, PAGE, FILE_ALIGNMENT, 4, 0, 1, 0, *VERSION, 0, self.end, headers_size, 0,
            SUBSYSTEM_WINDOWS_CE, 0, 0x10000, PAGE, 0x100000, PAGE, 0, 16)
        optional += b"".join(struct.pack("<II", *directory) for directory in self.directories)
        # Executable, 32 bits, no line numbers, no symbols; of a DLL, too, that it is one.
        characteristics = 0x010E | (0x2000 if is_library else 0)
        # The content decides the time stamp, so that the same sources give the same file.
        stamp = zlib.crc32(optional + table + body)
        header = b"MZ".ljust(0x3C, b"\0") + struct.pack("<I", 0x80) + bytes(0x40) + b"PE\0\0"
        header += struct.pack("<HHIIIHH", machine, len(sections), stamp, 0, 0, len(optional), characteristics)
        return (header + optional + table).ljust(headers_size, b"\0") + body


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("elf", type=pathlib.Path)
    parser.add_argument("output", type=pathlib.Path)
    parser.add_argument("--imports", type=pathlib.Path, nargs="+", required=True)
    parser.add_argument("--exports", type=pathlib.Path, nargs="+")
    parser.add_argument("--machine", type=lambda text: int(text, 0), choices=(0x1C0, 0x1C2), default=0x1C2)
    options = parser.parse_args()
    with options.elf.open("rb") as file:
        program = Program(file)
        image = Image(program)
        image.add_imports(options.imports)
        if options.exports:
            image.add_exports(options.exports, options.output.name)
        image.add_relocations()
        content = image.to_bytes(options.machine, options.exports is not None)
        options.output.write_bytes(content)
        options.output.with_name(options.output.name + ".exidx").write_bytes(program.unwinding_tables())
    sizes = ", ".join(f"{name} {each.size}" for name, each in image.sections.items())
    print(f"{options.output.name}: {len(content)} bytes; {sizes}; {len(program.relocations)} relocations")


main()
