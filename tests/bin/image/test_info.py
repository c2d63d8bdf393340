# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What tarvik-image tells about images, and how it fails."""

import json
import os
import unittest

import numpy
from fabio.cbfimage import CbfImage

from toolcase import RANDOM, ToolCase, counts, number, run


class Info(ToolCase):
    def test_cbf(self):
        pixels = RANDOM.poisson(3, (61, 47)).astype(numpy.int32)
        pixels[5, 6:9] = -1, 1048500, -2
        path = self.folder / "x_00012.cbf"
        CbfImage(data=pixels).write(str(path))
        told = self.told("info", path, "--pixel", "6,5", "--pixel", "7,5", "--pixel=46,60")
        self.assertTells(told, pixels, format="CBF", first=12, frame=12, last=12, path=str(path),
                         pixels=[-1, 1048500, int(pixels[60, 46])], mask_nonzero=None)
        self.assertNotIn("rawHeader", {**told, **told["header"]})
        self.assertEqual(told["header"]["imageDescription"], "x_00012.cbf")

    def test_what_is_no_number_is_a_text(self):
        nan, inf = numpy.nan, numpy.inf
        for row in ([1, nan, 2], [1, inf, 2], [-inf, 0, 1], [inf, -inf, 0]):
            pixels = numpy.array([row], numpy.float32)
            with numpy.errstate(invalid="ignore"):
                self.assertTells(self.told("info", self.edf(pixels), "--pixel", "1,0"), pixels,
                                 pixels=[number(pixels[0, 1])])

    def test_hdf5_master_with_data_files(self):
        frames, mask = counts((5, 6, 8), "u4"), numpy.zeros((6, 8), "u4")
        mask[2, 3:5] = 1, 8
        self.master(frames, {"count_time": 0.1, "saturation_value": 65000, "pixel_mask": mask},
                    0.97918, blocks=(3, 2))
        for path, position in (("x_master.h5", 1), ("x_data_000001.h5", 4), ("x_master.h5", 5)):
            told = self.told("info", self.folder / path, "--frame", position)
            self.assertTells(told, frames[position - 1], format="HDF5", first=1, last=5,
                             mask_nonzero=2)
        header = told["header"]
        self.assertEqual(numpy.float32(header["wavelength"]), numpy.float32(0.97918))
        self.assertEqual(numpy.float32(header["count_time"]), numpy.float32(0.1))
        self.assertEqual(header["saturation_value"], 65000)
        self.assertEqual(header["imageDescription"], "x_master.h5 - image 5")
        self.assertEqual(told["frame_path"], str(self.folder / "x_data_000002.h5"))

    def test_raw_header_is_utf8_whatever_the_file_holds(self):
        path = self.edf(counts((2, 2), "u2"), title="gruen")
        path.write_bytes(path.read_bytes().replace(b"gruen", b"gr\xfc\x01n"))
        raw = self.told("info", path, "--raw-header")["rawHeader"]
        self.assertRegex(raw, "title.*gr\ufffd\x01")
        self.assertNotIn(b"\x01", run("info", "--raw-header", path, text=False).stdout)

    def test_text_tells_the_same(self):
        pixels = counts((7, 5), "i2")
        lines = self.text("info", "--pixel", "4,6", self.edf(pixels))
        self.assertEqual([lines[key] for key in ("Format", "Size", "Minimum", "Maximum")],
                         ["EDF", "5 x 7 pixels, INT of 16 bits", "-32768", "32767"])
        self.assertEqual(lines["Pixel"].split(), ["4,6", str(pixels[6, 4])])


class Names(ToolCase):
    def test_odd_names(self):
        pixels = counts((2, 3), "u2")
        for name in ("100%s%n.edf", "ümläut-图 a b.edf", "new\nline.edf", "'quote\".edf",
                     "no ending", "-dash.edf", ".edf", "x_1.0.tif"):
            with self.subTest(name=name):
                path = self.edf(pixels, "plain.edf").rename(self.folder / name)
                self.assertTells(self.told("info", path), pixels)
        latin = os.fsencode(self.folder) + b"/latin\xe9.edf"
        os.rename(self.folder / "no ending", latin)
        done = run("info", "--json", os.fsdecode(latin), text=False)
        self.assertIn("latin\ufffd.edf", json.loads(done.stdout)["path"])
        done = run("info", "--json", "--", "-dash.edf", cwd=self.folder)
        self.assertEqual(json.loads(done.stdout)["frame_path"], str(self.folder / "-dash.edf"))

    def test_an_open_failure_names_file_and_reason(self):
        (self.folder / "empty.cbf").touch()
        (self.folder / "text.cbf").write_text("no pixels")
        os.mkfifo(self.folder / "pipe.cbf")
        for name, reason in (("missing.cbf", "No such file"), ("", "directory"),
                             ("empty.cbf", "empty"), ("text.cbf", "Unknown format"),
                             ("pipe.cbf", "no regular file"), ("text.cbf/x", "Not a directory"),
                             ("a" * 300, "too long"), ("two\nlines.cbf", "No such file")):
            path = self.folder / name
            self.assertFails(1, run("info", path), str(path).replace("\n", " "), reason)

    @unittest.skipIf(os.geteuid() == 0, "the super-user may read everything")
    def test_unreadable_files(self):
        path = self.edf(counts((2, 3), "u2"))
        path.chmod(0)
        self.assertFails(1, run("info", path), path, "Permission denied")


class Usage(ToolCase):
    def test_exit_codes_and_outputs(self):
        source = self.edf(counts((2, 3), "u2"))
        self.assertFails(2, run(), "command")
        self.assertFails(2, run("info", source, "--frames", "1"), "--frames")
        self.assertFails(2, run("render", source, self.folder / "x.png", "--table", "pink"), "pink")
        for pixel in ("3,0", "0,2", "-1,0", "2147483647,0"):
            self.assertFails(1, run("info", "--json", "--pixel", pixel, source), pixel, source)
        done = run("convert", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue(done.stdout.startswith("Usage: tarvik-image"))
        self.assertRegex(run("--version").stdout, r"^tarvik-image \d+\.\d+\.\d+\n$")
        with open("/dev/full", "w") as full:
            done = run("info", source, capture_output=False, stdout=full, stderr=-1)
        self.assertEqual(done.returncode, 1)
        self.assertIn("standard output", done.stderr)
