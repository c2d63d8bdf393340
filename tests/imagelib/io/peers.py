# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Reads image files with fabio, and writes EDF and TIFF files with it: peers.py FOLDER.

Compares each <file> with the <file>.<dtype>.<width>.raw beside it. Writes the pixels of each frame
of a file to <file>.<frame>.pixels.
"""
import os
import sys

import fabio
import fabio.edfimage
import fabio.tifimage
import numpy

TYPES = ["uint8", "int8", "uint16", "int16", "uint32", "int32", "uint64", "int64", "float32",
         "float64"]


def picture(dtype, seed):
    """Random values over the whole range of the type."""
    random = numpy.random.default_rng(seed)
    if numpy.dtype(dtype).kind == "f":
        return random.normal(size=(41, 67)).astype(dtype)
    limits = numpy.iinfo(dtype)
    return random.integers(limits.min, limits.max, size=(41, 67), dtype=dtype, endpoint=True)


def check():
    names = [name for name in os.listdir() if name.endswith(".raw")]
    for name in names:
        path, dtype, width, _ = name.rsplit(".", 3)
        expected = numpy.fromfile(name, dtype).reshape(-1, int(width))
        got = fabio.open(path).data
        assert got.tolist() == expected.tolist(), path
        assert got.dtype == expected.dtype or not path.endswith(".tif"), (path, got.dtype)
    print(len(names))


def write():
    header = {"Center_1": "31.5", "SampleDistance": "0.25", "title": "a = b"}
    for dtype in TYPES:
        frames = [picture(dtype, seed) for seed in range(3)]
        image = fabio.edfimage.EdfImage(data=frames[0], header=dict(header))
        for data in frames[1:]:
            image.append_frame(data=data, header=dict(header))
        image.write(f"fabio_{dtype}.edf")
        for number, data in enumerate(frames):
            data.tofile(f"fabio_{dtype}.edf.{number}.pixels")
        if "64" not in dtype:  # of TIFF
            fabio.tifimage.TifImage(data=frames[0]).write(f"fabio_{dtype}.tif")
            frames[0].tofile(f"fabio_{dtype}.tif.0.pixels")


os.chdir(sys.argv[1])
check()
write()
