#!/usr/bin/env python3
"""Checks that every tracked C and C++ file is as clang-format would write it."""
import pathlib
import subprocess
import sys

root = pathlib.Path(sys.argv[1])
files = subprocess.run(
    ["git", "-C", str(root), "ls-files", "--cached", "--others", "--exclude-standard", "--",
     "*.cpp", "*.h", "*.c"], capture_output=True, text=True, check=True).stdout.split()
if not files:
    sys.exit("no files to check")
result = subprocess.run(["clang-format", "--dry-run", "--Werror", *files], cwd=root)
sys.exit(result.returncode)
