#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Shows arrays as they are computed, 30 a second.

    live.py [SECONDS]
"""

import sys
import time

import numpy

import tarvik

RATE = 30.0


def main() -> None:
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 10.0
    random = numpy.random.default_rng(0)
    noise = random.poisson(5, (1024, 1024)).astype(numpy.uint16)
    y, x = numpy.mgrid[-512:512, -512:512]
    start, shown = time.monotonic(), 0
    while (now := time.monotonic() - start) < seconds:
        ring = 60 * numpy.exp(-((numpy.hypot(x, y) - 100 - 50 * now % 300) / 9) ** 2)
        tarvik.show(noise + ring.astype(numpy.uint16), "live")
        shown += 1
        time.sleep(max(0.0, start + shown / RATE - time.monotonic()))
    print(f"{shown} arrays in {now:.1f} s")


if __name__ == "__main__":
    main()
