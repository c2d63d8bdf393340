# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Distances, resolutions and rings that tarvik-image tells, against the formulas in NumPy."""

import math

import numpy

from toolcase import ToolCase, run

FULL = {"beam_center_x": 40.5, "beam_center_y": 30.25, "x_pixel_size": 75e-6,
        "y_pixel_size": 150e-6, "detector_distance": 0.05}
WAVELENGTH = 0.979


def single(value):
    return float(numpy.float32(value))


def bragg(distance_from_beam, header=FULL, wavelength=WAVELENGTH):
    angle = math.atan(distance_from_beam / single(header["detector_distance"]))
    return single(wavelength) / (2 * math.sin(angle / 2)) if angle else math.inf


def metres(x, y, header=FULL):
    return math.hypot((x - single(header["beam_center_x"])) * single(header["x_pixel_size"]),
                      (y - single(header["beam_center_y"])) * single(header["y_pixel_size"]))


def significant(value, digits):
    """Rounded half up; decimal text instead of repeated division."""
    exponent = int(f"{value:.16e}".split("e")[1]) - digits + 1
    return math.floor(value * 10.0 ** -exponent + 0.5) * 10.0 ** exponent


def rings(count, width, height, header, wavelength):
    farthest = max(metres(x, y, header) for x in (0, width) for y in (0, height))
    plain = [bragg(i * farthest / (count + 1), header, wavelength) for i in range(1, count + 1)]
    radii, labels = [], []
    for i, value in enumerate(plain):
        gaps = [abs(value - plain[k]) for k in (i - 1, i + 1) if 0 <= k < count]
        digits = math.ceil(math.log10(value / max(gaps)) + 1) if gaps else 1
        rounded = significant(value, digits)
        theta = math.asin(single(wavelength) / 2 / rounded)
        radii.append(2 * math.tan(2 * theta) * single(header["detector_distance"]) /
                     (single(header["x_pixel_size"]) + single(header["y_pixel_size"])))
        labels.append(f"{rounded:.6g}\u212b")
    return radii, labels


class Geometry(ToolCase):
    def write(self, header=FULL, wavelength=WAVELENGTH, shape=(64, 90)):
        header = {name: numpy.float32(value) for name, value in header.items()}
        return self.master(numpy.zeros((1, *shape), "u2"), header, wavelength)

    def geometry(self, *words):
        told = self.told("geometry", *words)
        self.assertEqual(set(told), {"distanceDefined", "resolutionDefined", "powderPlotDefined",
                                     "beamCentre", "at", "rings"})
        self.assertEqual(set(told["rings"]), {"centre", "radii", "labels"})
        return told

    def test_what_is_known_decides_what_is_defined(self):
        for missing, distance, resolution, powder in (
                ((), True, True, True), (("wavelength",), True, False, True),
                (("detector_distance",), True, False, True),
                (("x_pixel_size",), False, False, True), (("y_pixel_size",), False, False, True),
                (("beam_center_y",), False, False, False),
                (("beam_center_x", "wavelength"), False, False, False)):
            header = {name: value for name, value in FULL.items() if name not in missing}
            path = self.write(header, None if "wavelength" in missing else WAVELENGTH)
            told = self.geometry("--at", "3,4", "--rings", "2", path)
            at, = told["at"]
            with self.subTest(missing=missing):
                self.assertEqual([told[f"{name}Defined"] for name in
                                  ("distance", "resolution", "powderPlot")],
                                 [distance, resolution, powder])
                self.assertEqual(told["beamCentre"], [40.5, 30.25] if powder else None)
                self.assertEqual((at["distance"] == -1, at["resolution"] == -1, at["powderRadius"]),
                                 (not distance, not resolution, 45 if powder else -1))
                self.assertEqual(told["rings"]["centre"], [40.5, 30.25] if resolution else None)
                self.assertEqual(len(told["rings"]["radii"]), 2 if resolution else 0)

    def test_pixels(self):
        places = [(0, 0), (89, 63), (41, 30), (-7, 1000)]
        words = [f"--at={x},{y}" for x, y in places]
        for (x, y), at in zip(places, self.geometry(*words, self.write())["at"], strict=True):
            self.assertEqual(set(at), {"x", "y", "distance", "resolution", "powderRadius"})
            self.assertEqual((at["x"], at["y"]), (x, y))
            self.assertAlmostEqual(at["distance"], metres(x, y), delta=1e-12)
            self.assertAlmostEqual(at["resolution"] / bragg(metres(x, y)), 1, delta=1e-12)
            self.assertEqual(at["powderRadius"], int(math.hypot(x - 40.5, y - 30.25)))
        centred = self.write({**FULL, "beam_center_x": 3, "beam_center_y": 4})
        self.assertEqual(self.geometry("--at", "3,4", centred)["at"], [
            {"x": 3, "y": 4, "distance": 0, "resolution": "inf", "powderRadius": 0}])

    def test_rings(self):
        for change, wavelength, (height, width), amounts in (
                ({}, WAVELENGTH, (64, 90), (0, 1, 2, 3, 20)),
                ({"detector_distance": 2.5}, 12.4, (700, 40), (20,)),
                ({"detector_distance": 0.004, "beam_center_x": -300}, 0.2, (64, 90), (7,)),
                ({"x_pixel_size": 1e-3}, 1.54, (9, 9), (4,))):
            header = {**FULL, **change}
            path = self.write(header, wavelength, (height, width))
            for count in amounts:
                told = self.geometry("--rings", count, path)["rings"]
                radii, labels = rings(count, width, height, header, wavelength)
                with self.subTest(header=header, count=count):
                    self.assertEqual(told["centre"], [header["beam_center_x"], 30.25])
                    self.assertEqual(told["labels"], labels)
                    for mine, theirs in zip(told["radii"], radii, strict=True):
                        self.assertAlmostEqual(mine / theirs, 1, delta=1e-9)

    def test_values_without_sense_do_no_harm(self):
        for name, value in (("detector_distance", 0), ("x_pixel_size", math.nan),
                            ("beam_center_y", math.inf), ("beam_center_x", 1e38)):
            path = self.write({**FULL, name: value})
            told = self.geometry("--at", "3,4", "--rings", "50", path)["rings"]
            self.assertEqual(len(told["radii"]), len(told["labels"]))
            self.assertTrue(all(isinstance(radius, (int, float)) and radius >= 0
                                for radius in told["radii"]))

    def test_text(self):
        done = run("geometry", "--at", "3,4", "--rings", "1", self.write())
        for part in ("40.5, 30.25 pixels", "At 3,4:  45 pixels", " mm", "Ring "):
            self.assertIn(part, done.stdout)
