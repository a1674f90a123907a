#!/usr/bin/env python3
"""Installs the build, moves what was installed, and uses it from there: install_test.py CMAKE BUILD_FOLDER"""
import gzip
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD = sys.argv.pop(1), pathlib.Path(sys.argv.pop(1)).resolve()
HERE = pathlib.Path(__file__).parent


def run(*command, status=0, **environment):
    done = subprocess.run(command, capture_output=True, text=True, timeout=240,
                          env={**os.environ, "CMAKE_BUILD_PARALLEL_LEVEL": "2", "PALSIM_SAMPLES": "", **environment})
    assert done.returncode == status, (command, done.returncode, done.stdout, done.stderr)
    return done.stdout + done.stderr


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        root = pathlib.Path(cls.folder.name)
        run(CMAKE, "--install", BUILD, "--prefix", root / "first")
        cls.prefix = (root / "first").rename(root / "moved")
        cls.unit = root / "unit"
        cls.palsim = cls.prefix / "bin/palsim"
        cls.data = cls.prefix / "share/dvlorqpal"

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_tools_work_from_where_they_lie(self):
        version = run(self.palsim, "--version").split()
        self.assertEqual(version[0], "palsim")
        self.assertEqual(run(self.prefix / "bin/dcecfg", "--version").split(), ["dcecfg", version[1]])
        self.assertEqual([line.split()[0] for line in run(self.palsim, "samples").splitlines()],
                         sorted(each.name for each in (self.data / "devices").iterdir()))
        run(self.palsim, self.unit, "run", self.data / "scenarios/good-read.scenario", "--new")
        maps = subprocess.run(["ldd", self.palsim], capture_output=True, text=True).stdout
        self.assertNotIn(str(BUILD), maps)
        self.assertIn(str(self.prefix), os.path.realpath(maps.split("libsimdevice.so => ")[1].split()[0]))

    def test_samples_that_are_elsewhere(self):
        elsewhere = self.data.parent / "samples"
        (self.data / "devices").rename(elsewhere)
        try:
            message = run(self.palsim, self.unit, "new", "--force", status=2)
            self.assertIn("PALSIM_SAMPLES", message)
            run(self.palsim, self.unit, "new", "--force", PALSIM_SAMPLES=str(elsewhere))
        finally:
            elsewhere.rename(self.data / "devices")

    def test_bash_completes_what_the_tools_take(self):
        (self.prefix.parent / "play.scenario").write_text("expect led 3 is off\n")
        for line, candidates in (
                ("palsim sa", ["samples"]),
                ("palsim unit reg", ["registry"]),
                ("palsim --usage PALKEYSetButtonA", ["PALKEYSetButtonAction"]),
                ("palsim unit call PALKEYSetButtonAction 5 PAL_KEY_ACTION_SC", ["PAL_KEY_ACTION_SCAN"]),
                ("palsim unit new --sample rm", ["rm21", "rm23"]),
                ("palsim unit run pl", ["play.scenario"]),
                ("palsim unit journal --effect mu", ["mutex"]),
                ("palsim test --ju", ["--junit"]),
                ("palsim unit exp", []),  # is for no device
                ("dcecfg ch", ["check"]),
                ("dcecfg build --o", ["--output"])):
            words = line.split()
            script = (f"source {self.prefix}/share/bash-completion/completions/{words[0]}; COMP_CWORD={len(words) - 1};"
                      f"COMP_WORDS=({line}); complete -p {words[0]} >/dev/null; compopt() {{ :; }};"
                      f"_palsim {self.prefix}/bin/{words[0]} {words[-1]} {words[-2]}; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
            done = subprocess.run(["bash", "--norc", "-c", script], capture_output=True, text=True,
                                  cwd=self.prefix.parent)
            self.assertEqual(done.stdout.split(), candidates, (line, done.stderr))

    def test_man_pages_have_what_the_tools_say(self):
        for page, said in (("man1/palsim.1", ("--usage", "palsim serve", "Search for runs")),
                           ("man1/dcecfg.1", ("dcecfg build", "--output")),
                           ("man7/palsim-scenario.7", ("PROCESS is killed", "turns change by", "MUTEX abandoned"))):
            text = gzip.open(f"{self.prefix}/share/man/{page}.gz", "rt").read().replace("\\-", "-")
            for each in said:
                self.assertIn(each, text)

    def flags(self, package):
        folder = str(self.prefix / "lib/pkgconfig")
        return run("pkg-config", "--cflags", "--libs", package, PKG_CONFIG_PATH=folder).split()

    def test_another_project_builds_with_pkg_config(self):
        build = self.prefix.parent / "packaged.so"
        run("cc", "-shared", "-fPIC", "-Wall", "-Werror", "-Wl,-z,defs", "-o", build, self.data / "examples/alarm.c",
            *self.flags("dvlorqpal"), "-lc")
        self.assertIn("\n0 findings", run(self.palsim, "explore", "--program", build, "--seeds", "1-1"))
        build = self.prefix.parent / "packaged_test"
        run("c++", "-std=c++11", "-Wall", "-Werror", "-o", build, HERE / "device_test.cpp",
            *self.flags("dvlorqpal-simdevice"))
        self.assertEqual(run(build, self.prefix.parent / "packaged_device"), "passed\n")

    def test_another_project_builds_with_it(self):
        build = self.prefix.parent / "project"
        run(CMAKE, "-S", HERE, "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}",
            f"-DSOURCE={self.data}/examples/alarm.c")
        run(CMAKE, "--build", build)
        # The example has a fault, which the first seeds show.
        found = run(self.palsim, "explore", "--program", build / "alarm.so", "--seeds", "1-200", "--jobs", "1",
                    "--out", build / "found", status=1)
        self.assertIn("the level that is put back is one", found)
        self.assertEqual(run(build / "device_test", build / "saved"), "passed\n")
        self.assertIn("Till", run(self.palsim, build / "saved", "registry", r"HKCU\Software\Shop"))

    def test_headers_compile_alone(self):
        include = self.prefix / "include/dvlorqpal"
        both = sorted(include.glob("*.h"))
        cxx_only = [include / "palsim/device.h", include / "platform/windows.h"]
        self.assertEqual({*both, *cxx_only}, set(include.rglob("*.h")))
        sources = []
        for number, header in enumerate(both + cxx_only):
            sources.append(self.prefix.parent / f"{number}.c")
            sources[-1].write_text(f'#include "{header}"\n')
        for compiler, language, standard in [("gcc", "c", "c99"), ("clang", "c", "c99"), ("g++", "c++", "c++11"),
                                             ("clang++", "c++", "c++11")]:
            run(compiler, f"-std={standard}", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only",
                f"-I{include}", "-x", language, *(sources[:len(both)] if language == "c" else sources))

    def test_tutorial_word_for_word(self):
        """Its commands in one shell, begun in an empty folder. Behind a block stands what it prints, among more."""
        blocks = re.findall(r"^```(\w*)\n(.*?)^```$", (HERE / "../../examples/stockroom/README.md").read_text(),
                            re.MULTILINE | re.DOTALL)
        steps = []
        for language, text in blocks:
            if language == "sh":
                steps.append((text, []))
            else:
                steps[-1][1].extend(text.splitlines())
        folder = self.prefix.parent / "tutorial"
        folder.mkdir()
        script = "".join(f'{text}echo "== $?"\n' for text, _ in steps)
        done = subprocess.run(["bash"], input=script, cwd=folder, text=True, capture_output=True, timeout=240,
                              env={**os.environ, "CMAKE_BUILD_PARALLEL_LEVEL": "2", "PREFIX": str(self.prefix)})
        said = re.findall(r"(.*?)^== (\d+)$", done.stdout, re.MULTILINE | re.DOTALL)
        self.assertEqual((len(said), len(steps)), (5, 5), done)
        for (commands, expected), (output, status) in zip(steps, said):
            with self.subTest(commands=commands):
                fails = any(re.search("[1-9] tests failed", line) for line in expected)
                self.assertEqual(status != "0", fails, output + done.stderr)
                for line in expected:
                    self.assertIn(line, output + done.stderr)


unittest.main()
