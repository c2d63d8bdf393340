# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Writes series that grow.

A line "KIND FOLDER" of standard input begins one and is answered with the file to open; each empty
line adds to it and is answered with the number of the last image. Files stay open meanwhile. All
pixels of an image are its number.
"""

import pathlib
import sys
from itertools import count

import h5py
import numpy
from fabio.edfimage import EdfImage

SHAPE = (40, 30)


def frame(number):
    return numpy.full(SHAPE, number, numpy.int32)


def numbered(folder):
    for number in count(1):
        EdfImage(data=frame(number)).write(str(folder / f"n_{number:04}.edf"))
        yield number if number > 1 else folder / "n_0001.edf"


def frames(folder):
    """One EDF file; its frames count from 0."""
    with open(folder / "f.edf", "wb") as file:
        for number in count():
            EdfImage(data=frame(number)).write(str(folder / "single"))
            file.write((folder / "single").read_bytes())
            file.flush()
            if number > 0:
                yield number if number > 1 else folder / "f.edf"


def new_dataset(file):
    group = file.require_group("entry/data")
    file["entry"].attrs["NX_class"] = "NXentry"
    group.attrs["NX_class"] = "NXdata"
    return group.create_dataset("data", (0, *SHAPE), numpy.int32, chunks=(1, *SHAPE),
                                maxshape=(None, *SHAPE))


def append(data, number):
    data.resize(len(data) + 1, axis=0)
    data[-1] = frame(number)
    data.flush()


def dataset(folder, swmr=False):
    """A data set in the file that is opened, held open by its writer."""
    with h5py.File(folder / "x.h5", "w", libver="latest") as file:
        data = new_dataset(file)
        for number in count(1):
            append(data, number)
            if number == 1 or not swmr:
                file.flush()
            if number == 1 and swmr:
                file.swmr_mode = True
            yield number if number > 1 else folder / "x.h5"


def path(folder):
    """The same data set, opened by its path."""
    for told in dataset(folder):
        yield f"{told}::/entry/data/data" if str(told).endswith(".h5") else told


def blocks(folder):
    """A master with data files of two images each."""
    with h5py.File(folder / "b_master.h5", "w") as master:
        master.create_group("entry/data").attrs["NX_class"] = "NXdata"
        master["entry"].attrs["NX_class"] = "NXentry"
        for block in range(1, 10):
            master[f"entry/data/data_{block:06}"] = h5py.ExternalLink(
                f"b_data_{block:06}.h5", "/entry/data/data")
    for number in count(2, 2):
        with h5py.File(folder / f"b_data_{number // 2:06}.h5", "w") as part:
            data = new_dataset(part)
            append(data, number - 1)
            append(data, number)
        yield number if number > 2 else folder / "b_master.h5"


def lastblock(folder):
    """The same, but the second data file is the one that grows."""
    begun = blocks(folder)
    path = next(begun)
    next(begun)
    yield path
    with h5py.File(folder / "b_data_000002.h5", "r+") as part:
        for number in count(5):
            append(part["entry/data/data"], number)
            part.flush()
            yield number


kinds = {"numbered": numbered, "frames": frames, "dataset": dataset, "path": path, "blocks": blocks,
         "swmr": lambda folder: dataset(folder, True), "lastblock": lastblock}
for line in sys.stdin:
    words = line.split()
    if words:
        series = kinds[words[0]](pathlib.Path(words[1]))
    print(next(series), flush=True)
