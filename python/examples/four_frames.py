#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Four images side by side, which zoom, pan and change their contrast together.

    four_frames.py [SECONDS]    how long the window stays at most
"""

import contextlib
import sys

import numpy

import tarvik


def main() -> None:
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 3600.0
    random = numpy.random.default_rng(2)
    y, x = numpy.mgrid[:512, :512]
    with tarvik.open_main_frame() as window:
        window.synchronize_viewport()
        window.synchronize_contrast()
        views = [window.open_sub_frame() for _ in range(4)]
        for step, view in enumerate(views):
            spot = 200 * numpy.exp(-((x - 200 - 30 * step) ** 2 + (y - 256) ** 2) / 800)
            view.load_image(random.poisson(spot + 2).astype(numpy.uint16))
            view.set_title(f"step {step}")
        for view in views:
            view.wait_for_image()
        views[0].set_color_mode("V")
        views[0].set_contrast(150, 0)
        views[0].set_zoom_power(1)
        print("zoom of each view:", [view.viewport().zoom_power for view in views])
        with contextlib.suppress(TimeoutError):
            window.wait_for_close(seconds)


if __name__ == "__main__":
    main()
