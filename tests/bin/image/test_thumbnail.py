# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The reduced picture that tarvik-image tells, and the runs of "play"."""

import os
import pathlib
import re

import numpy

from toolcase import TOOL, ToolCase, counts, run


class ThumbnailCase(ToolCase):
    def test_pixels_and_mask(self):
        frames, mask = counts((2, 6, 8), "u4"), numpy.zeros((6, 8), "u4")
        mask[2, 3:5] = 1, 8
        told = self.told("thumbnail", self.master(frames, {"pixel_mask": mask}), "--frame", 2)
        self.assertEqual(told["mask"], mask.ravel().tolist())
        self.assertEqual(told["pixels"], frames[1].ravel().tolist())
        self.assertEqual((told["type"], told["bits"]), ("UINT", 32))
        done = run("thumbnail", self.edf(numpy.zeros((50, 800), "i4")))
        self.assertEqual(done.stdout, "Size                  200 x 12 pixels, INT of 32 bits\n")


class PlayCase(ToolCase):
    def setUp(self):
        super().setUp()
        for number in range(1, 9):
            self.edf(numpy.full((300, 400), number, "i4"), f"x_{number}.edf")

    def play(self, first, *options, failures=0):
        done = run("play", *options, self.folder / first)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stderr.count("tarvik-image:"), failures, done.stderr)
        return dict(re.split("  +", line, maxsplit=1) for line in done.stdout.splitlines())

    def test_runs_to_the_end_of_the_series(self):
        told = self.play("x_3.edf", "--no-preloader")
        self.assertEqual([told[key] for key in ("Size", "Frames", "Cache hits")],
                         ["400 x 300 pixels", "5", "0 of 5"])
        self.assertGreater(float(told["Frames per second"]), 0)

    def test_goes_on_behind_an_image_that_fails(self):
        (self.folder / "x_5.edf").write_text("{ HeaderID = 1 ; Size = 4 }\n")
        told = self.play("x_3.edf", "--no-preloader", "--frames", 3, failures=1)
        self.assertEqual((told["Frames"], told["Failed"]), ("2", "1"))
        self.assertFails(1, run("play", "--no-preloader", self.folder / "y_1.edf"), "y_1.edf")

    def test_takes_images_from_the_preloader(self):
        if not (pathlib.Path(TOOL).parent / "tarvik").exists():
            self.skipTest("the viewer is not built")
        for number in range(9, 61):
            os.link(self.folder / "x_8.edf", self.folder / f"x_{number}.edf")

        def hits():
            told = self.play("x_1.edf")
            self.assertEqual(told["Frames"], "59")
            return int(told["Cache hits"].split()[0])
        # On a busy machine the preloader may be late.
        self.assertTrue(any(hits() > 0 for _ in range(100)))
