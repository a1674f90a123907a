#!/usr/bin/env python3
"""Unpacks a zip file of ./package and builds a program with it: cross_test.py ZIP TOOL_CHAIN_FILE FOLDER

The program for Windows runs under Wine; of the one for the handheld llvm-readobj lists the imports.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import zipfile

archive, tool_chain, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve(), pathlib.Path(sys.argv[3])


def run(*command, cwd=None):
    done = subprocess.run(command, cwd=cwd, capture_output=True, text=True, errors="replace", timeout=240)
    if done.returncode != 0:
        sys.exit(f"{command}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


shutil.rmtree(folder, ignore_errors=True)
with zipfile.ZipFile(archive) as content:
    content.extractall(folder)
    for each in content.infolist():  # zipfile forgets which files are programs
        (folder / each.filename).chmod(each.external_attr >> 16 & 0o777)
prefix, build = (folder / archive.stem).resolve(), (folder / "build").resolve()
run("cmake", "-S", pathlib.Path(__file__).parent / "cross", "-B", build, "-G", "Ninja",
    f"-DCMAKE_TOOLCHAIN_FILE={tool_chain}", f"-DCMAKE_PREFIX_PATH={prefix}", "-DCMAKE_C_FLAGS=-Wall -Wextra -Werror")
run("cmake", "--build", build)
program = build / "caller.exe"
imported = re.findall(r"Symbol: (\w+)", run("llvm-readobj", "--coff-imports", program))
if (prefix / "bin/coredll.dll").exists():
    shutil.copytree(prefix / "bin", build, dirs_exist_ok=True)
    run("wine", program, cwd=build)
elif sorted(imported) != ["PALKEYGetButtonAction", "PALKEYSetButtonAction"]:
    sys.exit(f"{program} imports {imported}")
print(f"{archive.name}: a program of somebody else builds with it")
