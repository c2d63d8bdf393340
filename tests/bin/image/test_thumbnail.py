# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The reduced picture that tarvik-image tells, cell by cell, and the runs of "play"."""

import json
import pathlib
import re

import numpy
from fabio.edfimage import EdfImage

from toolcase import RANDOM, TOOL, ToolCase, run


def edge(cell, length, limit):
    return min(int(cell * length + 0.5), limit)


def cells(image, width, height):
    """The pixels of each cell, row by row; cells are square, by the ratio of the widths."""
    length = 1 / (width / image.shape[1])
    for y in range(height):
        rows = slice(edge(y, length, image.shape[0]), edge(y + 1, length, image.shape[0]))
        for x in range(width):
            yield image[rows, edge(x, length, image.shape[1]):edge(x + 1, length, image.shape[1])]


def reduced(cell, has_negatives):
    flat = cell.ravel()
    marks = flat[flat < 0]
    if not has_negatives and marks.size:
        return marks[0].item()
    mean = flat.astype(numpy.float64).sum() / flat.size if flat.size else 0
    return cell.dtype.type(mean).item()


class ThumbnailCase(ToolCase):
    def thumbnail(self, path, *options):
        done = run("thumbnail", "--json", *options, path)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return json.loads(done.stdout)

    def check(self, pixels, size):
        path = self.folder / "x.edf"
        EdfImage(data=pixels).write(str(path))
        told = self.thumbnail(path)
        self.assertEqual((told["width"], told["height"]), size)
        has_negatives = pixels.min() < -2
        expected = [reduced(cell, has_negatives) for cell in cells(pixels, *size)]
        self.assertEqual(told["pixels"], expected)
        self.assertEqual(told["mask"], [0] * (size[0] * size[1]))
        return told

    def test_cells_are_those_of_the_rule(self):
        counts = RANDOM.integers(0, 1000, (331, 517))
        told = self.check(counts.astype(numpy.int32), (200, 128))
        self.assertEqual((told["type"], told["bits"]), ("INT", 32))
        self.check(counts.astype(numpy.uint16), (200, 128))
        self.check(numpy.where(counts == 7, -1, counts).astype(numpy.int32), (200, 128))
        self.check((counts - 500).astype(numpy.int16).T.copy(), (128, 200))
        self.check(counts[:20, :30].astype(numpy.int32), (30, 20))
        self.check((counts / 7).astype(numpy.float32), (200, 128))

    def test_a_single_bad_pixel_survives(self):
        frames, mask = self.write_master(self.folder / "x_master.h5", "u4", [2])
        told = self.thumbnail(self.folder / "x_master.h5", "--frame", 2)
        self.assertEqual(told["mask"], mask.ravel().tolist())
        self.assertEqual(told["pixels"], frames[1].ravel().tolist())

    def test_text_and_failures(self):
        EdfImage(data=numpy.zeros((5, 8), numpy.int32)).write(str(self.folder / "x.edf"))
        done = run("thumbnail", self.folder / "x.edf")
        self.assertEqual(done.stdout, "Size                  8 x 5 pixels, INT of 32 bits\n")
        self.assertFails(1, run("thumbnail", self.folder / "y.edf"), "y.edf")


class PlayCase(ToolCase):
    def setUp(self):
        super().setUp()
        for number in range(1, 9):
            pixels = numpy.full((300, 400), number, numpy.int32)
            EdfImage(data=pixels).write(str(self.folder / f"x_{number}.edf"))

    def lines(self, *arguments, failures=0):
        done = run("play", *arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stderr.count("tarvik-image:"), failures, done.stderr)
        return dict(re.split("  +", line, maxsplit=1) for line in done.stdout.splitlines())

    def test_runs_to_the_end_of_the_series(self):
        told = self.lines("--no-preloader", self.folder / "x_3.edf")
        self.assertEqual(told["Size"], "400 x 300 pixels")
        self.assertEqual(told["Frames"], "5")
        self.assertEqual(told["Cache hits"], "0 of 5")
        self.assertGreater(float(told["Frames per second"]), 1)

    def test_goes_on_behind_an_image_that_fails(self):
        (self.folder / "x_5.edf").write_text("{ HeaderID = 1 ; Size = 4 }\n")
        told = self.lines("--no-preloader", "--frames", 3, self.folder / "x_3.edf", failures=1)
        self.assertEqual((told["Frames"], told["Failed"]), ("2", "1"))

    def test_takes_images_from_the_preloader(self):
        if not (pathlib.Path(TOOL).parent / "tarvik").exists():
            self.skipTest("the viewer is not built")
        told = self.lines(self.folder / "x_1.edf")
        self.assertEqual(told["Frames"], "7")
        self.assertGreater(int(told["Cache hits"].split()[0]), 0)

    def test_first_image_must_be_there(self):
        self.assertFails(1, run("play", "--no-preloader", self.folder / "y_1.edf"), "y_1.edf")
