# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What tarvik-image writes: other formats and pictures."""

import os
import shutil

import fabio
import numpy
from fabio.cbfimage import CbfImage
from PIL import Image

from toolcase import RANDOM, ToolCase, run


class OutputCase(ToolCase):
    def write_series(self, numbers=(1, 2, 4)):
        frames = {}
        for position in numbers:
            frames[position] = RANDOM.poisson(position, (5, 7)).astype(numpy.int32)
            CbfImage(data=frames[position]).write(str(self.folder / f"x_{position:05}.cbf"))
        return frames

    def convert(self, source, output, *options):
        return run("convert", *options, self.folder / source, self.folder / output)

    def assertWritten(self, names, frames):
        for name, frame in zip(names, frames, strict=True):
            written = fabio.open(str(self.folder / name)).data
            numpy.testing.assert_array_equal(written, frame, name)


class Convert(OutputCase):
    def test_one_image_to_each_format(self):
        frames = self.write_series()
        for output in ("o.cbf", "o.tif", "o.TIFF"):
            self.assertDone(self.convert("x_00002.cbf", output))
            self.assertWritten([output], [frames[2]])
        self.assertDone(self.convert("x_00002.cbf", "four.tif", "--frame", 4))
        self.assertWritten(["four.tif"], [frames[4]])

    def test_all_images_keep_their_numbers_over_gaps(self):
        frames = list(self.write_series().values())
        self.assertDone(self.convert("x_00004.cbf", "y.v1.tif", "--all"))
        written = [name for name in self.names() if name.startswith("y")]
        self.assertEqual(written, ["y.v1_00001.tif", "y.v1_00002.tif", "y.v1_00004.tif"])
        self.assertWritten(written, frames)
        # HDF5 has no gaps, and goes back to files.
        self.assertDone(self.convert("x_00001.cbf", "s_master.h5", "--all"))
        self.assertDone(self.convert("s_master.h5", "f.cbf", "--all"))
        for position, frame in enumerate(frames, 1):
            self.assertTells(self.told("info", self.folder / "s_master.h5", "--frame", position),
                             frame, first=1, last=3)
        self.assertWritten([f"f_{position:05}.cbf" for position in (1, 2, 3)], frames)

    def test_a_source_is_never_replaced(self):
        self.write_series()
        self.master(numpy.ones((2, 6, 8), "i4"), blocks=(1, 1), name="m")
        os.link(self.folder / "x_00001.cbf", self.folder / "hard.cbf")
        for name, target in (("soft.cbf", "x_00001.cbf"), ("soft.png", "x_00001.cbf"),
                             ("data.tif", "m_data_000002.h5")):
            os.symlink(target, self.folder / name)
        # Its data files are those that the new master would get.
        shutil.copy(self.folder / "m_data_000001.h5", self.folder / "n_data_000001.h5")
        before = {name: (self.folder / name).read_bytes() for name in self.names()}
        for source, output, *options in (("x_00001.cbf", "x_00001.cbf"),
                                         ("x_00001.cbf", "x_00002.cbf"),
                                         ("x_00001.cbf", "./x_00001.cbf"),
                                         ("x_00001.cbf", "hard.cbf"), ("x_00001.cbf", "soft.cbf"),
                                         ("x_00001.cbf", "soft.png"),
                                         ("x_00004.cbf", "x.cbf", "--all"),
                                         ("m_master.h5", "data.tif"),
                                         ("m_data_000001.h5", "m_master.h5"),
                                         ("n_data_000001.h5", "n_master.h5", "--all")):
            command = "render" if output.endswith("png") else "convert"
            done = run(command, *options, self.folder / source, self.folder / output)
            self.assertFails(1, done, "replace its own source")
        self.assertEqual({name: (self.folder / name).read_bytes() for name in self.names()}, before)

    def test_a_failure_leaves_no_part_behind(self):
        self.write_series((1, 2))
        damaged = self.folder / "x_00002.cbf"
        damaged.write_bytes(damaged.read_bytes()[:-60])
        before = self.names()
        for output in ("o.cbf", "o.tif", "o.h5", "o.png"):
            command = "render" if output.endswith("png") else "convert"
            self.assertFails(1, run(command, damaged, self.folder / output), damaged)
        self.assertFails(1, self.convert("x_00001.cbf", "no folder/o.h5"), "no folder")
        self.assertFails(1, self.convert("x_00001.cbf", "o.h5", "--all"), damaged)
        self.assertEqual(self.names(), before)
        self.assertFails(1, self.convert("x_00001.cbf", "o.tif", "--all"), damaged)
        self.assertEqual(self.names(), sorted([*before, "o_00001.tif"]))


class Render(OutputCase):
    def picture(self, source, *options):
        self.assertDone(run("render", *options, source, self.folder / "x.png"))
        with Image.open(self.folder / "x.png") as image:
            self.assertEqual(image.format, "PNG")
            return numpy.array(image.convert("RGB"))

    LEVELS = ("--background", 0, "--foreground", 11)

    def test_levels_tables_and_scale(self):
        source = self.edf(numpy.arange(12, dtype=numpy.int32).reshape(3, 4))
        pictures = {}
        for names in (("HDR", "High Dynamic Range"), ("GS", "Grey Scale"), ("H", "Heat"),
                      ("RB", "Rainbow"), ("V", "Viridis"), ("C", "Cividis")):
            short, full = (self.picture(source, *self.LEVELS, "--table", name) for name in names)
            numpy.testing.assert_array_equal(short, full)
            pictures[names[0]] = short
        self.assertEqual(len({picture.tobytes() for picture in pictures.values()}), 6)
        grey = pictures["GS"]
        self.assertEqual(grey.shape, (3, 4, 3))
        self.assertTrue((grey == grey[..., :1]).all())
        steps = numpy.abs(numpy.diff(grey[..., 0].ravel().astype(int)))
        self.assertTrue((steps >= 20).all() and (steps <= 26).all(), steps)
        large = self.picture(source, *self.LEVELS, "--table", "GS", "--scale", 3)
        numpy.testing.assert_array_equal(large, grey.repeat(3, 0).repeat(3, 1))
        small = self.picture(source, *self.LEVELS, "--table", "GS", "--scale", 0.5)
        numpy.testing.assert_array_equal(small, grey[::2, ::2])
        small = self.picture(source, *self.LEVELS, "--table", "GS", "--scale", 0.25)
        numpy.testing.assert_array_equal(small, grey[1:2, 1:2])  # as views do
        words = (*self.LEVELS, "--table", "GS", "--largest")
        small = self.picture(source, *words, "--scale", 0.5)
        numpy.testing.assert_array_equal(small, grey[[1, 2]][:, [1, 3]])
        numpy.testing.assert_array_equal(self.picture(source, *words), grey)
        spanned = self.picture(source, "--contrast", "0%:100%", "--table", "GS")
        numpy.testing.assert_array_equal(spanned, grey)

    def test_masked_defective_and_saturated_pixels_have_their_colours(self):
        frame, mask = numpy.arange(12, dtype="u4").reshape(1, 3, 4), numpy.zeros((3, 4), "u4")
        mask[0, 1:3] = 1, 4
        words = (*self.LEVELS, "--table", "GS")
        plain = self.picture(self.master(frame), *words)
        special = self.picture(self.master(frame, {"pixel_mask": mask, "saturation_value": 11}),
                               *words)
        masked, defective, saturated = special[0, 1], special[0, 2], special[2, 3]
        self.assertEqual(masked.tolist(), [0, 0, 0])
        for colour in (defective, saturated):  # no grey
            self.assertGreater(numpy.ptp(colour), 0)
        self.assertNotEqual(defective.tolist(), saturated.tolist())
        special[0, 1:3], special[2, 3] = plain[0, 1:3], plain[2, 3]
        numpy.testing.assert_array_equal(special, plain)

    def test_what_cannot_be_is_refused(self):
        source = self.edf(numpy.zeros((2000, 2000), "u1"))
        for words in (("--background", 5, "--foreground", 5), ("--foreground", -1e9),
                      ("--scale", 64)):
            self.assertFails(1, run("render", *words, source, self.folder / "x.png"))
        self.assertEqual(self.names(), ["x.edf"])

    def test_default_contrast_shows_something(self):
        pixels = RANDOM.poisson(20, (40, 30)).astype(numpy.uint16)
        pixels[10:12, 10:12] = 60000
        picture = self.picture(self.edf(pixels))
        self.assertEqual(picture.shape, (40, 30, 3))
        self.assertGreater(len(numpy.unique(picture.reshape(-1, 3), axis=0)), 10)
