#!/usr/bin/env python3
"""Uses the Debian package as a new user does: debian_test.py PACKAGE

Lintian reads the package. Then a fresh Debian is made in a temporary folder. It gets compilers, the package and what
the package asks for, and nothing of this project's sources.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

package = pathlib.Path(sys.argv[1])
temporary = tempfile.TemporaryDirectory()
folder = pathlib.Path(temporary.name) / "debian"
HERE = pathlib.Path(__file__).parent
TOOLS = "g++,cmake,make,pkgconf,man-db,groff,zsh"
# What the owner of the project has to choose: a license, a maintainer, and the report that asks Debian for the package.
OWNERS_CHOICES = {"no-copyright-file", "bogus-mail-host", "bogus-mail-host-in-debian-changelog",
                  "initial-upload-closes-no-bugs"}


def run(*command, status=0, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=1800, **options)
    if done.returncode != status:
        sys.exit(f"{' '.join(map(str, command))}: {done.returncode}\n{done.stdout}")
    return done.stdout


def inside(script):
    """What a shell of the fresh Debian prints."""
    return run("unshare", "--pid", "--fork", "--mount-proc", f"--root={folder}", "env", "-i", "HOME=/root",
               "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL=C.UTF-8", "sh", "-eu", "-c", script)


def expect(what, said):
    if said not in what:
        sys.exit(f"{what}\ndoes not have: {said}")


found = subprocess.run(["lintian", "--allow-root", "--fail-on", "none", package], capture_output=True, text=True).stdout
print(found, end="")
tags = set(re.findall(r"^[EW]: \S+: (\S+)", found, re.MULTILINE))
if tags - OWNERS_CHOICES:
    sys.exit(f"lintian: {', '.join(sorted(tags - OWNERS_CHOICES))}")

# Not every machine may make a system of its own, or reaches an archive.
for command in (["unshare", "--pid", "--fork", "--mount-proc", "true"],
                ["mmdebstrap", "--quiet", "--variant=apt", f"--include={TOOLS}",
                 "--dpkgopt=path-include=/usr/share/man/*", "--dpkgopt=force-unsafe-io", "bookworm", folder]):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        print(f"skipped: no fresh Debian can be made here: {done.stdout.strip().splitlines()[-1:]}")
        sys.exit()
shutil.copy(package, folder / "package.deb")
inside("apt-get update --quiet && apt-get install --quiet --yes --no-install-recommends /package.deb")

expect(inside("palsim --version; dcecfg --version; palsim samples"), "rm21 ")
expect(inside("cd /tmp; palsim unit run /usr/share/dvlorqpal/scenarios/good-read.scenario --new"), "expectations hold")
for page in ("palsim", "dcecfg", "7 palsim-scenario"):
    said = inside(f"man --warnings {page} 2>&1 >/dev/null")
    if said:
        sys.exit(f"man {page}: {said}")

# Another project, which has the example of the package for a source.
for name in ("CMakeLists.txt", "device_test.cpp"):
    shutil.copy(HERE / name, folder / "tmp")
inside("cd /tmp; cmake -B build -DSOURCE=/usr/share/dvlorqpal/examples/alarm.c . && cmake --build build")
inside("""cd /tmp; cc -shared -fPIC -Wl,-z,defs -o packaged.so /usr/share/dvlorqpal/examples/alarm.c \
          $(pkg-config --cflags --libs dvlorqpal)""")
for program in ("build/alarm.so", "packaged.so"):
    expect(inside(f"cd /tmp; palsim explore --program ./{program} --seeds 1-1 --jobs 1"), "\n0 findings")
# The example of an application, with its tests on a simulated device.
expect(inside("""cp -r /usr/share/dvlorqpal/examples/stockroom /tmp; cd /tmp/stockroom; cmake -B build . && cmake --build build;
                 ctest --test-dir build"""), "100% tests passed")
# Every header alone, in the oldest languages that it is for.
inside("""for header in /usr/include/dvlorqpal/*.h; do
            gcc -std=c99 -pedantic-errors -Wall -Werror -fsyntax-only -x c "$header"
            g++ -std=c++11 -pedantic-errors -Wall -Werror -fsyntax-only -x c++ "$header"
          done""")
expect(inside("zsh -f -c 'autoload -U compinit; compinit -D -u; print $_comps[palsim] $_comps[dcecfg]'"),
       "_palsim _palsim")
expect(inside("apt-get remove --quiet --yes dvlorqpal; find /usr -ipath '*dvlorqpal*' -o -name 'palsim*' | wc -l"),
       "\n0\n")
print(f"{package.name}: tools, samples, man pages, find_package and pkg-config work on a fresh Debian")
