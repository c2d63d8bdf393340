# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Colours an image with NumPy by the rules of docs/display.md and compares with a given result.

    peer_colormap.py FOLDER TYPE FOREGROUND BACKGROUND LOG_FOREGROUND CUTOFF SATURATED DEFECTIVE

FOLDER holds the raw arrays image, mask, linear, logarithmic and colors. Fails unless all pixels
agree, those of the logarithmic part within one entry.
"""

import pathlib
import sys

import numpy as np

folder = pathlib.Path(sys.argv[1])
kind = np.dtype(sys.argv[2])
levels = [float(text) for text in sys.argv[3:6]]
cutoff, saturated, defective = (int(text) for text in sys.argv[6:9])

image = np.fromfile(folder / "image", kind)
mask = np.fromfile(folder / "mask", np.uint32)
linear = np.fromfile(folder / "linear", "<u4")
logarithmic = np.fromfile(folder / "logarithmic", "<u4")
colors = np.fromfile(folder / "colors", "<u4")

if kind.kind == "f":
    f, b, g = (np.float32(level) for level in levels)
    b = max(b, np.float32(1.1754943508222875e-38))
else:
    f, b, g = (int(level) for level in levels)

N, L = len(linear), len(logarithmic)
above = (image.astype(np.float64) - float(b)).astype(np.float32)
slope = np.float32(N / (float(f) - float(b)))
index = np.clip(slope * above / np.float32(N), 0, 1) * np.float32(N)
index = np.where(image > b, np.minimum(np.floor(index), N - 1), 0).astype(np.int64)
expected = linear[index]
near = [expected, expected]
bright = image >= f
if L:
    log_slope = (L - 1) / np.log((g - b) / (f - b))
    place = log_slope * np.log(above.astype(np.float64)[bright]) - log_slope * np.log(f - b)
    place = np.where(image[bright] >= g, L - 1, np.clip(np.floor(place), 0, L - 1)).astype(int)
    near = [expected.copy(), expected.copy()]
    expected[bright] = logarithmic[place]
    near[0][bright] = logarithmic[np.maximum(place - 1, 0)]
    near[1][bright] = logarithmic[np.minimum(place + 1, L - 1)]
else:
    expected[bright] = linear[N - 1]
for rule, color in ((image >= cutoff, saturated), (mask & 1 != 0, 0xFF000000),
                    (mask & 30 != 0, defective)):
    for target in (expected, *near):
        target[rule] = color

wrong = (colors != expected) & (colors != near[0]) & (colors != near[1])
beside = (colors != expected).sum()
if len(colors) != len(image) or wrong.any() or beside > len(image) / 1000:
    sys.exit(f"{wrong.sum()} of {len(image)} pixels differ, {beside} by one entry")
