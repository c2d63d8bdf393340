# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The command "header": prints, changes, shows what it would change, and undoes."""

import os

import numpy

from toolcase import ToolCase, run

LINE = b"# Wavelength 1 A\r\n"


class Header(ToolCase):
    def setUp(self):
        super().setUp()
        self.home = self.folder / "home"
        os.environ["XDG_CONFIG_HOME"] = str(self.home)
        self.addCleanup(os.environ.pop, "XDG_CONFIG_HOME")
        self.paths = [self.cbf(f"x_{number}.cbf") for number in (1, 2, 3)]
        self.before = [path.read_bytes() for path in self.paths]

    def cbf(self, name):
        path = self.folder / name
        self.assertDone(run("convert", self.edf(numpy.arange(12, dtype="int32").reshape(3, 4)), path))
        # The header in the way of a detector.
        content = path.read_bytes()
        start = content.index(b"_array_data.header_contents")
        opening = content.index(b";", start)
        closing = content.index(b";", opening + 1)
        path.write_bytes(content[:opening] + b";\r\n# Detector: x\r\n" + LINE + content[closing:])
        return path

    def test_prints_the_header_of_each_file(self):
        done = run("header", *self.paths[:2])
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout.count("# Wavelength 1 A"), 2)
        self.assertIn(f"==> {self.paths[1]} <==", done.stdout)

    def test_changes_shows_and_undoes(self):
        values = ("--set", "wavelength=0.97", "--set=rotation_angle=2",
                  "--set=rotation_angle_step=0.5")
        shown = run("header", *values, "--dry-run", *self.paths)
        self.assertEqual((shown.returncode, shown.stderr), (0, ""))
        self.assertIn(f"--- {self.paths[2]}\n+++ {self.paths[2]}\n-# Wavelength 1 A\n"
                      "+# Wavelength 0.97 A\n+# Start_angle 2 deg\n+# Angle_increment 0.5 deg\n",
                      shown.stdout)
        self.assertEqual([path.read_bytes() for path in self.paths], self.before)
        self.assertFalse(self.home.exists())

        done = run("header", *values, *self.paths, self.folder / "none.cbf")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count("\n"), 1)
        self.assertIn("none.cbf for reading: No such file", done.stderr)
        self.assertIn("3 files changed", done.stdout)
        for path, before in zip(self.paths, self.before):
            self.assertEqual(path.read_bytes(), before.replace(
                LINE, b"# Wavelength 0.97 A\r\n# Start_angle 2 deg\r\n# Angle_increment 0.5 deg\r\n"))
        self.assertIn("3 files already are so", run("header", *values, *self.paths).stdout)

        self.paths[0].write_bytes(self.paths[0].read_bytes() + b"later")
        undone = run("header", "--undo")
        self.assertEqual(undone.returncode, 1)
        self.assertIn("changed since the write: " + str(self.paths[0]), undone.stderr)
        self.assertEqual([path.read_bytes() for path in self.paths[1:]], self.before[1:])
        self.assertTrue(self.paths[0].read_bytes().endswith(b"later"))
        self.assertFails(1, run("header", "--undo"), "no write to undo")

    def test_says_what_is_wrong_with_its_words(self):
        for words, reason in (((), "needs a file"),
                              (("--set", "wavelenth=1", "x"), "wavelength"),
                              (("--set", "wavelength=x", "x"), "no number"),
                              (("--set", "wavelength=inf", "x"), "not finite"),
                              (("--set", "beam_center_x=1", "x"), "set together"),
                              (("--dry-run", "x"), "--set or --undo"),
                              (("--undo", "x"), "takes no files"),
                              (("--undo", "--set", "wavelength=1"), "exclude")):
            self.assertFails(2, run("header", *words), reason)

    def test_changes_cbf_files_only(self):
        path = self.edf(numpy.zeros((3, 4), dtype="int32"), "y.edf")
        done = run("header", "--set", "wavelength=1", path)
        self.assertEqual(done.returncode, 1)
        self.assertIn("This is no CBF file", done.stderr)
