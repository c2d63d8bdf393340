# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The NumPy peers of the benchmarks: each runs a task on raw arrays in a folder and prints the median
of its seconds.

    peer_numpy.py colormap FOLDER TYPE ROUNDS FOREGROUND BACKGROUND CUTOFF
    peer_numpy.py statistics|read|bincount|sort FOLDER TYPE ROUNDS
    peer_numpy.py thumbnail FOLDER TYPE ROUNDS WIDTH HEIGHT
"""

import pathlib
import statistics
import sys
import time

import numpy as np


def colormap(folder, kind, foreground, background, cutoff):
    """The transfer function with all special colours, written as one would with NumPy: whole-array
    steps in 32-bit floats, the logarithm for the few pixels that need it only."""
    image = np.fromfile(folder / "image", kind)
    mask = np.fromfile(folder / "mask", np.uint32)
    linear = np.fromfile(folder / "linear", np.uint32)
    logarithmic = np.fromfile(folder / "logarithmic", np.uint32)
    f, b = image.dtype.type(foreground), image.dtype.type(background)
    N, L = len(linear), len(logarithmic)

    def run():
        above = image.astype(np.float32)
        above -= np.float32(b)
        place = above * np.float32(N / (foreground - background))
        np.clip(place, 0, N - 1, out=place)
        colors = linear[place.astype(np.int32)]
        bright = np.flatnonzero(image >= f)
        if L:
            slope = (L - 1) / np.log((foreground * 1e4 - background) / (foreground - background))
            entry = slope * (np.log(above[bright]) - np.log(foreground - background))
            colors[bright] = logarithmic[np.clip(entry, 0, L - 1).astype(np.int32)]
        else:
            colors[bright] = linear[N - 1]
        colors[image >= cutoff] = 0xFF00FF00
        colors[(mask & 1) != 0] = 0xFF000000
        colors[(mask & 30) != 0] = 0xFF0000FF
        return colors

    return run


def image_and_mask(folder, kind):
    return np.fromfile(folder / "image", kind), np.fromfile(folder / "mask", np.uint32)


def masked_statistics(image, mask):
    good = image[(mask & 31) == 0]
    numbers = [good.min(), good.max(), good.mean(), good.std(), good.sum(), (good == 0).sum(),
               ((mask & 30) != 0).sum()]
    return good, numbers


def whole_statistics(folder, kind):
    image, mask = image_and_mask(folder, kind)
    return lambda: masked_statistics(image, mask)


def read(folder, kind):
    """One read of image and mask."""
    image, mask = image_and_mask(folder, kind)
    return lambda: (image.sum(), mask.sum())


def bincount(folder, kind):
    """Statistics and counts of 4000 values around the mean."""
    image, mask = image_and_mask(folder, kind)

    def run():
        good, numbers = masked_statistics(image, mask)
        low = max(int(numbers[2]) - 2000, 0)
        near = good[(good >= low) & (good < low + 4000)]
        return np.cumsum(np.bincount(near - low, minlength=4000))

    return run


def sort(folder, kind):
    image, mask = image_and_mask(folder, kind)
    return lambda: np.sort(image[(mask & 31) == 0])


def thumbnail(folder, kind, width, height):
    """Means of square cells, 200 of them along the longer side."""
    width, height = int(width), int(height)
    image = np.fromfile(folder / "image", kind).reshape(height, width)
    scale = max(width, height) / 200
    columns, rows = ((np.arange(int(side / scale)) * scale + 0.5).astype(int)
                     for side in (width, height))

    def run():
        sums = np.add.reduceat(image, rows, axis=0, dtype=np.float64)
        sums = np.add.reduceat(sums, columns, axis=1)
        pixels = np.outer(np.diff(rows, append=height), np.diff(columns, append=width))
        return (sums / pixels).astype(image.dtype)

    return run


TASKS = {"thumbnail": thumbnail, "colormap": colormap, "statistics": whole_statistics, "read": read, "bincount": bincount,
         "sort": sort}


def main():
    task, folder, kind, rounds = sys.argv[1:5]
    run = TASKS[task](pathlib.Path(folder), kind,
                      *(float(text) for text in sys.argv[5:]))
    seconds = []
    for _ in range(int(rounds) + 1):
        begin = time.perf_counter()
        run()
        seconds.append(time.perf_counter() - begin)
    print(statistics.median(seconds[1:]))


main()
