# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The reduced picture that tarvik-image tells, cell by cell, and the runs of "play"."""

import pathlib
import re

import numpy

from toolcase import RANDOM, TOOL, ToolCase, counts, run


def cells(image, width, height):
    """The pixels of each cell, row by row; cells are square, by the ratio of the widths."""
    length = 1 / (width / image.shape[1])

    def slices(number, limit):
        edges = [min(int(cell * length + 0.5), limit) for cell in range(number + 1)]
        return [slice(*edge) for edge in zip(edges, edges[1:])]

    columns = slices(width, image.shape[1])
    return [image[row, column] for row in slices(height, image.shape[0]) for column in columns]


def reduced(cell, has_negatives):
    flat = cell.ravel()
    marks = flat[flat < 0]
    if not has_negatives and marks.size:
        return marks[0].item()
    mean = flat.astype(numpy.float64).sum() / flat.size if flat.size else 0
    return cell.dtype.type(mean).item()


class ThumbnailCase(ToolCase):
    def check(self, pixels, width, height):
        told = self.told("thumbnail", self.edf(pixels))
        self.assertEqual((told["width"], told["height"]), (width, height))
        has_negatives = pixels.min() < -2
        expected = [reduced(cell, has_negatives) for cell in cells(pixels, width, height)]
        self.assertEqual(told["pixels"], expected)
        self.assertEqual(told["mask"], [0] * (width * height))
        return told

    def test_cells_are_those_of_the_rule(self):
        values = RANDOM.integers(0, 1000, (67, 517))
        told = self.check(values.astype("i4"), 200, 25)
        self.assertEqual((told["type"], told["bits"]), ("INT", 32))
        self.check(values.astype("u2"), 200, 25)
        self.check(numpy.where(values == 7, -1, values).astype("i4"), 200, 25)
        self.check((values - 500).astype("i2").T.copy(), 25, 200)
        self.check(values[:20, :30].astype("i4"), 30, 20)
        self.check((values / 7).astype("f4"), 200, 25)

    def test_a_single_bad_pixel_survives(self):
        frames, mask = counts((2, 6, 8), "u4"), numpy.zeros((6, 8), "u4")
        mask[2, 3:5] = 1, 8
        told = self.told("thumbnail", self.master(frames, {"pixel_mask": mask}), "--frame", 2)
        self.assertEqual(told["mask"], mask.ravel().tolist())
        self.assertEqual(told["pixels"], frames[1].ravel().tolist())

    def test_text(self):
        done = run("thumbnail", self.edf(numpy.zeros((5, 8), "i4")))
        self.assertEqual(done.stdout, "Size                  8 x 5 pixels, INT of 32 bits\n")


class PlayCase(ToolCase):
    def setUp(self):
        super().setUp()
        for number in range(1, 9):
            self.edf(numpy.full((30, 40), number, "i4"), f"x_{number}.edf")

    def play(self, first, *options, failures=0):
        done = run("play", *options, self.folder / first)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stderr.count("tarvik-image:"), failures, done.stderr)
        return dict(re.split("  +", line, maxsplit=1) for line in done.stdout.splitlines())

    def test_runs_to_the_end_of_the_series(self):
        told = self.play("x_3.edf", "--no-preloader")
        self.assertEqual([told[key] for key in ("Size", "Frames", "Cache hits")],
                         ["40 x 30 pixels", "5", "0 of 5"])
        self.assertGreater(float(told["Frames per second"]), 1)

    def test_goes_on_behind_an_image_that_fails(self):
        (self.folder / "x_5.edf").write_text("{ HeaderID = 1 ; Size = 4 }\n")
        told = self.play("x_3.edf", "--no-preloader", "--frames", 3, failures=1)
        self.assertEqual((told["Frames"], told["Failed"]), ("2", "1"))
        self.assertFails(1, run("play", "--no-preloader", self.folder / "y_1.edf"), "y_1.edf")

    def test_takes_images_from_the_preloader(self):
        if not (pathlib.Path(TOOL).parent / "tarvik").exists():
            self.skipTest("the viewer is not built")
        told = self.play("x_1.edf")
        self.assertEqual(told["Frames"], "7")
        self.assertGreater(int(told["Cache hits"].split()[0]), 0)
