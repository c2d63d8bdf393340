#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Times fabio at what a benchmark does, and prints the least seconds of several runs.

peer_fabio.py unpack PACKED PIXELS   its compiled byte-offset decoder on a stream in memory
peer_fabio.py open FILE              its way from a file to an array
"""

import sys
import time


def least(work, seconds=1.5, most=40):
    """The shortest of several runs of `work`, after one that warms up."""
    work()
    best = float("inf")
    end = time.perf_counter() + seconds
    for _ in range(most):
        start = time.perf_counter()
        work()
        now = time.perf_counter()
        best = min(best, now - start)
        if now > end:
            break
    return best


def main(task, path, *rest):
    if task == "unpack":
        from fabio.ext import byte_offset
        with open(path, "rb") as file:
            packed = file.read()
        print(least(lambda: byte_offset.dec_cbf32(packed, int(rest[0]))))
    else:
        import fabio
        print(least(lambda: fabio.open(path).data))


if __name__ == "__main__":
    main(*sys.argv[1:])
