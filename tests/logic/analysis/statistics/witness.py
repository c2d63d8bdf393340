# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Statistics of images by NumPy: witness.py FOLDER. Each line of FOLDER/list has the types of pixels
and mask, the number of pixels, and values; FOLDER/data has the pixels and marks of all lines. For
each line prints minimum, maximum, mean, sigma, sum, numbers of zeros, saturated and defective pixels,
and how many good pixels are at or below each of the values."""
import pathlib
import sys

import numpy

SATURATION = 200
folder = pathlib.Path(sys.argv[1])


def extremes(image, good):
    """The first pixel counts whatever its mask. A NaN becomes the minimum until the next value."""
    low = high = image[0]
    if image.dtype != "f4" or not numpy.isnan(image).any():
        return min(low, good.min(initial=low)), max(high, good.max(initial=high))
    for value in good:
        if value > high:
            high = value
        elif not value >= low:
            low = value
    return low, high


with open(folder / "data", "rb") as data:
    for line in open(folder / "list"):
        kind, mask_kind, count, *values = line.split()
        image = numpy.fromfile(data, kind, int(count))
        mask = numpy.fromfile(data, mask_kind, int(count))
        bits = mask.astype("i8") if mask.dtype.kind in "iu" else (mask != 0).astype("i8")
        good = image[bits & 31 == 0]
        wide = good.astype("longdouble")
        mean = wide.mean() if good.size else numpy.nan
        counted = kind[0] in "iu"
        numbers = [*extremes(image, good), mean,
                   abs((wide * wide).mean() - mean * mean) ** 0.5 if good.size else numpy.nan,
                   wide.sum(), (~(good > 0) & ~(good < 0)).sum(),
                   (good >= SATURATION).sum() if counted else 0, (bits & 30 != 0).sum()]
        numbers += [(good <= image.dtype.type(float(value))).sum() for value in values]
        print(*[repr(float(number)) for number in numbers])
