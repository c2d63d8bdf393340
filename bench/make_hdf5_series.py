# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Makes the files of bench_open_series_hdf5: make_hdf5_series.py FOLDER.
import os
import sys

import h5py
import numpy as np

os.chdir(sys.argv[1])
rng = np.random.default_rng(1)
frame = rng.poisson(2, (1, 2167, 2070)).astype("u2")


def block(name, first):
    with h5py.File(name, "w") as f:
        data = f.create_dataset("entry/data/data", data=frame, chunks=frame.shape,
                                compression="gzip", compression_opts=1)
        if first:
            data.attrs["image_nr_low"] = data.attrs["image_nr_high"] = first


def master(prefix, blocks, proved):
    block(f"{prefix}_data_000001.h5", 1 if proved else None)
    packed = open(f"{prefix}_data_000001.h5", "rb").read()
    with h5py.File(f"{prefix}_master.h5", "w") as f:
        f["entry/instrument/detector/pixel_mask"] = np.zeros(frame.shape[1:], "u4")
        for i in range(1, blocks + 1):
            name = f"{prefix}_data_{i:06d}.h5"
            f[f"entry/data/data_{i:06d}"] = h5py.ExternalLink(name, "/entry/data/data")
            if i == blocks and proved:
                block(name, i)
            elif i > 1:
                os.link(f"{prefix}_data_000001.h5", name)


master("one", 1, True)
master("proved", 1000, True)
master("unproved", 1000, False)
large = rng.integers(0, 1000, (4, 4362, 4148), dtype="u4")
with h5py.File("contiguous.h5", "w") as f:
    f["entry/data/data"] = large
with h5py.File("chunked.h5", "w") as f:
    f.create_dataset("entry/data/data", data=large, chunks=(1,) + large.shape[1:])
