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
from fabio.edfimage import EdfImage

TOOL = os.environ["TARVIK_IMAGE"]
RANDOM = numpy.random.default_rng(4711)
KIND = {"u": "UINT", "i": "INT", "f": "FLOAT"}


def run(*arguments, **options):
    return subprocess.run([TOOL, *map(str, arguments)], timeout=240,
                          **{"capture_output": True, "text": True, **options})


def counts(shape, dtype):
    """Random pixels over the whole range of a type, with its ends."""
    dtype = numpy.dtype(dtype)
    if dtype.kind == "f":
        return RANDOM.normal(size=shape).astype(dtype)
    limits = numpy.iinfo(dtype)
    pixels = RANDOM.integers(limits.min, limits.max, shape, dtype, endpoint=True)
    pixels.flat[:2] = limits.min, limits.max
    return pixels


def number(value):
    """A NumPy value as the tool's JSON gives it."""
    value = value.item()
    return value if isinstance(value, int) or math.isfinite(value) else str(value)


class ToolCase(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tarvik-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def names(self):
        return sorted(os.listdir(self.folder))

    def edf(self, pixels, name="x.edf", **header):
        EdfImage(data=numpy.asarray(pixels), header=header).write(str(self.folder / name))
        return self.folder / name

    def master(self, frames, detector=(), wavelength=None, blocks=(), name="x"):
        """An HDF5 master with its frames inside, or in data files of so many frames as given."""
        path = self.folder / f"{name}_master.h5"
        with h5py.File(path, "w") as master:
            entry, data = master.create_group("entry"), master.create_group("entry/data")
            entry.attrs["NX_class"], data.attrs["NX_class"] = "NXentry", "NXdata"
            for field, value in dict(detector).items():
                entry[f"instrument/detector/{field}"] = value
            if wavelength is not None:
                entry["instrument/beam/wavelength"] = numpy.float32(wavelength)
            if not blocks:
                data["data"] = frames
                return path
            parts = numpy.split(frames, numpy.cumsum(blocks)[:-1])
            for block, part in enumerate(parts, 1):
                file = f"{name}_data_{block:06}.h5"
                data[f"data_{block:06}"] = h5py.ExternalLink(file, "/entry/data/data")
                with h5py.File(self.folder / file, "w") as file:
                    file.create_dataset("entry/data/data", data=part, compression="gzip",
                                        chunks=(1, *part.shape[1:]))
        return path

    def told(self, command, *words):
        """The JSON; standard output must hold nothing else."""
        done = run(command, "--json", *words)
        self.assertEqual((done.returncode, done.stderr, done.stdout.count("\n")), (0, "", 1))
        return json.loads(done.stdout, parse_constant=self.fail)

    def text(self, command, *words):
        """The text for people: what follows the first word of each line."""
        done = run(command, *words)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return dict(line.split(None, 1) for line in done.stdout.splitlines() if " " in line)

    def assertDone(self, done):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def assertFails(self, code, done, *parts):
        """One line of reason for a failure, after the usage for wrong usage, nothing else."""
        self.assertEqual((done.returncode, done.stdout), (code, ""), done.stderr)
        usage, _, reason = done.stderr[:-1].rpartition("\n")
        self.assertTrue(reason.startswith("tarvik-image: "), done.stderr)
        for part in parts:
            self.assertIn(str(part), reason)
        self.assertEqual(usage.startswith("Usage:"), code == 2, done.stderr)
        self.assertEqual(usage == "", code == 1, done.stderr)

    def assertTells(self, told, pixels, /, **more):
        """Does the JSON say what NumPy says of the same pixels, and these values?"""
        little = pixels.astype(pixels.dtype.newbyteorder("<"))
        expected = {"height": pixels.shape[0], "width": pixels.shape[1],
                    "type": KIND[pixels.dtype.kind], "bits": 8 * pixels.dtype.itemsize,
                    "minimum": number(pixels.min()), "maximum": number(pixels.max()),
                    "sha256": hashlib.sha256(little.tobytes()).hexdigest(), **more}
        self.assertEqual({key: told[key] for key in expected}, expected)
        if pixels.dtype.kind != "f":
            self.assertEqual(told["sum"], sum(map(int, pixels.flat)))
        elif isinstance(total := number(pixels.sum(dtype=numpy.float64)), str):
            self.assertEqual(told["sum"], total)
        else:
            self.assertAlmostEqual(told["sum"], total, delta=1e-9 * max(1, abs(total)))
