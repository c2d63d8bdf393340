# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Writes and reads EDF files with fabio, each frame beside its raw pixels.

peer_edf.py write FOLDER   files <name>.edf, each with <name>.<frame>.raw in this machine's byte order
peer_edf.py check FOLDER   compares each <name>.edf with the <name>.<dtype>.<width>.raw beside it
"""
import os
import sys

import fabio.edfimage
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


def save(image, name, frames):
    image.write(name + ".edf")
    for number, data in enumerate(frames):
        data.tofile(f"{name}.{number}.raw")


def write(folder):
    header = {"Center_1": "31.5", "SampleDistance": "0.25", "title": "a = b"}
    for dtype in TYPES:
        data = picture(dtype, 1)
        save(fabio.edfimage.EdfImage(data=data, header=dict(header)),
             os.path.join(folder, "one_" + dtype), [data])
        frames = [picture(dtype, seed) for seed in range(3)]
        image = fabio.edfimage.EdfImage(data=frames[0], header=dict(header))
        for data in frames[1:]:
            image.append_frame(data=data, header=dict(header))
        save(image, os.path.join(folder, "many_" + dtype), frames)


def check(folder):
    names = sorted(name for name in os.listdir(folder) if name.endswith(".raw"))
    assert names, "nothing to check"
    for name in names:
        stem, dtype, width, _ = name.rsplit(".", 3)
        expected = numpy.fromfile(os.path.join(folder, name), dtype).reshape(-1, int(width))
        got = fabio.open(os.path.join(folder, stem + ".edf")).data
        assert got.tolist() == expected.tolist(), stem


if __name__ == "__main__":
    {"write": write, "check": check}[sys.argv[1]](sys.argv[2])
