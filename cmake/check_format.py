#!/usr/bin/env python3
"""Checks that every C and C++ file of the project is as clang-format would write it."""
import pathlib
import subprocess
import sys

root = pathlib.Path(sys.argv[1])
files = []
for folder in sorted(root.iterdir()):
    if folder.is_dir() and folder.name != "build" and not folder.name.startswith("."):
        files += [file for suffix in ("cpp", "h", "c") for file in sorted(folder.rglob(f"*.{suffix}"))]
if not files:
    sys.exit("no files to check")
sys.exit(subprocess.run(["clang-format", "--dry-run", "--Werror", *files], cwd=root).returncode)
