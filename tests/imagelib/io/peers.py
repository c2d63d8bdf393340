# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Reads and writes image files with fabio: peers.py FOLDER.

Compares each <stem>.<extension> with the <stem>.<extension>.<dtype>.<width>.raw beside it. Writes
fabio_<...>.<extension>, each frame with its pixels in <stem>.<extension>.<frame>.pixels.
"""
import os
import sys

import fabio
import fabio.cbfimage
import fabio.edfimage
import fabio.tifimage
import numpy

INTEGERS = ["uint8", "int8", "uint16", "int16", "uint32", "int32"]


def picture(dtype, seed):
    """Random values over the whole range of the type."""
    random = numpy.random.default_rng(seed)
    if numpy.dtype(dtype).kind == "f":
        return random.normal(size=(41, 67)).astype(dtype)
    limits = numpy.iinfo(dtype)
    return random.integers(limits.min, limits.max, size=(41, 67), dtype=dtype, endpoint=True)


def counts(dtype):
    """Mostly low values, with steps that fabio can pack."""
    random = numpy.random.default_rng(4)
    values = random.integers(-1000000, 1000000, (13, 21))
    values[random.random(values.shape) < 0.8] %= 5
    return values.astype(dtype)


def check():
    names = [name for name in os.listdir() if name.endswith(".raw")]
    for name in names:
        path, dtype, width, _ = name.rsplit(".", 3)
        expected = numpy.fromfile(name, dtype).reshape(-1, int(width))
        got = fabio.open(path).data
        assert got.tolist() == expected.tolist(), path
        assert got.dtype == expected.dtype or not path.endswith(".tif"), (path, got.dtype)
    print(len(names))


def save(image, name, frames):
    image.write(name)
    for number, data in enumerate(frames):
        data.tofile(f"{name}.{number}.pixels")


def write():
    header = {"Center_1": "31.5", "SampleDistance": "0.25", "title": "a = b"}
    for dtype in INTEGERS + ["uint64", "int64", "float32", "float64"]:
        frames = [picture(dtype, seed) for seed in range(3)]
        image = fabio.edfimage.EdfImage(data=frames[0], header=dict(header))
        for data in frames[1:]:
            image.append_frame(data=data, header=dict(header))
        save(image, f"fabio_{dtype}.edf", frames)
    for dtype in INTEGERS + ["int64"]:
        save(fabio.cbfimage.CbfImage(data=counts(dtype)), f"fabio_{dtype}.cbf", [counts(dtype)])
    for dtype in INTEGERS + ["float32"]:  # it turns 64-bit floats into 32-bit ones
        data = picture(dtype, 5)
        save(fabio.tifimage.TifImage(data=data), f"fabio_{dtype}.tif", [data])


os.chdir(sys.argv[1])
check()
write()
