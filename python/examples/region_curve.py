#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Waits for a region (its kind is chosen under Tools, a right drag draws it), and plots it: with
Matplotlib into a picture if it is installed, otherwise as text.

    region_curve.py [SECONDS] [PICTURE]
"""

import sys

import numpy

import tarvik


def as_text(curve: tarvik.Curve, width: int = 50) -> str:
    top = max(float(curve.y.max()), 1.0) if curve.y.size else 1.0
    step = max(1, curve.y.size // 40)
    lines = [f"{x:8.1f} {y:10.1f} " + "#" * max(0, round(width * y / top))
             for x, y in zip(curve.x[::step], curve.y[::step])]
    return "\n".join([f"{curve.x_label}, {curve.y_label}", *lines])


def main() -> None:
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 60.0
    y, x = numpy.mgrid[:400, :600]
    waves = 50 + 40 * numpy.sin(x / 15) * numpy.cos(y / 25)
    with tarvik.open_main_frame(900, 700) as window:
        view = window.open_sub_frame()
        view.load_image(numpy.random.default_rng(4).poisson(waves).astype(numpy.uint16))
        view.wait_for_image()
        view.set_title("Choose a region under Tools, draw it with the right button")
        try:
            region = view.wait_for_region(seconds)
        except TimeoutError:
            print("no region in time")
            return
    print(f"{region.kind}: mean {region.numbers.mean:.2f}, integral {region.numbers.integral:.0f}")
    try:
        from matplotlib.figure import Figure  # type: ignore[import]
    except ImportError:
        print(as_text(region.curve))
        return
    if len(sys.argv) < 3:
        print(as_text(region.curve))
        return
    axes = (figure := Figure()).add_subplot()
    axes.plot(region.curve.x, region.curve.y)
    axes.set(xlabel=region.curve.x_label, ylabel=region.curve.y_label)
    figure.savefig(sys.argv[2])
    print(f"written to {sys.argv[2]}")


if __name__ == "__main__":
    main()
