# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Runs tarvik-image as a process and compares what it says and writes with other readers.

The environment variable TARVIK_IMAGE names the program.
"""

import hashlib
import json
import math
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

import h5py
import numpy

TOOL = os.environ["TARVIK_IMAGE"]
RANDOM = numpy.random.default_rng(4711)


def run(*arguments, **options):
    return subprocess.run([TOOL, *map(str, arguments)], capture_output=True, text=True,
                          timeout=60, **options)


def counts(shape, dtype):
    """Random pixels over the whole range of a type, with its ends."""
    dtype = numpy.dtype(dtype)
    if dtype.kind == "f":
        pixels = RANDOM.normal(size=shape).astype(dtype)
    else:
        limits = numpy.iinfo(dtype)
        pixels = RANDOM.integers(limits.min, limits.max, shape, dtype, endpoint=True)
        pixels.flat[:2] = limits.min, limits.max
    return pixels


KIND = {"u": "UINT", "i": "INT", "f": "FLOAT"}


def number(value):
    """A NumPy value as the tool's JSON gives it."""
    value = value.item()
    return value if isinstance(value, int) or math.isfinite(value) else str(value)


class ToolCase(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tarvik-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def info(self, path, *options):
        done = run("info", "--json", *options, path)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(done.stdout.count("\n"), 1)
        return json.loads(done.stdout)

    def assertFails(self, code, done, *parts):
        """One line of reason for a failure, usage behind it for wrong usage, nothing else."""
        self.assertEqual(done.returncode, code, done.stderr)
        self.assertEqual(done.stdout, "")
        for part in parts:
            self.assertIn(str(part), done.stderr)
        if code == 1:
            self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        else:
            self.assertIn("Usage:", done.stderr)

    def assertTells(self, told, pixels):
        """Does the JSON say what NumPy says of the same pixels?"""
        self.assertEqual((told["height"], told["width"]), pixels.shape)
        self.assertEqual(told["type"], KIND[pixels.dtype.kind])
        self.assertEqual(told["bits"], 8 * pixels.dtype.itemsize)
        self.assertEqual(told["minimum"], number(pixels.min()))
        self.assertEqual(told["maximum"], number(pixels.max()))
        if pixels.dtype.kind == "f":
            total = number(pixels.sum(dtype=numpy.float64))
            if isinstance(total, str):
                self.assertEqual(told["sum"], total)
            else:
                self.assertAlmostEqual(told["sum"], total, delta=1e-9 * max(1, abs(total)))
        else:
            self.assertEqual(told["sum"], sum(map(int, pixels.flat)))
        little = pixels.astype(pixels.dtype.newbyteorder("<"))
        self.assertEqual(told["sha256"], hashlib.sha256(little.tobytes()).hexdigest())

    def write_master(self, path, dtype, blocks, divisor=1):
        frames = [counts((6, 8), dtype) // divisor for _ in range(sum(blocks))]
        mask = numpy.zeros((6, 8), numpy.uint32)
        mask[2, 3:5] = 1, 8
        with h5py.File(path, "w") as master:
            entry = master.create_group("entry")
            entry.attrs["NX_class"] = "NXentry"
            data = entry.create_group("data")
            data.attrs["NX_class"] = "NXdata"
            detector = entry.create_group("instrument/detector")
            detector["count_time"] = 0.1
            detector["saturation_value"] = 65000
            detector["pixel_mask"] = mask
            entry["instrument/beam/wavelength"] = 0.97918
            done = 0
            for block, count in enumerate(blocks, 1):
                name = f"{path.name[:-len('_master.h5')]}_data_{block:06}.h5"
                data[f"data_{block:06}"] = h5py.ExternalLink(name, "/entry/data/data")
                with h5py.File(path.parent / name, "w") as part:
                    part.create_dataset("entry/data/data", chunks=(1, 6, 8), compression="gzip",
                                        data=numpy.stack(frames[done:done + count]))
                done += count
        return frames, mask
