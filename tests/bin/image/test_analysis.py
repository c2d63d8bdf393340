# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The numbers that tarvik-image computes, against NumPy and cases worked out by hand."""

import json
import math

import h5py
import numpy
from fabio.edfimage import EdfImage

from toolcase import RANDOM, ToolCase, run


class AnalysisCase(ToolCase):
    def write(self, pixels, mask=None, saturation=None):
        """A file with these pixels: HDF5 when it needs a mask, else EDF."""
        if mask is None:
            path = self.folder / "x.edf"
            EdfImage(data=pixels).write(str(path))
            return path
        path = self.folder / "x_master.h5"
        with h5py.File(path, "w") as master:
            entry = master.create_group("entry")
            entry.attrs["NX_class"] = "NXentry"
            data = entry.create_group("data")
            data.attrs["NX_class"] = "NXdata"
            data["data"] = pixels[numpy.newaxis]
            detector = entry.create_group("instrument/detector")
            detector["pixel_mask"] = mask
            if saturation:
                detector["saturation_value"] = saturation
        return path

    def told(self, command, *words):
        """The JSON; standard output must hold nothing else."""
        done = run(command, "--json", *words)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout.count("\n"), 1)
        return json.loads(done.stdout, parse_constant=self.fail)


class Stats(AnalysisCase):
    def test_all_types_equal_numpy(self):
        for dtype in "u1 u2 u4 u8 i1 i2 i4 i8 f4 f8".split():
            pixels = RANDOM.normal(20, 9, (31, 23)).clip(0 if dtype[0] == "u" else None, 99)
            pixels = pixels.astype(dtype)
            told = self.told("stats", "--count-at", "20.5", "--count-at", "-1e3", "--count-at",
                             "1e3", self.write(pixels))
            wide = pixels.astype(float)
            with self.subTest(dtype=dtype):
                self.assertEqual((told["minimum"], told["maximum"]), (wide.min(), wide.max()))
                self.assertAlmostEqual(told["mean"], wide.mean(), delta=1e-9)
                self.assertAlmostEqual(told["sigma"], wide.std(), delta=1e-9)
                self.assertAlmostEqual(told["sum"], wide.sum(), delta=1e-6)
                self.assertEqual(told["zeros"], numpy.count_nonzero(pixels == 0))
                self.assertEqual(told["hasNegatives"], bool(wide.min() < -2))
                self.assertEqual(told["countAt"][1:], [[-1000, 0], [1000, pixels.size]])
                if dtype[0] == "f":
                    self.assertEqual(told["countAt"][0], [20.5, int((pixels <= 20.5).sum())])

    def test_counts_at_values_whose_bins_are_whole(self):
        # A mean of 2048.0 puts the lower end of the bins at 48, a whole number.
        pixels = numpy.repeat(numpy.array([[0, 40, 2048, 3000, 5152]], "i4"), 2, axis=0)
        told = self.told("stats", "--count-at=40", "--count-at=47.5", "--count-at=2048",
                         "--count-at=5151", "--count-at=5152", self.write(pixels))
        self.assertEqual(told["mean"], 2048)
        self.assertEqual([n for _, n in told["countAt"]], [4, 4, 6, 8, 10])

    def test_mask_and_saturation(self):
        pixels = RANDOM.integers(0, 200, (40, 50)).astype("u4")
        mask = RANDOM.choice(numpy.array([0, 0, 0, 1, 2, 3, 8, 16], "u4"), pixels.shape)
        pixels[0, 0], mask[0, 0] = 5, 0
        told = self.told("stats", self.write(pixels, mask, 150))
        good = pixels[(mask & 31) == 0]
        self.assertEqual(told["sum"], int(good.sum()))
        self.assertIsInstance(told["sum"], int)
        self.assertEqual(told["zeros"], int((good == 0).sum()))
        self.assertEqual(told["saturated"], int((good >= 150).sum()))
        self.assertEqual(told["defective"], int(((mask & 30) != 0).sum()))
        self.assertLess(told["background"], told["foreground"])
        self.assertNotIn("countAt", told)

    def test_no_good_pixel_has_no_mean(self):
        pixels = numpy.full((4, 4), 7, "u4")
        told = self.told("stats", self.write(pixels, numpy.full((4, 4), 2, "u4")))
        self.assertEqual((told["mean"], told["sigma"]), ("nan", "nan"))
        self.assertEqual((told["defective"], told["minimum"]), (16, 7))

    def test_text_for_people(self):
        done = run("stats", self.write(numpy.array([[1, 2], [3, 6]], "i4")))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        lines = dict(line.split(None, 1) for line in done.stdout.splitlines())
        self.assertEqual((lines["mean"], lines["sum"], lines["hasNegatives"]), ("3", "12", "no"))


class Peaks(AnalysisCase):
    def test_equal_numpy(self):
        pixels = RANDOM.permutation(61 * 47).reshape(61, 47).astype("i4")
        flat, width = pixels.ravel(), pixels.shape[1]
        best = []
        for i in range(flat.size):
            around = [i + d for d in (-width - 1, -width, -width + 1, -1, 1, width - 1, width,
                                      width + 1)]
            if all(flat[i] > flat[j] for j in around if 0 <= j < flat.size):
                best.append([i % width, i // width, int(flat[i])])
        best.sort(key=lambda peak: -peak[2])
        path = self.write(pixels)
        self.assertEqual(self.told("peaks", 10, path)["peaks"], best[:10])
        self.assertEqual(self.told("peaks", 100000, path)["peaks"], best[:1000])
        self.assertEqual(self.told("peaks", 0, path)["peaks"], [])
        text = run("peaks", "3", path).stdout.splitlines()
        self.assertEqual([list(map(int, line.split())) for line in text[1:]], best[:3])

    def test_an_excluded_pixel_is_none_but_suppresses(self):
        pixels = numpy.zeros((9, 9), "u4")
        pixels[4, 4], pixels[4, 5], pixels[7, 2] = 90, 50, 10
        mask = numpy.zeros((9, 9), "u4")
        mask[4, 4] = 1
        path = self.write(pixels, mask)
        self.assertEqual(self.told("peaks", "1", path)["peaks"], [[2, 7, 10]])


class Region(AnalysisCase):
    def test_line_over_four_pixels(self):
        told = self.told("roi", "--line", "0,0,0,3", self.write(numpy.array([[2], [4], [4], [2]])))
        self.assertEqual(told["integral"], 10)
        self.assertAlmostEqual(told["mean"], 10 / 3)
        self.assertEqual(told["curve"][:3], [[0, 2, 0], [0.5, 2, 0], [0.5, 4, 0]])
        self.assertEqual(told["curveLabels"], ["Length/Pixels", "Intensity"])

    def test_reflections_along_a_line(self):
        pixels = numpy.full((3, 60), 10, "i4")
        pixels[1, 10:12], pixels[1, 40] = 900, 500
        told = self.told("roi", "--line=2,1,58,1", self.write(pixels))
        self.assertEqual(told["reflectionPositions"], [8, 38])
        self.assertEqual(told["reflectionPixels"], [[10, 1]])
        self.assertEqual(told["lineSpotsString"], ["30 px"])

    def test_box_equals_numpy(self):
        pixels = RANDOM.integers(0, 100, (30, 40)).astype("i4")
        told = self.told("roi", "--box", "35,25,5,10", self.write(pixels))
        part = pixels[10:25, 5:35]
        self.assertEqual((told["integral"], told["area"]), (int(part.sum()), part.size))
        self.assertEqual((told["minimum"], told["maximum"]), (part.min(), part.max()))
        self.assertAlmostEqual(told["sigma"], part.std(), delta=1e-9)
        numpy.testing.assert_allclose([y for _, y, _ in told["curve"]], part.mean(axis=0))
        numpy.testing.assert_allclose([y for _, y, _ in told["secondCurve"]], part.mean(axis=1))
        self.assertEqual([x for x, _, _ in told["secondCurve"]], list(range(10, 25)))

    def test_circle_on_a_flat_image(self):
        told = self.told("roi", "--circle", "20,21,8,90", self.write(numpy.full((41, 41), 5, "i4")))
        self.assertAlmostEqual(told["backgroundMean"], 5)
        self.assertAlmostEqual(told["intensity"], 0, delta=1e-9)
        self.assertAlmostEqual(told["length"], 16)
        self.assertEqual({x for x, _, _ in told["curve"]} & {0, 16}, {0, 16})
        self.assertAlmostEqual(told["area"], 64 * math.pi)

    def test_powder_follows_the_radius(self):
        y, x = numpy.indices((80, 90))
        pixels = numpy.hypot(x + 0.5 - 40.5, y + 0.5 - 38.25).astype("f4")
        told = self.told("roi", "--powder", "40.5,38.25,5,30", self.write(pixels))
        self.assertEqual([point[0] for point in told["curve"]], list(range(5, 31)))
        for radius, mean, _ in told["curve"]:
            self.assertAlmostEqual(mean, radius, delta=0.2)
        self.assertEqual(told["curveLabels"], ["Radius/Pixels", "Circle Mean"])

    def test_text_for_people_and_a_region_without_bounds(self):
        path = self.write(numpy.array([[1, 2], [3, 6]], "i4"))
        text = run("roi", "--box", "0,0,2,2", path).stdout
        self.assertRegex(text, r"(?m)^integral +12$")
        self.assertRegex(text, r"(?m)^curve\n  0  2  0\n  1  4  0$")
        self.assertFails(1, run("roi", "--box", "0,0,2000000000,2", path), "too large")


class Usage(AnalysisCase):
    def test_wrong_words_exit_with_2(self):
        path = self.write(numpy.array([[1, 2], [3, 6]], "i4"))
        for words in (["stats"], ["stats", "--count-at", "nan", path], ["peaks", path],
                      ["peaks", "-1", path], ["peaks", "x", path], ["roi", path],
                      ["roi", "--line", "1,2,3", path], ["roi", "--box", "1,2,3,4,5", path],
                      ["roi", "--circle", "1,2,-3,0", path], ["roi", "--powder", "a,2,3,4", path],
                      ["roi", "--line", "0,0,1,1", "--box", "0,0,1,1", path],
                      ["stats", "--line", "0,0,1,1", path]):
            self.assertFails(2, run(*words))
