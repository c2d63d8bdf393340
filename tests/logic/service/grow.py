# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Writes a series that grows: "grow.py KIND FOLDER".

Prints the file to open, then adds to the series at each line of standard input and prints the
number of the last image. All pixels of an image are its number.
"""

import pathlib
import sys

import h5py
import numpy
from fabio.edfimage import EdfImage

kind, folder = sys.argv[1], pathlib.Path(sys.argv[2])
SHAPE = (40, 30)
number = 0


def frame():
    global number
    number += 1
    return numpy.full(SHAPE, number, numpy.int32)


def say(text):
    print(text, flush=True)


def grow_by(add):
    for _ in sys.stdin:
        add()
        say(number)


def numbered():
    def add():
        pixels = frame()
        EdfImage(data=pixels).write(str(folder / f"n_{number:04}.edf"))
    add()
    say(folder / "n_0001.edf")
    grow_by(add)


def frames():
    """One EDF file; its frames count from 0."""
    global number
    path, single = folder / "f.edf", folder / "single"
    number = -1
    with open(path, "wb") as file:
        def add():
            EdfImage(data=frame()).write(str(single))
            file.write(single.read_bytes())
            file.flush()
        add()
        add()
        say(path)
        grow_by(add)


def new_dataset(file, length):
    group = file.require_group("entry/data")
    file["entry"].attrs["NX_class"] = "NXentry"
    group.attrs["NX_class"] = "NXdata"
    return group.create_dataset("data", (length, *SHAPE), numpy.int32, chunks=(1, *SHAPE),
                                maxshape=(None, *SHAPE))


def append(data):
    data.resize(len(data) + 1, axis=0)
    data[-1] = frame()


def dataset(swmr=False):
    """A data set in the file that is opened, held open by its writer."""
    path = folder / "x.h5"
    with h5py.File(path, "w", libver="latest") as file:
        data = new_dataset(file, 0)
        append(data)
        file.flush()
        if swmr:
            file.swmr_mode = True

        def add():
            append(data)
            data.flush()
            if not swmr:
                file.flush()
        say(path)
        grow_by(add)


def blocks(new_blocks=True):
    """A master with data files of two images each, or of any number."""
    path = folder / "b_master.h5"
    with h5py.File(path, "w") as master:
        master.create_group("entry/data").attrs["NX_class"] = "NXdata"
        master["entry"].attrs["NX_class"] = "NXentry"
        for block in range(1, 10):
            master[f"entry/data/data_{block:06}"] = h5py.ExternalLink(
                f"b_data_{block:06}.h5", "/entry/data/data")

    def add_block():
        count = number // 2 + 1
        with h5py.File(folder / f"b_data_{count:06}.h5", "w") as part:
            data = new_dataset(part, 0)
            append(data)
            append(data)
    add_block()
    say(path)
    if new_blocks:
        return grow_by(add_block)
    add_block()
    with h5py.File(folder / "b_data_000002.h5", "r+") as part:
        def add():
            append(part["entry/data/data"])
            part.flush()
        grow_by(add)


{"numbered": numbered, "frames": frames, "dataset": dataset, "swmr": lambda: dataset(True),
 "blocks": blocks, "lastblock": lambda: blocks(False)}[kind]()
