#!/usr/bin/env python3
"""The hosts in examples/, built and run with what `cmake --install` installs and nothing else:
installed_test.py CMAKE BUILD SOURCE."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
SAMPLES, EXAMPLES = SOURCE / "samples", SOURCE / "examples"


def run(*command, **options):
    done = subprocess.run([str(part) for part in command], capture_output=True, **options)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def without_moments(text):
    return re.sub(r"\d+/\d+/\d{4}( \d+:\d+:\d+ [AP]M)?|@DATE@", "MOMENT", text)


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="trvtrout-test-"))
        cls.prefix = cls.folder / "prefix"
        status, out, err = run(CMAKE, "--install", BUILD, "--prefix", cls.prefix)
        assert status == 0, out + err
        cls.library = next(cls.prefix.rglob("libtrvtrout.so.1"))
        cls.header = next(cls.prefix.rglob("include/trvtrout.h"))
        for name in ["plant", "plant-next"]:
            shutil.copy(SAMPLES / f"{name}.vtr", cls.folder)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def built(self, name):
        """The folder in which the example was built."""
        build = self.folder / name
        for command in [[CMAKE, "-S", EXAMPLES / name, "-B", build, "-G", "Ninja",
                         f"-DCMAKE_PREFIX_PATH={self.prefix}"], [CMAKE, "--build", build]]:
            status, out, err = run(*command)
            self.assertEqual(status, 0, out + err)
        return build

    def test_shows_what_symbols_txt_names_and_the_header_declares(self):
        names = (SOURCE / "embed/symbols.txt").read_text().split()
        status, out, err = run("nm", "-D", "--defined-only", self.library)
        shown = [line.split()[-1] for line in out.splitlines()]
        self.assertEqual(sorted(shown), sorted(["TRVTROUT_1"] + [f"{name}@@TRVTROUT_1" for name in names]))
        declared = re.findall(r"^TRVTROUT_API[^(]*?(trvtrout_\w+)\(", self.header.read_text(), re.MULTILINE)
        self.assertEqual(sorted(declared), sorted(names))

    def test_the_header_says_how_each_operation_of_the_class_is_reached(self):
        operations = re.findall(r"^  (?:Boolean|std::u16string) (\w+)\(",
                                (SOURCE / "component/TarvelVtrOut_InOut.h").read_text(), re.MULTILINE)
        self.assertEqual(len(operations), 43)  # those of the interface, and SalvageVTR
        header = self.header.read_text()
        missing = [name for name in operations if not re.search(rf"\b{name}\b", header)]
        self.assertEqual(missing, [])

    def test_the_header_is_plain_c(self):
        for compiler, language in [("cc", "c99"), ("cc", "c11"), ("c++", "c++98"), ("c++", "c++20")]:
            kind = "c" if compiler == "cc" else "c++"
            status, _, err = run(compiler, f"-std={language}", "-pedantic", "-Wall", "-Wextra", "-Werror",
                                 "-Wno-long-long", "-fsyntax-only", "-x", kind, self.header)
            self.assertEqual((status, err.replace("#pragma once in main file", "")), (0, ""), language)

    def test_c(self):
        program = self.built("c") / "differences_in_c"
        reports = self.folder / "reports"
        reports.mkdir()
        arguments = [self.folder / "plant.vtr", self.folder / "plant-next.vtr", reports]
        status, out, err = run(program, *arguments)
        self.assertEqual(status, 1, err)
        told = json.loads(out)
        self.assertEqual((told["form"], told["counts"]["changed"]), ("vtr-differences", 17))
        report = reports / "~tmpplant-next_Table.CSV"
        self.assertEqual(err, f"{report}\n")
        expected = (SAMPLES / "expected/plant-next.vtr/report-table.csv").read_bytes().decode("cp1252")
        expected = expected.replace("@FNAME@", str(self.folder / "plant-next.vtr").replace("/", "\\"))
        self.assertEqual(without_moments(report.read_bytes().decode("cp1252")), without_moments(expected))
        status, _, err = run(program, self.folder / "none.vtr", *arguments[1:])
        self.assertEqual(status, 2)
        self.assertIn("none.vtr", err)

    def test_cpp(self):
        program = self.built("cpp") / "reports_in_memory"
        status, out, err = run(program, input=(SAMPLES / "plant.vtr").read_bytes())
        self.assertEqual((status, err), (0, ""))
        expected = "".join((SAMPLES / f"expected/plant.vtr/report-{part}.csv").read_bytes().decode("cp1252")
                           for part in ["table", "field"]).replace("@FNAME@", "stdin.vtr")
        self.assertEqual(without_moments(out), without_moments(expected))
        self.assertEqual(run(program, input=b"no document")[0], 2)

    def test_python(self):
        script, library = EXAMPLES / "python/lists.py", {**os.environ, "TRVTROUT": str(self.library)}
        status, out, err = run(sys.executable, script, self.folder / "plant.vtr", env=library)
        self.assertEqual(status, 0, err)
        lines = [line.strip() for line in out.splitlines()]
        self.assertEqual(lines[0], "product PLANT")
        self.assertTrue({"tables 6", "fields 48", "modified 6/2/2004 9:05:00 AM"} <= set(lines), out)
        size = (SAMPLES / "plant.vtr").stat().st_size
        self.assertIn(f"{size} of {size} bytes", err)
        status, _, err = run(sys.executable, script, script, env=library)
        self.assertIn("not a VTR file", err)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v"])
