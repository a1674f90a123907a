#!/usr/bin/env python3
"""Prints what the tests ran of the library: lines and branches, by folder, and where the rest is.

usage: coverage.py BUILD_DIRECTORY PROJECT_ROOT

Reads the counts that processes of a build for coverage left in BUILD_DIRECTORY/counts.
"""
import collections
import json
import pathlib
import subprocess
import sys

build, root = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
OTHER_FOLDERS = {"platform", "tools", "tests", "bench", "build", "include"}


def tool(name):
    """LLVM's tools carry the version of the compiler in their names where it is not the system's own."""
    version = subprocess.run(["clang++", "-dumpversion"], capture_output=True, text=True, check=True).stdout
    return f"{name}-{version.split('.')[0]}"


counts = sorted(map(str, (build / "counts").glob("*.profraw")))
if not counts:
    sys.exit(f"no counts in {build / 'counts'}")
merged = build / "coverage.profdata"
subprocess.run([tool("llvm-profdata"), "merge", "--sparse", "-o", merged, *counts], check=True)
exported = subprocess.run([tool("llvm-cov"), "export", build / "bin" / "DVLORQPAL.so", "-object",
                           build / "bin" / "DVLORQPAL_internals.so", f"--instr-profile={merged}"],
                          capture_output=True, text=True, check=True).stdout

folders = collections.defaultdict(lambda: [0, 0, 0, 0])
rest = []
for file in json.loads(exported)["data"][0]["files"]:
    name = (build / file["filename"]).resolve()
    if root not in name.parents or name.relative_to(root).parts[0] in OTHER_FOLDERS:
        continue
    name = name.relative_to(root)
    lines, text = file["summary"]["lines"], (root / name).read_text().splitlines()
    # What the compiler decides is no branch of the code that runs.
    branches_run = [branch for branch in file["branches"] if "if constexpr" not in text[branch[0] - 1]]
    # Of each branch, how often it was taken and how often not; a place in a template has one for each instance.
    branches = collections.Counter()
    for line, column, _, _, taken, not_taken, *_ in branches_run:
        branches[line, column, True] += taken
        branches[line, column, False] += not_taken
    for index, number in enumerate((lines["covered"], lines["count"],
                                    sum(count > 0 for count in branches.values()), len(branches))):
        folders[name.parts[0]][index] += number
        folders["all"][index] += number
    for line, _, count, has_count, begins, *_ in file["segments"]:
        if has_count and begins and count == 0:
            rest.append((str(name), line, "never runs", text[line - 1].strip()))
    for (line, column, taken), count in branches.items():
        if count == 0:
            rest.append((str(name), line, f"never {str(taken).lower()}", text[line - 1][column - 1:].strip()))

print(f"{'':12} {'lines':>12} {'':>8} {'branches':>12}")
for folder in sorted(folders, key=lambda name: (name == "all", name)):
    line_hits, line_count, branch_hits, branch_count = folders[folder]
    print(f"{folder:12} {line_hits:6}/{line_count:<6} {line_hits / max(line_count, 1):7.1%} "
          f"{branch_hits:6}/{branch_count:<6} {branch_hits / max(branch_count, 1):7.1%}")
print()
for name, line, what, text in sorted(set(rest)):
    print(f"{name}:{line}: {what}: {text}")
