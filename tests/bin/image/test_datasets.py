# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Data sets by their paths, and files that links lead to in vain."""

import unittest

import fabio
import h5py
import numpy

from toolcase import RANDOM, ToolCase, counts, run

OTHER = "/entry/instrument/second/data"


class Datasets(ToolCase):
    def file(self, name="x.h5"):
        self.frames = counts((3, 20, 30), "u2")
        self.other = RANDOM.poisson(9, (2, 25, 45)).astype("i4")
        with h5py.File(self.folder / name, "w") as f:
            f["entry/data/data"], f[OTHER] = self.frames, self.other
        return self.folder / name

    def test_each_command_takes_the_path_of_a_data_set(self):
        for name in "x.h5", "a::b.h5":
            file = self.file(name)
            path = f"{file}::{OTHER}"
            told = self.told("info", "--frame", 2, path)
            self.assertTells(told, self.other[1], first=1, frame=2, last=2, path=path)
            self.assertEqual(told["header"]["imageDescription"],
                             f"{file.name}::{OTHER} - image 2")
            self.assertTells(self.told("info", file), self.frames[0], last=3)
            for command in (["stats"], ["peaks", 3], ["roi", "--box", "0,0,45,25"],
                            ["thumbnail"], ["geometry"]):
                self.assertEqual(run(*command, path).returncode, 0, command)
            self.assertEqual(self.told("thumbnail", path)["width"], 45)
            self.assertIn("45 x 25", run("play", "--no-preloader", path).stdout)
            self.assertDone(run("convert", path, self.folder / "o.cbf"))
            numpy.testing.assert_array_equal(fabio.open(self.folder / "o.cbf").data, self.other[0])
            self.assertDone(run("render", path, self.folder / "o.png"))
        self.assertFails(1, run("convert", path, file), "replace its own source")
        self.assertFails(1, run("info", f"{file}::/entry/none"), "no /entry/none", file)
        self.assertFails(1, run("info", f"{self.edf(self.other[0])}::/entry"), "no data set")

    def test_the_list(self):
        path = self.file()
        data = self.told("info", "--datasets", path)["datasets"]
        self.assertEqual([(d["path"], d["shape"], d["type"], d["default"]) for d in data],
                         [("/entry/data/data", [3, 20, 30], "uint16", True),
                          (OTHER, [2, 25, 45], "int32", False)])
        lines = run("info", f"{path}::{OTHER}", "--datasets").stdout.splitlines()
        self.assertRegex(lines[1], r"^\* /entry/data/data +3 x 20 x 30 +uint16 +-$")
        self.assertFails(2, run("info", "--datasets", "--frame", 1, path), "--datasets")

    def test_missing_files_are_named_once(self):
        mask = numpy.zeros((20, 30), "u4")
        path = self.master(counts((40, 20, 30), "u2"), {"pixel_mask": mask}, blocks=[1] * 40)
        for block in range(2, 40):
            (self.folder / f"x_data_{block:06}.h5").unlink()
        done = run("play", "--no-preloader", path)
        self.assertEqual((done.returncode, done.stderr.count("\n")), (0, 1), done.stderr)
        for part in ("38 images from 2 to 39", "x_data_000002.h5", "/entry/data/data_000002", path):
            self.assertIn(str(part), done.stderr)
        self.assertFails(1, run("convert", "--all", path, self.folder / "o.cbf"),
                         "x_data_000002.h5", path)
        for block in 1, 40:
            (self.folder / f"x_data_{block:06}.h5").unlink()
        self.assertFails(1, run("info", path), "none of the 40 data files", "x_data_000001.h5",
                         "/entry/data/data_000001", path)


if __name__ == "__main__":
    unittest.main()
