#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Lets the user choose spots by clicks, and prints and marks them.

    wait_for_click.py [SECONDS] [CLICKS]    for each click at most; how many
"""

import sys

import numpy

import tarvik


def main() -> None:
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 60.0
    clicks = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    image = numpy.random.default_rng(3).poisson(10, (400, 600)).astype(numpy.int32)
    with tarvik.open_main_frame(900, 700) as window:
        view = window.open_sub_frame()
        view.load_image(image)
        view.wait_for_image()
        for number in range(clicks):
            view.set_title(f"Click on a spot ({number + 1} of {clicks})")
            try:
                click = view.wait_for_click(seconds)
            except TimeoutError:
                print("no click in time")
                return
            except tarvik.NoObject:
                print("the window was closed")
                return
            inside = 0 <= click.y < image.shape[0] and 0 <= click.x < image.shape[1]
            print(f"({click.x}, {click.y}):", image[click.y, click.x] if inside else "outside")
            view.add_to_paint_list([tarvik.Ellipse(click.x + 0.5, click.y + 0.5, 6, 6, 0)])


if __name__ == "__main__":
    main()
