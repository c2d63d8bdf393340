# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Tells as JSON what h5py finds in files: dump_nexus.py ANSWER. Reads paths, a line each, and
writes one answer for each into the pipe ANSWER. External links are followed. Arrays of two and
more dimensions are given as a weighted sum for each image."""
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


for line in sys.stdin:
    content = {}
    try:
        with h5py.File(line.rstrip("\n"), "r") as file:
            dump(file, "", content)
    except Exception as error:  # the test has to see it, and not to wait
        content = {"error": repr(error)}
    with open(sys.argv[1], "w") as out:
        json.dump(content, out)
