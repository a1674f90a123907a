#!/usr/bin/env python3
"""Installs the build, moves what was installed, and uses it from there: install_test.py CMAKE BUILD_FOLDER"""
import gzip
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD = sys.argv.pop(1), pathlib.Path(sys.argv.pop(1)).resolve()
HERE = pathlib.Path(__file__).parent


def run(*command, status=0, **environment):
    done = subprocess.run(command, capture_output=True, text=True, timeout=240,
                          env={**os.environ, "PALSIM_SAMPLES": "", **environment})
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

    def test_another_project_builds_with_pkg_config(self):
        build = self.prefix.parent / "packaged.so"
        flags = run("pkg-config", "--cflags", "--libs", "dvlorqpal", PKG_CONFIG_PATH=str(self.prefix / "lib/pkgconfig"))
        run("cc", "-shared", "-fPIC", "-Wall", "-Werror", "-Wl,-z,defs", "-o", build, self.data / "examples/alarm.c",
            *flags.split(), "-lc")
        self.assertIn("\n0 findings", run(self.palsim, "explore", "--program", build, "--seeds", "1-1"))

    def test_another_project_builds_with_it(self):
        build = self.prefix.parent / "project"
        run(CMAKE, "-S", HERE, "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}",
            f"-DSOURCE={self.data}/examples/alarm.c")
        run(CMAKE, "--build", build)
        # The example has a fault, which the first seeds show.
        found = run(self.palsim, "explore", "--program", build / "alarm.so", "--seeds", "1-200", "--jobs", "1",
                    "--out", build / "found", status=1)
        self.assertIn("the level that is put back is one", found)


unittest.main()
