#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Measures how fast a script shows arrays of 16 megapixels.

    TARVIK=build/ci/bin/tarvik xvfb-run -a -s "-screen 0 1600x1200x24" bench/measure_scripting.py [ROUNDS]

Each round shows an array, from load_image() until the viewer reports the image as shown,
and copies the same pixels between two arrays that are in memory already. Prints the medians, images a
second, the part that load_image() takes and the ratio of an image to a copy."""
import pathlib
import statistics
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "python" / "src"))

import numpy  # noqa: E402

import tarvik  # noqa: E402

SIDE = 4096
TYPES = ("u2", "i4", "f8")


def seconds(call):
    begin = time.perf_counter()
    call()
    return time.perf_counter() - begin


def measure(viewer, array, rounds):
    copy, load, shown = [], [], []
    other = numpy.zeros_like(array)
    with tarvik.open_main_frame(1200, 900, daemon=viewer) as window:
        view = window.open_sub_frame()
        for number in range(rounds + 3):
            array[0, 0] = number
            row = (seconds(lambda: numpy.copyto(other, array)),
                   seconds(lambda: view.load_image(array)), seconds(view.wait_for_image))
            if number >= 3:  # the first fill the memory that is used again
                for column, value in zip((copy, load, shown), row):
                    column.append(value)
    whole = statistics.median(map(sum, zip(load, shown)))
    print(f"{array.dtype}: copy {1e3 * statistics.median(copy):.1f} ms, "
          f"load_image {1e3 * statistics.median(load):.1f} ms, "
          f"shown after {1e3 * whole:.1f} ms = {1 / whole:.1f} a second, "
          f"{whole / statistics.median(copy):.1f} copies")


def main():
    rounds = int(sys.argv[1]) if len(sys.argv) > 1 else 30
    counts = numpy.random.default_rng(1).poisson(3, (SIDE, SIDE))
    with tarvik.Daemon() as viewer:
        for each in TYPES:
            measure(viewer, counts.astype(each), rounds)


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as settings:
        import os

        os.environ["XDG_CONFIG_HOME"] = settings
        main()
