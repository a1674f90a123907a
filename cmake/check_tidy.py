#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build.

usage: check_tidy.py BUILD_DIRECTORY PROJECT_ROOT [FOLDER...]

With folders of the project only their sources are read.

Precompiled headers are left aside: a source is read by what it includes itself.
A source whose text, headers and configuration are as at its last clean run is not read again.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

build, root = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
folders = [root / folder for folder in sys.argv[3:]] or [root]
stamps = build / "tidy"
stamps.mkdir(exist_ok=True)
HOST_FOLDERS = {"platform", "tools", "tests", "bench"}


def configuration(source):
    is_host = source.relative_to(root).parts[0] in HOST_FOLDERS
    return root / "cmake" / "host.clang-tidy" if is_host else root / ".clang-tidy"


def included(source, seen):
    """The project's files that a source includes, itself among them."""
    if source in seen or not source.is_file():
        return seen
    seen.add(source)
    for name in re.findall(r'^#include "([^"]+)"', source.read_text(), re.MULTILINE):
        for folder in (root, source.parent):
            included((folder / name).resolve(), seen)
    return seen


def check(source):
    digest = hashlib.sha256(configuration(source).read_bytes())
    for file in sorted(included(source, set())):
        digest.update(file.read_bytes())
    stamp = stamps / digest.hexdigest()
    if stamp.exists():
        return 0, ""
    run = subprocess.run(["clang-tidy", "--quiet", f"--config-file={configuration(source)}",
                          "-p", str(stamps), str(source)],
                         capture_output=True, text=True)
    if run.returncode == 0:
        stamp.touch()
    return run.returncode, run.stdout


def for_clang(command):
    """The command without precompiled headers; clang has to be told what a compiler for Windows is for and includes."""
    command = re.sub(r" (-Xclang -include(-pch)? -Xclang|-Winvalid-pch -include) \S+", "", command)
    compiler = re.search(r"\S*-mingw32-g\+\+\S*", command)
    if not compiler:
        return command
    said = subprocess.run([compiler[0], "-E", "-x", "c++", "-v", "/dev/null"], capture_output=True, text=True).stderr
    folders = re.findall(r"^ (\S*(?:c\+\+|mingw-w64/include)\S*)$", said, re.MULTILINE)
    return command.replace(compiler[0], " -isystem ".join([f"{compiler[0]} --target=x86_64-w64-windows-gnu", *folders]))


# Of a source that several targets have, the first one's command: clang-tidy would read it once for each.
commands = {}
for entry in json.loads((build / "compile_commands.json").read_text()):
    commands.setdefault(entry["file"], entry)
commands = list(commands.values())
for entry in commands:
    entry["command"] = for_clang(entry["command"])
(stamps / "compile_commands.json").write_text(json.dumps(commands))
sources = sorted({pathlib.Path(entry["file"]) for entry in commands
                  if build not in pathlib.Path(entry["file"]).parents
                  and any(folder in pathlib.Path(entry["file"]).parents for folder in folders)})
if not sources:
    sys.exit("no sources to check")
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    results = list(pool.map(check, sources))
for _, output in results:
    print(output, end="")
sys.exit(1 if any(code for code, _ in results) else 0)
