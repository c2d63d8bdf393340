# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Writes chunks with the HDF5 filter plug-ins (write DIR), or reads ours with them (check DIR)."""

import os
import sys

import h5py
import numpy as np


def patterns(dtype, count, rng):
    full = np.iinfo(dtype).max
    yield "noise", rng.integers(0, full, count, dtype=dtype, endpoint=True)
    counts = rng.poisson(0.4, count).astype(dtype)
    yield "sparse", counts
    gaps = counts.copy()
    gaps[count // 3: count // 2] = full
    yield "gaps", gaps


def write(folder):
    rng = np.random.default_rng(7)
    rows = []
    with h5py.File(os.path.join(folder, "peer.h5"), "w") as file:
        pipelines = {
            "lz4": dict(compression=32004, compression_opts=(0,)),
            "lz4small": dict(compression=32004, compression_opts=(200,)),
            "bitshuffle": dict(compression=32008, compression_opts=(0, 0)),
            "bitshufflelz4": dict(compression=32008, compression_opts=(0, 2)),
            "bitshufflelz4small": dict(compression=32008, compression_opts=(64, 2)),
            "deflate": dict(compression="gzip", compression_opts=4),
            "shuffledeflate": dict(shuffle=True, compression="gzip", compression_opts=4),
        }
        for dtype in ("u1", "u2", "u4", "u8"):
            for count in (3, 8, 2051, 40007):
                for pattern, values in patterns(np.dtype(dtype), count, rng):
                    for kind, options in pipelines.items():
                        name = f"{kind}_{dtype}_{count}_{pattern}"
                        data = file.create_dataset(name, data=values, chunks=(count,), **options)
                        mask, chunk = data.id.read_direct_chunk((0,))
                        if mask:
                            continue  # the plug-in left the chunk plain: nothing to learn
                        plist = data.id.get_create_plist()
                        filters = [plist.get_filter(i) for i in range(plist.get_nfilters())]
                        row = [name, values.itemsize, len(filters)]
                        for number, _, cd_values, _ in filters:
                            row += [number, len(cd_values), *cd_values]
                        rows.append(" ".join(map(str, row)))
                        values.tofile(os.path.join(folder, name + ".raw"))
                        with open(os.path.join(folder, name + ".chunk"), "wb") as out:
                            out.write(chunk)
    with open(os.path.join(folder, "list.txt"), "w") as out:
        out.write("\n".join(rows) + "\n")


def check(folder):
    failures = 0
    with open(os.path.join(folder, "ours.txt")) as rows, \
            h5py.File(os.path.join(folder, "ours.h5"), "w") as file:
        for row in rows:
            name, number, size = row.split()
            values = np.fromfile(os.path.join(folder, name + ".raw"), dtype="u" + size)
            options = (0, 2) if number == "32008" else (0,)
            data = file.create_dataset(name, values.shape, values.dtype, chunks=values.shape,
                                       compression=int(number), compression_opts=options)
            with open(os.path.join(folder, name + ".chunk"), "rb") as chunk:
                data.id.write_direct_chunk((0,), chunk.read())
            if not np.array_equal(data[...], values):
                print("differs:", name)
                failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit({"write": write, "check": check}[sys.argv[1]](sys.argv[2]) or 0)
