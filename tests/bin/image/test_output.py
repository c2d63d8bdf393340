# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What tarvik-image writes: other formats and pictures."""

import os
import shutil
import signal
import subprocess

import fabio
import numpy
from fabio.cbfimage import CbfImage
from fabio.edfimage import EdfImage
from PIL import Image

from toolcase import RANDOM, TOOL, ToolCase, counts, run


class OutputCase(ToolCase):
    def assertDone(self, done):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def names(self):
        return sorted(os.listdir(self.folder))

    def write_series(self, numbers=(1, 2, 4)):
        frames = {}
        for position in numbers:
            frames[position] = RANDOM.poisson(position, (5, 7)).astype(numpy.int32)
            CbfImage(data=frames[position]).write(str(self.folder / f"x_{position:05}.cbf"))
        return frames


class Convert(OutputCase):
    def test_one_image_to_each_format(self):
        frames = self.write_series()
        source = self.folder / "x_00002.cbf"
        for output in ("o.cbf", "o.tif", "o.TIFF"):
            self.assertDone(run("convert", source, self.folder / output))
            numpy.testing.assert_array_equal(fabio.open(str(self.folder / output)).data, frames[2])
        self.assertDone(run("convert", "--frame", 4, source, self.folder / "four.tif"))
        numpy.testing.assert_array_equal(fabio.open(str(self.folder / "four.tif")).data, frames[4])

    def test_pixel_types_survive_in_tiff(self):
        for dtype in "u1 u2 u4 i1 i2 i4 f4".split():
            pixels = counts((4, 6), dtype)
            EdfImage(data=pixels).write(str(self.folder / "x.edf"))
            self.assertDone(run("convert", self.folder / "x.edf", self.folder / "x.tif"))
            written = fabio.open(str(self.folder / "x.tif")).data
            self.assertEqual(written.dtype, pixels.dtype)
            numpy.testing.assert_array_equal(written, pixels)

    def test_all_images_keep_their_numbers_over_gaps(self):
        frames = self.write_series()
        self.assertDone(run("convert", "--all", self.folder / "x_00004.cbf",
                            self.folder / "y.v1.tif"))
        written = [name for name in self.names() if name.startswith("y")]
        self.assertEqual(written, ["y.v1_00001.tif", "y.v1_00002.tif", "y.v1_00004.tif"])
        for name, position in zip(written, frames):
            numpy.testing.assert_array_equal(fabio.open(str(self.folder / name)).data,
                                             frames[position])

    def test_frames_of_a_master_become_files(self):
        # fabio does not read steps of more than 32 bits.
        frames, _ = self.write_master(self.folder / "x_master.h5", "i4", (2, 1), divisor=4)
        self.assertDone(run("convert", "--all", self.folder / "x_master.h5",
                            self.folder / "f.cbf"))
        for position, frame in enumerate(frames, 1):
            written = fabio.open(str(self.folder / f"f_{position:05}.cbf")).data
            numpy.testing.assert_array_equal(written, frame)

    def test_a_source_is_never_replaced(self):
        self.write_series()
        self.write_master(self.folder / "m_master.h5", "i4", (1, 1))
        os.link(self.folder / "x_00001.cbf", self.folder / "hard.cbf")
        os.symlink("x_00001.cbf", self.folder / "soft.cbf")
        os.symlink("m_data_000002.h5", self.folder / "data.tif")
        # Its data files are those that the new master would get.
        shutil.copy(self.folder / "m_data_000001.h5", self.folder / "n_data_000001.h5")
        before = {name: (self.folder / name).read_bytes() for name in self.names()}
        for source, output, *options in (("x_00001.cbf", "x_00001.cbf"),
                                         ("x_00001.cbf", "x_00002.cbf"),
                                         ("x_00001.cbf", "./x_00001.cbf"),
                                         ("x_00001.cbf", "hard.cbf"), ("x_00001.cbf", "soft.cbf"),
                                         ("x_00004.cbf", "x.cbf", "--all"),
                                         ("m_master.h5", "data.tif"),
                                         ("m_data_000001.h5", "m_master.h5"),
                                         ("n_data_000001.h5", "n_master.h5", "--all")):
            done = run("convert", *options, self.folder / source, self.folder / output)
            self.assertFails(1, done, "replace its own source")
        os.symlink("x_00001.cbf", self.folder / "soft.png")
        done = run("render", self.folder / "x_00001.cbf", self.folder / "soft.png")
        self.assertFails(1, done, "replace its own source")
        os.remove(self.folder / "soft.png")
        self.assertEqual({name: (self.folder / name).read_bytes() for name in self.names()}, before)

    def test_a_failure_leaves_no_part_behind(self):
        self.write_series((1, 2))
        damaged = self.folder / "x_00002.cbf"
        damaged.write_bytes(damaged.read_bytes()[:-60])
        before = self.names()
        for output in ("o.cbf", "o.tif", "o.h5", "o.png"):
            command = "render" if output.endswith("png") else "convert"
            done = run(command, "--frame", 2, self.folder / "x_00001.cbf", self.folder / output)
            self.assertFails(1, done, damaged)
            done = run(command, self.folder / "x_00001.cbf", self.folder / "no folder" / output)
            self.assertFails(1, done, "no folder")
        self.assertEqual(self.names(), before)
        done = run("convert", "--all", self.folder / "x_00001.cbf", self.folder / "o.h5")
        self.assertFails(1, done, damaged)
        self.assertEqual(self.names(), before)
        done = run("convert", "--all", self.folder / "x_00001.cbf", self.folder / "o.tif")
        self.assertFails(1, done, damaged)
        self.assertEqual(self.names(), sorted([*before, "o_00001.tif"]))


    def test_a_signal_ends_it_between_two_images(self):
        EdfImage(data=counts((256, 256), "i4")).write(str(self.folder / "x_0.edf"))
        for position in range(1, 5000):
            os.link(self.folder / "x_0.edf", self.folder / f"x_{position}.edf")
        for output in ("o.tif", "o_master.h5"):
            (self.folder / "out").mkdir()
            with subprocess.Popen([TOOL, "convert", "--all", self.folder / "x_0.edf",
                                   self.folder / "out" / output], stderr=subprocess.PIPE,
                                  text=True) as process:
                while process.poll() is None and not os.listdir(self.folder / "out"):
                    pass
                process.send_signal(signal.SIGTERM)
                self.assertIn("Stopped on request", process.communicate(timeout=60)[1])
                self.assertEqual(process.returncode, 1)
            for name in os.listdir(self.folder / "out"):
                self.assertRegex(name, r"^o_\d{5}\.tif$")
                self.assertEqual(fabio.open(str(self.folder / "out" / name)).data.shape, (256, 256))
            shutil.rmtree(self.folder / "out")


class Hdf5(OutputCase):
    def test_a_series_becomes_a_master_with_all_frames(self):
        frames = list(self.write_series().values())
        self.assertDone(run("convert", "--all", self.folder / "x_00001.cbf",
                            self.folder / "s_master.h5"))
        for position, frame in enumerate(frames, 1):
            told = self.info(self.folder / "s_master.h5", "--frame", position)
            self.assertTells(told, frame)
            self.assertEqual((told["first"], told["last"]), (1, 3))


class Render(OutputCase):
    def picture(self, *options):
        self.assertDone(run("render", *options, self.folder / "x.edf", self.folder / "x.png"))
        with Image.open(self.folder / "x.png") as image:
            self.assertEqual(image.format, "PNG")
            return numpy.array(image.convert("RGB"))

    def test_levels_tables_and_scale(self):
        pixels = numpy.arange(12, dtype=numpy.int32).reshape(3, 4)
        EdfImage(data=pixels).write(str(self.folder / "x.edf"))
        levels = ("--background", 0, "--foreground", 11, "--table", "Grey Scale")
        grey = self.picture(*levels)
        self.assertEqual(grey.shape, (3, 4, 3))
        self.assertTrue((grey[..., 0] == grey[..., 1]).all() and
                        (grey[..., 0] == grey[..., 2]).all())
        steps = numpy.abs(numpy.diff(grey[..., 0].ravel().astype(int)))
        self.assertTrue((steps >= 20).all() and (steps <= 26).all(), steps)
        large = self.picture(*levels, "--scale", 3)
        numpy.testing.assert_array_equal(large, grey.repeat(3, 0).repeat(3, 1))
        small = self.picture(*levels, "--scale", 0.5)
        numpy.testing.assert_array_equal(small, grey[::2, ::2])
        colour = self.picture(*levels[:4], "--table", "RB")
        self.assertFalse((colour[..., 0] == colour[..., 2]).all())

    def test_default_contrast_shows_something(self):
        pixels = RANDOM.poisson(20, (40, 30)).astype(numpy.uint16)
        pixels[10:12, 10:12] = 60000
        EdfImage(data=pixels).write(str(self.folder / "x.edf"))
        picture = self.picture()
        self.assertEqual(picture.shape, (40, 30, 3))
        self.assertGreater(len(numpy.unique(picture.reshape(-1, 3), axis=0)), 10)
