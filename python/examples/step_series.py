#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Steps through a series of images and prints the strongest pixel of each.

    step_series.py FILE [IMAGES]    any file of the series; how many images at most
"""

import sys

import numpy

import tarvik


def main() -> None:
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    most = int(sys.argv[2]) if len(sys.argv) > 2 else 100
    with tarvik.open_main_frame() as window:
        view = window.open_sub_frame()
        view.load_file(sys.argv[1])
        series = view.wait_for_image()
        for number in range(series.first, min(series.last + 1, series.first + most)):
            view.go_to(number)
            info = view.wait_for_image()
            image = numpy.where(view.mask() == 0, view.image(), 0)
            y, x = numpy.unravel_index(image.argmax(), image.shape)
            print(f"{info.index}: {image.max()} counts at ({x}, {y})")


if __name__ == "__main__":
    main()
