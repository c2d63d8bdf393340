# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What tarvik-image tells about images, and how it fails."""

import json
import math
import os
import subprocess
import unittest

import numpy
from fabio.cbfimage import CbfImage
from fabio.edfimage import EdfImage
from fabio.tifimage import TifImage

from toolcase import RANDOM, TOOL, ToolCase, counts, number, run


class Info(ToolCase):
    def test_cbf(self):
        pixels = RANDOM.poisson(3, (61, 47)).astype(numpy.int32)
        pixels[5, 6:9] = -1, 1048500, -2
        path = self.folder / "x_00012.cbf"
        CbfImage(data=pixels).write(str(path))
        told = self.info(path, "--pixel", "6,5", "--pixel", "7,5", "--pixel=46,60")
        self.assertTells(told, pixels)
        self.assertEqual(told["format"], "CBF")
        self.assertEqual((told["first"], told["frame"], told["last"]), (12, 12, 12))
        self.assertEqual(told["path"], str(path))
        self.assertEqual(told["pixels"], [-1, 1048500, int(pixels[60, 46])])
        self.assertIsNone(told["mask_nonzero"])
        self.assertNotIn("rawHeader", told)
        self.assertNotIn("rawHeader", told["header"])
        self.assertEqual(told["header"]["imageDescription"], "x_00012.cbf")

    def test_tiff_and_edf_of_all_types(self):
        for image, dtypes in ((TifImage, "u1 u2 u4 i1 i2 i4 f4"),
                              (EdfImage, "u1 u2 u4 u8 i1 i2 i4 i8 f4 f8")):
            for dtype in dtypes.split():
                with self.subTest(image=image.__name__, dtype=dtype):
                    pixels = counts((13, 9), dtype)
                    ending = {"TifImage": "tif", "EdfImage": "edf"}[image.__name__]
                    path = self.folder / f"{dtype}.{ending}"
                    image(data=pixels).write(str(path))
                    told = self.info(path)
                    self.assertTells(told, pixels)
                    self.assertEqual(told["format"], {"tif": "TIFF", "edf": "EDF"}[ending])

    def test_what_is_no_number_is_a_text(self):
        path = self.folder / "x.edf"
        for row in ([1, math.nan, 2], [1, math.inf, 2], [-math.inf, 0, 1],
                    [math.inf, -math.inf, 0]):
            pixels = numpy.array([row], numpy.float32)
            EdfImage(data=pixels).write(str(path))
            told = self.info(path, "--pixel", "1,0")
            self.assertTells(told, pixels)
            self.assertEqual(told["pixels"], [number(pixels[0, 1])])

    def test_frames_of_an_edf_file(self):
        frames = [counts((4, 5), "u2") for _ in range(3)]
        image = EdfImage(data=frames[0])
        for frame in frames[1:]:
            image.append_frame(data=frame)
        path = self.folder / "scan_7.edf"
        image.write(str(path))
        for position, frame in enumerate(frames):
            told = self.info(path, "--frame", position)
            self.assertTells(told, frame)
            self.assertEqual((told["first"], told["frame"], told["last"]), (0, position, 2))
            self.assertEqual(told["header"]["imageDescription"],
                             f"scan_7.edf - image {position}")

    def test_hdf5_master_with_data_files(self):
        frames, mask = self.write_master(self.folder / "x_master.h5", "u4", (3, 2))
        for path in ("x_master.h5", "x_data_000001.h5"):
            for position, frame in enumerate(frames):
                told = self.info(self.folder / path, "--frame", position + 1)
                self.assertTells(told, frame)
                self.assertEqual((told["format"], told["first"], told["last"]), ("HDF5", 1, 5))
                self.assertEqual(told["mask_nonzero"], numpy.count_nonzero(mask))
        header = told["header"]
        self.assertEqual(numpy.float32(header["wavelength"]), numpy.float32(0.97918))
        self.assertEqual(numpy.float32(header["count_time"]), numpy.float32(0.1))
        self.assertEqual(header["saturation_value"], 65000)
        self.assertEqual(header["imageDescription"], "x_master.h5 - image 5")
        self.assertEqual(told["frame_path"], str(self.folder / "x_data_000002.h5"))

    def test_series_goes_over_gaps(self):
        for position in (1, 2, 5):
            EdfImage(data=numpy.full((2, 2), position, numpy.int32)).write(
                str(self.folder / f"x_{position:03}.edf"))
        told = self.info(self.folder / "x_002.edf", "--frame", 5)
        self.assertEqual((told["first"], told["frame"], told["last"]), (1, 5, 5))
        self.assertEqual(told["maximum"], 5)
        self.assertEqual(told["frame_path"], str(self.folder / "x_005.edf"))
        self.assertFails(1, run("info", "--frame", 3, self.folder / "x_002.edf"),
                         self.folder / "x_003.edf")
        self.assertFails(1, run("info", "--frame", 9, self.folder / "x_002.edf"), "1 to 5")

    def test_raw_header_is_utf8_whatever_the_file_holds(self):
        path = self.folder / "x.edf"
        EdfImage(data=counts((2, 2), "u2"), header={"title": "gruen"}).write(str(path))
        content = path.read_bytes()
        self.assertIn(b"gruen", content)
        path.write_bytes(content.replace(b"gruen", b"gr\xfc\x01n"))
        told = self.info(path, "--raw-header")
        self.assertIn("title", told["rawHeader"])
        self.assertIn("gr\ufffd\x01", told["rawHeader"])
        plain = subprocess.run([TOOL, "info", "--raw-header", path], capture_output=True)
        self.assertNotIn(b"\x01", plain.stdout)

    def test_text_tells_the_same(self):
        pixels = counts((7, 5), "i2")
        EdfImage(data=pixels).write(str(self.folder / "x.edf"))
        done = run("info", "--pixel", "4,6", self.folder / "x.edf")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        lines = dict(line.split(None, 1) for line in done.stdout.splitlines())
        self.assertEqual(lines["Format"], "EDF")
        self.assertEqual(lines["Size"], "5 x 7 pixels, INT of 16 bits")
        self.assertEqual(lines["Minimum"], "-32768")
        self.assertEqual(lines["Maximum"], "32767")
        self.assertEqual(lines["Pixel"].split(), ["4,6", str(pixels[6, 4])])


class Names(ToolCase):
    def test_odd_names(self):
        pixels = counts((2, 3), "u2")
        for name in ("a b.edf", "100%s%n.edf", "ümläut-图.edf", "new\nline.edf", "'quote\".edf",
                     "no ending", "-dash.edf", ".edf", "x_1.0.tif"):
            with self.subTest(name=name):
                path = self.folder / name
                EdfImage(data=pixels).write(str(self.folder / "plain.edf"))
                os.rename(self.folder / "plain.edf", path)
                self.assertTells(self.info(path), pixels)
        os.rename(self.folder / "a b.edf", os.fsencode(self.folder) + b"/latin\xe9.edf")
        done = subprocess.run([TOOL, "info", "--json", os.fsencode(self.folder) + b"/latin\xe9.edf"],
                              capture_output=True)
        self.assertIn("latin\ufffd.edf", json.loads(done.stdout)["path"])

    def test_relative_names(self):
        EdfImage(data=counts((2, 3), "u2")).write(str(self.folder / "-x.edf"))
        done = run("info", "--json", "--", "-x.edf", cwd=self.folder)
        self.assertEqual(json.loads(done.stdout)["frame_path"], str(self.folder / "-x.edf"))

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
        path = self.folder / "secret.edf"
        EdfImage(data=counts((2, 3), "u2")).write(str(path))
        path.chmod(0)
        self.assertFails(1, run("info", path), path, "Permission denied")


class Usage(ToolCase):
    def test_exit_codes(self):
        EdfImage(data=counts((2, 3), "u2")).write(str(self.folder / "x.edf"))
        source = self.folder / "x.edf"
        self.assertFails(2, run(), "command")
        self.assertFails(2, run("info"), "one file")
        self.assertFails(2, run("info", source, "--frames", "1"), "--frames")
        self.assertFails(2, run("render", source, self.folder / "x.png", "--table", "pink"), "pink")
        for pixel in ("3,0", "0,2", "-1,0", "2147483647,0"):
            self.assertFails(1, run("info", "--json", "--pixel", pixel, source), pixel, source)

    def test_help_and_version(self):
        for words in (["--help"], ["-h"], ["convert", "--help"]):
            done = run(*words)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertTrue(done.stdout.startswith("Usage: tarvik-image"))
        self.assertRegex(run("--version").stdout, r"^tarvik-image \d+\.\d+\.\d+\n$")

    def test_an_output_that_cannot_be_written_is_a_failure(self):
        EdfImage(data=counts((2, 3), "u2")).write(str(self.folder / "x.edf"))
        with open("/dev/full", "w") as full:
            done = subprocess.run([TOOL, "info", self.folder / "x.edf"], stdout=full,
                                  stderr=subprocess.PIPE, text=True)
        self.assertEqual(done.returncode, 1)
        self.assertIn("standard output", done.stderr)
