# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The peer of bench_bitshuffle: reads the frames of a data set with h5py and its filter plug-ins
into an array that is reused, and prints the median of the seconds for one frame.

    peer_h5py.py FILE DATASET ROUNDS
"""

import statistics
import sys
import time

import h5py
import numpy as np

path, name, rounds = sys.argv[1], sys.argv[2], int(sys.argv[3])
with h5py.File(path, "r") as file:
    data = file[name]
    target = np.empty(data.shape[1:], data.dtype)
    target[...] = 1  # touch the memory before the clock runs
    seconds = []
    for turn in range(rounds + 1):
        for frame in range(data.shape[0]):
            begin = time.perf_counter()
            data.read_direct(target, np.s_[frame])
            seconds.append(time.perf_counter() - begin)
    print(statistics.median(seconds[data.shape[0]:]))
