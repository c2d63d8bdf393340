# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Writes what h5py finds in a file as JSON: dump_nexus.py FILE REPORT. External links are followed.
Arrays of two and more dimensions are given as a weighted sum for each image."""

import json
import sys

import h5py
import numpy as np


def plain(value):
    if isinstance(value, bytes):
        return value.decode()
    if isinstance(value, np.ndarray):
        return [plain(v) for v in value]
    return value.item() if isinstance(value, np.generic) else value


def dump(group, path, report):
    for name in group:
        item, full = group[name], f"{path}/{name}"
        node = {"attributes": {k: plain(v) for k, v in item.attrs.items()}}
        report[full] = node
        if isinstance(item, h5py.Group):
            dump(item, full, report)
            continue
        node["dtype"], node["shape"] = str(item.dtype), list(item.shape)
        if item.ndim < 2:
            node["value"] = plain(item[()])
            continue
        images = item[()].reshape((-1,) + item.shape[-2:]).astype(float)
        weights = np.arange(images[0].size) % 1000 + 1
        node["sums"] = [float((image.ravel() * weights).sum()) for image in images]


with h5py.File(sys.argv[1], "r") as file, open(sys.argv[2], "w") as out:
    content = {}
    dump(file, "", content)
    json.dump(content, out)
