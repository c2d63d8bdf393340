# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Reads our chunks with the HDF5 filter plug-ins and writes others with them: FOLDER."""

import itertools
import pathlib
import sys

import h5py
import numpy as np

FOLDER = pathlib.Path(sys.argv[1])
PIPELINES = {
    "lz4": dict(compression=32004, compression_opts=(0,)),
    "lz4small": dict(compression=32004, compression_opts=(200,)),
    "bitshuffle": dict(compression=32008, compression_opts=(0, 0)),
    "bitshufflelz4": dict(compression=32008, compression_opts=(0, 2)),
    "bitshufflelz4small": dict(compression=32008, compression_opts=(64, 2)),
    "deflate": dict(compression="gzip", compression_opts=4),
    "shuffledeflate": dict(shuffle=True, compression="gzip", compression_opts=4),
}


def values(pattern, dtype, count, rng):
    full = np.iinfo(dtype).max
    if pattern == "noise":
        return rng.integers(0, full, count, dtype=dtype, endpoint=True)
    counts = rng.poisson(0.4, count).astype(dtype)
    if pattern == "gaps":
        counts[count // 3: count // 2] = full
    return counts


def write(file):
    rng = np.random.default_rng(7)
    patterns = itertools.cycle(("noise", "sparse", "gaps"))
    for dtype, count in itertools.product(("u1", "u2", "u4", "u8"), (3, 8, 2051, 2051, 20011)):
        pattern = next(patterns)
        pixels = values(pattern, np.dtype(dtype), count, rng)
        for kind, options in PIPELINES.items():
            name = f"{kind}_{dtype}_{count}_{pattern}"
            data = file.create_dataset(name, data=pixels, chunks=(count,), **options)
            mask, chunk = data.id.read_direct_chunk((0,))
            if mask:
                continue  # the plug-in left the chunk plain: nothing to learn
            plist = data.id.get_create_plist()
            row = [name, pixels.itemsize, plist.get_nfilters()]
            for i in range(plist.get_nfilters()):
                number, _, cd_values, _ = plist.get_filter(i)
                row += [number, len(cd_values), *cd_values]
            pixels.tofile(FOLDER / (name + ".raw"))
            (FOLDER / (name + ".chunk")).write_bytes(chunk)
            yield " ".join(map(str, row)) + "\n"


def check(file):
    for row in (FOLDER / "ours.txt").read_text().splitlines():
        name, number, size = row.split()
        pixels = np.fromfile(FOLDER / (name + ".raw"), "u" + size)
        data = file.create_dataset(name, pixels.shape, pixels.dtype, chunks=pixels.shape,
                                   compression=int(number),
                                   compression_opts=(0, 2) if number == "32008" else (0,))
        data.id.write_direct_chunk((0,), (FOLDER / (name + ".chunk")).read_bytes())
        if not np.array_equal(data[...], pixels):
            sys.exit("differs: " + name)


with h5py.File(FOLDER / "chunks.h5", "w") as h5:
    check(h5)
    (FOLDER / "theirs.txt").write_text("".join(write(h5)))
