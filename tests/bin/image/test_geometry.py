# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Distances, resolutions and rings that tarvik-image tells, against the formulas in NumPy."""

import json
import math

import h5py
import numpy

from toolcase import ToolCase, run

FULL = {"beam_center_x": 40.5, "beam_center_y": 30.25, "x_pixel_size": 75e-6,
        "y_pixel_size": 150e-6, "detector_distance": 0.05}
WAVELENGTH = 0.979
KEYS = {"distanceDefined", "resolutionDefined", "powderPlotDefined", "beamCentre", "at", "rings"}


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


def rings(count, width, height, header=FULL, wavelength=WAVELENGTH):
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
        path = self.folder / "x_master.h5"
        with h5py.File(path, "w") as master:
            entry = master.create_group("entry")
            entry.attrs["NX_class"] = "NXentry"
            data = entry.create_group("data")
            data.attrs["NX_class"] = "NXdata"
            data["data"] = numpy.zeros((1, *shape), numpy.uint16)
            detector = entry.create_group("instrument/detector")
            for name, value in header.items():
                detector[name] = numpy.float32(value)
            if wavelength is not None:
                entry["instrument/beam/wavelength"] = numpy.float32(wavelength)
        return path

    def told(self, *words):
        done = run("geometry", "--json", *words)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout.count("\n"), 1)
        told = json.loads(done.stdout, parse_constant=self.fail)
        self.assertEqual(set(told), KEYS)
        self.assertEqual(set(told["rings"]), {"centre", "radii", "labels"})
        return told

    def test_what_is_known_decides_what_is_defined(self):
        rows = [((), True, True, True), (("wavelength",), True, False, True),
                (("detector_distance",), True, False, True),
                (("x_pixel_size",), False, False, True),
                (("y_pixel_size",), False, False, True),
                (("beam_center_y",), False, False, False),
                (("beam_center_x", "wavelength"), False, False, False)]
        for missing, distance, resolution, powder in rows:
            header = {name: value for name, value in FULL.items() if name not in missing}
            path = self.write(header, None if "wavelength" in missing else WAVELENGTH)
            told = self.told("--at", "3,4", "--rings", "2", path)
            with self.subTest(missing=missing):
                self.assertEqual((told["distanceDefined"], told["resolutionDefined"],
                                  told["powderPlotDefined"]), (distance, resolution, powder))
                self.assertEqual(told["beamCentre"], [40.5, 30.25] if powder else None)
                at, = told["at"]
                self.assertEqual(at["distance"] == -1, not distance)
                self.assertEqual(at["resolution"] == -1, not resolution)
                self.assertEqual(at["powderRadius"], 45 if powder else -1)
                self.assertEqual(told["rings"]["centre"], [40.5, 30.25] if resolution else None)
                self.assertEqual(len(told["rings"]["radii"]), 2 if resolution else 0)

    def test_pixels(self):
        path = self.write()
        places = [(0, 0), (89, 63), (41, 30), (-7, 1000)]
        words = [word for x, y in places for word in ("--at", f"{x},{y}")]
        told = self.told(*words, path)["at"]
        for (x, y), at in zip(places, told, strict=True):
            self.assertEqual(set(at), {"x", "y", "distance", "resolution", "powderRadius"})
            self.assertEqual((at["x"], at["y"]), (x, y))
            self.assertAlmostEqual(at["distance"], metres(x, y), delta=1e-12)
            self.assertAlmostEqual(at["resolution"] / bragg(metres(x, y)), 1, delta=1e-12)
            self.assertEqual(at["powderRadius"], int(math.hypot(x - 40.5, y - 30.25)))
        centred = self.write({**FULL, "beam_center_x": 3, "beam_center_y": 4})
        self.assertEqual(self.told("--at", "3,4", centred)["at"],
                         [{"x": 3, "y": 4, "distance": 0, "resolution": "inf",
                           "powderRadius": 0}])

    def test_rings(self):
        rows = [(FULL, WAVELENGTH, (64, 90)), ({**FULL, "detector_distance": 2.5}, 12.4, (700, 40)),
                ({**FULL, "detector_distance": 0.004, "beam_center_x": -300}, 0.2, (64, 90)),
                ({**FULL, "x_pixel_size": 1e-3}, 1.54, (9, 9))]
        for header, wavelength, (height, width) in rows:
            path = self.write(header, wavelength, (height, width))
            for count in (0, 1, 2, 3, 4, 7, 20):
                told = self.told("--rings", count, path)["rings"]
                radii, labels = rings(count, width, height, header, wavelength)
                with self.subTest(header=header, count=count):
                    self.assertEqual(told["centre"], [header["beam_center_x"], 30.25])
                    self.assertEqual(told["labels"], labels)
                    self.assertEqual(len(told["radii"]), count)
                    for mine, theirs in zip(told["radii"], radii):
                        self.assertAlmostEqual(mine / theirs, 1, delta=1e-9)

    def test_values_without_sense_do_no_harm(self):
        for name in FULL:
            for value in (0, -1, math.nan, math.inf, 1e-38, 1e38):
                path = self.write({**FULL, name: value})
                told = self.told("--at", "3,4", "--rings", "50", path)["rings"]
                with self.subTest(name=name, value=value):
                    self.assertEqual(len(told["radii"]), len(told["labels"]))
                    self.assertTrue(all(isinstance(radius, (int, float)) and radius >= 0
                                        for radius in told["radii"]))

    def test_text(self):
        done = run("geometry", "--at", "3,4", "--rings", "1", self.write())
        for part in ("40.5, 30.25 pixels", "At 3,4:  45 pixels", " mm", "Ring "):
            self.assertIn(part, done.stdout)

    def test_wrong_usage(self):
        path = self.write()
        self.assertFails(2, run("geometry", "--rings", "-1", path), "--rings")
        self.assertFails(2, run("geometry", "--rings", "100001", path), "100000")
        self.assertFails(2, run("geometry", "--at", "3", path), "--at needs X,Y")
        self.assertFails(1, run("geometry", "--frame", "9", path), path)
