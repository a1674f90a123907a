#!/usr/bin/env python3
"""Checks that faults of the headers are found: contract_test.py PROJECT_ROOT

Each row changes one file of the interface and says what has to be found then. The files as they are have no fault.
"""
import pathlib
import shutil
import sys
import tempfile

root = pathlib.Path(sys.argv[1]).resolve()
sys.path.insert(0, str(root / "cmake"))
sys.dont_write_bytecode = True
from contract import Contract  # noqa: E402

VERSION = "/**\n * Writes the version"
CASES = [
    # file, what is replaced (None: the text is put at the end), by what, what is found
    ("include/palver.h", "@retval S_OK  Always, also", "Also", "PALVER_LogVersion: does not say what it returns"),
    ("include/palver.h", "@retval S_OK  Always, also", "@retval S_MAYBE  Also", "S_MAYBE is no result"),
    ("include/palver.h", "@retval S_OK  Always, also without an event log.", "@retval S_OK", "cause of S_OK is missing"),
    ("include/palver.h", "@retval S_OK  Always, also", "@result S_OK  Also", "@result is no tag"),
    ("include/palver.h", "event log.\n */", "event log.\n *\n * And this.\n */", "'And this.' stands behind the tags"),
    ("include/palver.h", VERSION, VERSION.replace("/**", "/*"), "PALVER_LogVersion: has no comment"),
    ("include/palver.h", "HRESULT PALAPI PALVER_LogVersion(void);", "HRESULT PALAPI PALVER_LogVersion();",
     "PALVER_LogVersion: '' is no parameter of the form"),
    ("include/palver.h", "HRESULT PALAPI PALVER", "extern HRESULT PALAPI PALVER", "is no declaration of a known form"),
    ("include/palver.h", "PALVER_LogVersion(void)", "PALVER_Version(void)", "PALVER_Version: is not in exports.def"),
    ("include/palver.h", "@family frame", "@family switches", "PALVER_LogVersion: is not defined in switches/"),
    ("include/palver.h", "@family frame", "@family frames", "@family 'frames' is no folder of the library"),
    ("include/palver.h", "@file palver.h", "@file version.h", "palver.h:1: does not begin with @file"),
    ("include/palver.h", "with facility 1071", "as PALVER_Log does", "PALVER_Log is no export"),
    ("include/palver.h", "with facility 1071", "or 0x80004005", "palver.h:17: a result stands as a number"),
    ("include/palvib.h", "@param preset  1 to 9", "1 to 9", "the parameter preset has no @param"),
    ("include/palvib.h", "@param preset  1", "@param presets  1", "documents presets, which is no parameter"),
    ("include/palvib.h", "@param preset  1", "@param[out] preset  1", "@param[out] preset is not what DWORD says"),
    ("include/palvib.h", "@param preset  1", "@param preset  [knots] 1", "[knots] of preset is none of the units"),
    ("include/palvib.h", "@param preset  1", "@param preset  #PALPreset 1", "#PALPreset of preset is no enumeration"),
    ("include/palvib.h", "@p preset is null", "@p number is null", "@p number is no parameter"),
    ("include/palvib.h", "@like PALVIBVibrate", "@like PALVIBShake", "@like PALVIBShake: there is no such export"),
    ("include/palvib.h", "@like PALVIBVibrate", "@like PALVIBVibrateEx", "@like PALVIBVibrateEx: comes back to it"),
    ("include/palvalues.h", "  /** Silent. */\n", "", "PALTapVolume: PAL_TAP_VOLUME_OFF has no comment"),
    ("include/palresult.h", "PAL_RESULT(0x80004005)", "PAL_RESULT(x)", "'PAL_RESULT(x)' is no result code"),
    ("include/palresult.h", "PAL_RESULT(0x80004005)", "0x80004005", "is no declaration of a known form"),
    ("include/pal.h", '#include "palver.h"\n', "", "does not include palver.h"),
    ("exports.def", "    PALVER_LogVersion\n", "", "PALVER_LogVersion: is not in exports.def"),
    ("exports.def", None, "    PalZoo\n", "no header declares PalZoo"),
    ("exports.def", None, "    PALBOOT_Again\n", "PALBOOT_Again is not in the order of the alphabet"),
    ("exports.def", None, "    PALZoo @1\n", "'    PALZoo @1' is neither NAME nor NAME = FUNCTION"),
]


def faults_with(folder, file, old, new):
    path = folder / file
    whole = path.read_text()
    if old is not None and old not in whole:
        return f"{file} does not have '{old}': mend this test"
    path.write_text(whole + new if old is None else whole.replace(old, new, 1))
    try:
        return "\n".join(Contract(folder).faults)
    finally:
        path.write_text(whole)


failures = [f"as it is: {fault}" for fault in Contract(root).faults]
with tempfile.TemporaryDirectory() as name:
    copy = pathlib.Path(name) / "project"
    shutil.copytree(root / "include", copy / "include")
    shutil.copy(root / "exports.def", copy)
    for source in root.glob("*/**/*.cpp"):
        if source.relative_to(root).parts[0] not in {"build", "tests", "tools", "bench", "platform"}:
            (copy / source.relative_to(root)).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, copy / source.relative_to(root))
    for file, old, new, expected in CASES:
        found = faults_with(copy, file, old, new)
        if expected not in found:
            failures.append(f"{file}, '{old}' -> '{new}': expected '{expected}', found: {found or 'nothing'}")
print("\n".join(failures) if failures else f"{len(CASES)} faults found")
sys.exit(1 if failures else 0)
