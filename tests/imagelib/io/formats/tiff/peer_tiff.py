# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Writes and reads TIFF files with fabio, and some with Pillow, beside their raw pixels.

peer_tiff.py write FOLDER   files <name>.tif, each with <name>.raw in this machine's byte order
peer_tiff.py check FOLDER   compares each <name>.tif with the <name>.<dtype>.<width>.raw beside it
"""
import os
import sys

import fabio
import fabio.tifimage
import numpy
from PIL import Image

# fabio turns 64-bit floats into 32-bit ones.
TYPES = ["uint8", "int8", "uint16", "int16", "uint32", "int32", "float32"]


def picture(dtype):
    """Random counts over the whole range of the type."""
    random = numpy.random.default_rng(5)
    if numpy.dtype(dtype).kind == "f":
        return random.normal(size=(41, 67)).astype(dtype)
    limits = numpy.iinfo(dtype)
    return random.integers(limits.min, limits.max, size=(41, 67), dtype=dtype, endpoint=True)


def write(folder):
    for dtype in TYPES:
        data = picture(dtype)
        name = os.path.join(folder, "fabio_" + dtype)
        fabio.tifimage.TifImage(data=data).write(name + ".tif")
        data.tofile(name + ".raw")
    for compression in ["raw", "packbits", "tiff_lzw", "tiff_adobe_deflate"]:
        for dtype in ["uint8", "uint16", "int32", "float32"]:
            data = picture(dtype)
            name = os.path.join(folder, f"pillow_{compression}_{dtype}")
            Image.fromarray(data).save(name + ".tif", compression=compression)
            data.tofile(name + ".raw")


def check(folder):
    names = sorted(name for name in os.listdir(folder) if name.endswith(".raw"))
    assert names, "nothing to check"
    for name in names:
        stem, dtype, width, _ = name.rsplit(".", 3)
        expected = numpy.fromfile(os.path.join(folder, name), dtype).reshape(-1, int(width))
        got = fabio.open(os.path.join(folder, stem + ".tif")).data
        assert got.dtype == expected.dtype, (stem, got.dtype, expected.dtype)
        assert got.tobytes() == expected.tobytes(), stem


if __name__ == "__main__":
    {"write": write, "check": check}[sys.argv[1]](sys.argv[2])
