# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The numbers that tarvik-image computes, against NumPy and cases worked out by hand."""

import json
import math

import fabio
import numpy

from toolcase import RANDOM, ToolCase, counts, run


class EveryPixelType(ToolCase):
    def test_is_read_counted_and_converted(self):
        for dtype in "u1 u2 u4 u8 i1 i2 i4 i8 f4 f8".split():
            with self.subTest(dtype=dtype):
                pixels = counts((13, 9), dtype)
                path = self.edf(pixels)
                self.assertTells(self.told("info", path), pixels, format="EDF")
                if dtype not in ("u8", "i8", "f8"):
                    self.assertDone(run("convert", path, self.folder / "x.tif"))
                    written = fabio.open(str(self.folder / "x.tif")).data
                    self.assertEqual(written.dtype, pixels.dtype)
                    numpy.testing.assert_array_equal(written, pixels)
        self.assertTells(self.told("info", self.folder / "x.tif"), written, format="TIFF")


class Stats(ToolCase):
    def test_equal_numpy(self):
        pixels = RANDOM.normal(20, 9, (31, 23)).clip(None, 99).astype("f4")
        wide = pixels.astype(float)
        told = self.told("stats", "--count-at", "20.5", "--count-at=-1e3", "--count-at", "1e3",
                         self.edf(pixels))
        self.assertEqual([told[key] for key in ("minimum", "maximum", "zeros", "hasNegatives")],
                         [wide.min(), wide.max(), (pixels == 0).sum(), wide.min() < -2])
        for key, value in {"mean": wide.mean(), "sigma": wide.std()}.items():
            self.assertAlmostEqual(told[key], value, delta=1e-9)
        self.assertAlmostEqual(told["sum"], wide.sum(), delta=1e-6)
        self.assertEqual(told["countAt"], [[20.5, (pixels <= 20.5).sum()], [-1000, 0],
                                           [1000, pixels.size]])

    def test_mask_and_saturation(self):
        pixels = RANDOM.integers(0, 200, (40, 50)).astype("u4")
        mask = RANDOM.choice(numpy.array([0, 0, 0, 1, 2, 3, 8, 16], "u4"), pixels.shape)
        pixels[0, 0], mask[0, 0] = 5, 0
        told = self.told("stats", self.master(pixels[None], {"pixel_mask": mask,
                                                             "saturation_value": 150}))
        good = pixels[(mask & 31) == 0]
        self.assertEqual([told[key] for key in ("sum", "zeros", "saturated", "defective")],
                         [good.sum(), (good == 0).sum(), (good >= 150).sum(),
                          ((mask & 30) != 0).sum()])
        self.assertIsInstance(told["sum"], int)
        self.assertLess(told["background"], told["foreground"])
        self.assertNotIn("countAt", told)

    def test_no_good_pixel_has_no_mean(self):
        told = self.told("stats", self.master(numpy.full((1, 4, 4), 7, "u4"),
                                              {"pixel_mask": numpy.full((4, 4), 2, "u4")}))
        self.assertEqual([told[key] for key in ("mean", "sigma", "defective", "minimum")],
                         ["nan", "nan", 16, 7])


class Peaks(ToolCase):
    def test_are_told_by_height(self):
        pixels = RANDOM.permutation(400 * 400).reshape(400, 400).astype("i4")
        path = self.edf(pixels)
        most = self.told("peaks", 100000, path)["peaks"]
        self.assertEqual(len(most), 1000)
        self.assertEqual(most, sorted(most, key=lambda peak: -peak[2]))
        self.assertTrue(all(pixels[y, x] == value for x, y, value in most))
        self.assertEqual(self.told("peaks", 0, path)["peaks"], [])
        text = run("peaks", "3", path).stdout.splitlines()
        self.assertEqual([list(map(int, line.split())) for line in text[1:]], most[:3])

    def test_an_excluded_pixel_is_none_but_suppresses(self):
        pixels, mask = numpy.zeros((2, 9, 9), "u4")
        pixels[4, 4], pixels[4, 5], pixels[7, 2], mask[4, 4] = 90, 50, 10, 1
        path = self.master(pixels[None], {"pixel_mask": mask})
        self.assertEqual(self.told("peaks", "1", path)["peaks"], [[2, 7, 10]])


class Region(ToolCase):
    def roi(self, kind, place, pixels):
        return self.told("roi", f"--{kind}={place}", self.edf(pixels))

    def test_line(self):
        told = self.roi("line", "0,0,0,3", [[2], [4], [4], [2]])
        self.assertEqual(told["integral"], 10)
        self.assertAlmostEqual(told["mean"], 10 / 3)
        self.assertEqual(told["curve"][:3], [[0, 2, 0], [0.5, 2, 0], [0.5, 4, 0]])
        self.assertEqual(told["curveLabels"], ["Length/Pixels", "Intensity"])
        pixels = numpy.full((3, 60), 10, "i4")
        pixels[1, 10:12], pixels[1, 40] = 900, 500
        told = self.roi("line", "2,1,58,1", pixels)
        self.assertEqual(told["reflectionPositions"], [8, 38])
        self.assertEqual(told["reflectionPixels"], [[10, 1]])
        self.assertEqual(told["lineSpotsString"], ["30 px"])

    def test_box_equals_numpy(self):
        pixels = RANDOM.integers(0, 100, (30, 40)).astype("i4")
        told = self.roi("box", "35,25,5,10", pixels)
        part = pixels[10:25, 5:35]
        self.assertEqual([told[key] for key in ("integral", "area", "minimum", "maximum")],
                         [part.sum(), part.size, part.min(), part.max()])
        self.assertAlmostEqual(told["sigma"], part.std(), delta=1e-9)
        numpy.testing.assert_allclose([y for _, y, _ in told["curve"]], part.mean(axis=0))
        numpy.testing.assert_allclose([y for _, y, _ in told["secondCurve"]], part.mean(axis=1))
        self.assertEqual([x for x, _, _ in told["secondCurve"]], list(range(10, 25)))

    def test_circle_on_a_flat_image(self):
        told = self.roi("circle", "20,21,8,90", numpy.full((41, 41), 5, "i4"))
        for key, value in {"backgroundMean": 5, "intensity": 0, "length": 16,
                           "area": 64 * math.pi}.items():
            self.assertAlmostEqual(told[key], value, delta=1e-9)
        self.assertLessEqual({0, 16}, {x for x, _, _ in told["curve"]})

    def test_powder_follows_the_radius(self):
        y, x = numpy.indices((80, 90))
        pixels = numpy.hypot(x + 0.5 - 40.5, y + 0.5 - 38.25).astype("f4")
        told = self.roi("powder", "40.5,38.25,5,30", pixels)
        self.assertEqual([point[0] for point in told["curve"]], list(range(5, 31)))
        for radius, mean, _ in told["curve"]:
            self.assertAlmostEqual(mean, radius, delta=0.2)
        self.assertEqual(told["curveLabels"], ["Radius/Pixels", "Circle Mean"])

    def test_over_a_series_each_image_has_a_line(self):
        frames = RANDOM.integers(0, 1000, (40, 30, 40)).astype("u4")
        mask = numpy.zeros(frame := frames.shape[1:], "u4")
        path = self.master(frames, {"pixel_mask": mask})
        lines = run("roi", "--series", "--json", "--box", "5,6,25,16", path).stdout.splitlines()
        part = frames[:, 6:16, 5:25]
        self.assertEqual([json.loads(line) for line in lines],
                         [{"image": i + 1, "mean": one.mean(), "sum": one.sum(),
                           "maximum": one.max()} for i, one in enumerate(part)])
        text = run("roi", "--series", "--circle", "20,15,6,0", path).stdout
        table = numpy.loadtxt(text.splitlines())
        self.assertEqual(table.shape, (40, 6))
        self.assertRegex(text, r"(?m)^# Image +Mean +Sum +Maximum +Intensity +Sigma$")
        single = self.told("roi", "--frame", 7, "--circle=20,15,6,0", path)
        for column, key in enumerate(("mean", "integral", "maximum", "intensity",
                                      "intensitySigma"), 1):
            self.assertAlmostEqual(table[6, column], single[key], delta=1e-6)
        whole = run("roi", "--series", "--json", "--box", "0,0,9,9",
                    self.master(frames[:2], {"pixel_mask": numpy.ones(frame, "u4")}))
        self.assertEqual([json.loads(line) for line in whole.stdout.splitlines()],
                         [{"image": 1, "masked": True}, {"image": 2, "masked": True}])

    def test_over_a_series_with_a_damaged_image_ends_with_1(self):
        for number in range(3):
            self.edf(numpy.full((4, 4), number + 1, "i4"), f"y_{number}.edf")
        (self.folder / "y_1.edf").write_text("no image")
        result = run("roi", "--series", "--json", "--box", "0,0,2,2", self.folder / "y_0.edf")
        self.assertEqual([json.loads(line).get("mean") for line in result.stdout.splitlines()],
                         [1, None, 3])
        self.assertEqual(result.returncode, 1)
        self.assertIn("y_1.edf", result.stderr)
        self.assertIn("1 of 3 images can't be read\n", result.stderr)

    def test_text_for_people_and_a_region_without_bounds(self):
        path = self.edf(numpy.array([[1, 2], [3, 6]], "i4"))
        lines = self.text("stats", path)
        self.assertEqual((lines["mean"], lines["sum"], lines["hasNegatives"]), ("3", "12", "no"))
        text = run("roi", "--box", "0,0,2,2", path).stdout
        self.assertRegex(text, r"(?m)^integral +12$")
        self.assertRegex(text, r"(?m)^curve\n  0  2  0\n  1  4  0$")
        self.assertFails(1, run("roi", "--box", "0,0,2000000000,2", path), "too large")
