#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Measures how fast a script shows arrays of 16 megapixels.

    TARVIK=build/ci/bin/tarvik xvfb-run -a -s "-screen 0 1600x1200x24" bench/measure_scripting.py \
        [ROUNDS [WIDTH HEIGHT]]

Each round shows an array, from load_image() until the viewer reports the image as shown,
and copies the same pixels between two arrays that are in memory already. Prints the medians of both and of
load_image() alone, and the ratio. Then as many arrays follow each other without that report; the
processor time says what bounds them on a busy machine."""
import os
import pathlib
import statistics
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "python" / "src"))

import numpy  # noqa: E402

import tarvik  # noqa: E402

SIDE = 4096
WARM = 30  # a view keeps 25 images: from then on their memory is used again
TYPES = ("u2", "i4", "f8")


def seconds(call):
    begin = time.perf_counter()
    call()
    return time.perf_counter() - begin


def processor_time(pid):
    with open(f"/proc/{pid}/stat", encoding="ascii", errors="replace") as stat:
        user, system = stat.read().rpartition(")")[2].split()[11:13]
    return (int(user) + int(system)) / os.sysconf("SC_CLK_TCK")


def measure(viewer, array, rounds, size):
    copy, load, shown = [], [], []
    other = numpy.zeros_like(array)
    with tarvik.open_main_frame(*size, daemon=viewer) as window:
        view = window.open_sub_frame()
        for number in range(rounds + WARM):
            array[0, 0] = number
            row = (seconds(lambda: numpy.copyto(other, array)),
                   seconds(lambda: view.load_image(array)), seconds(view.wait_for_image))
            if number >= WARM:
                for column, value in zip((copy, load, shown), row):
                    column.append(value)

        def stream():
            for _ in range(rounds):
                view.load_image(array)
            view.wait_for_image()

        begin = processor_time(viewer.pid)
        row = seconds(stream) / rounds
        work = (processor_time(viewer.pid) - begin) / rounds
    whole = statistics.median(map(sum, zip(load, shown)))
    print(f"{array.dtype}: copy {1e3 * statistics.median(copy):.1f} ms, "
          f"load_image {1e3 * statistics.median(load):.1f} ms, "
          f"shown after {1e3 * whole:.1f} ms = {1 / whole:.1f} a second, "
          f"{whole / statistics.median(copy):.1f} copies; "
          f"in a row {1e3 * row:.1f} ms = {1 / row:.1f} a second, "
          f"{1e3 * work:.0f} ms of the viewer's processor time")


def main():
    rounds = int(sys.argv[1]) if len(sys.argv) > 1 else 30
    size = [int(each) for each in sys.argv[2:4]] or [1200, 900]
    counts = numpy.random.default_rng(1).poisson(3, (SIDE, SIDE))
    with tarvik.Daemon() as viewer:
        for each in TYPES:
            measure(viewer, counts.astype(each), rounds, size)


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as settings:
        os.environ["XDG_CONFIG_HOME"] = settings
        main()
