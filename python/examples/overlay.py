#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Draws predicted spots over an image, and marks those that are there.

    overlay.py [SECONDS]    how long the window stays at most
"""

import contextlib
import sys

import numpy

import tarvik


def main() -> None:
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 3600.0
    random = numpy.random.default_rng(1)
    image = random.poisson(3, (600, 800)).astype(numpy.uint32)
    predicted = [(float(x), float(y)) for x in range(50, 800, 100) for y in range(50, 600, 100)]
    for x, y in predicted[::3]:
        image[int(y) - 2:int(y) + 3, int(x) - 2:int(x) + 3] += 500

    with tarvik.open_main_frame(1000, 800) as window:
        view = window.open_sub_frame()
        view.load_image(image)
        view.wait_for_image()
        view.set_contrast(100, 0)
        items: list[tarvik.Pixel | tarvik.Line | tarvik.Text | tarvik.Ellipse] = []
        for number, (x, y) in enumerate(predicted):
            found = image[int(y), int(x)] > 100
            colour = (0, 220, 0, 255) if found else (255, 60, 60, 255)
            items.append(tarvik.Ellipse(x + 0.5, y + 0.5, 8, 8, 0, colour))
            if found:
                items.append(tarvik.Text(x + 10, y, str(number), colour))
        view.set_paint_list(items)
        print(f"{len(predicted)} spots predicted, {len(predicted[::3])} found")
        with contextlib.suppress(TimeoutError):
            window.wait_for_close(seconds)


if __name__ == "__main__":
    main()
