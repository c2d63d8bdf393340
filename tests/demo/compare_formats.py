# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Compares the frames of one demo series in all formats as fabio and h5py read them."""

import glob
import os
import sys

import fabio
import h5py
import numpy as np

folder = sys.argv[1]
with h5py.File(os.path.join(folder, "hdf5", "demo_master.h5"), "r") as master:
    data = master["/entry/data"]
    stack = np.concatenate([data[name][()] for name in sorted(data)])
    detector = master["/entry/instrument/detector"]
    mask = detector["pixel_mask"][()]
    omega = master["/entry/sample/goniometer/omega"][()]
    centre = [detector[name][()] for name in ("beam_center_x", "beam_center_y")]
    distance = detector["detector_distance"][()]
    wavelength = master["/entry/instrument/beam/wavelength"][()]
    cutoff = detector["saturation_value"][()]
expected = stack.astype(np.int64)
expected[:, mask == 1] = -1
expected[:, (mask & 30) != 0] = -2
assert len(stack) == 12 and np.allclose(np.diff(omega), 0.5) and omega[0] == 30
for kind, extension in (("cbf", "cbf"), ("tiff", "tif"), ("edf", "edf")):
    names = sorted(glob.glob(os.path.join(folder, kind, "demo_?????." + extension)))
    assert len(names) == len(stack), kind
    for name, frame in zip(names, expected):
        assert np.array_equal(fabio.open(name).data.astype(np.int32), frame), name
edf = fabio.open(names[0]).header
assert [float(edf["Center_1"]), float(edf["Center_2"])] == centre
assert float(edf["SampleDistance"]) == distance
assert np.isclose(float(edf["WaveLength"]) * 1e10, wavelength)
text = fabio.open(os.path.join(folder, "cbf", "demo_00003.cbf")).header["_array_data.header_contents"]
lines = {line.split()[1]: line.split()[2:] for line in text.splitlines() if line.startswith("# ")}
assert float(lines["Start_angle"][0]) == omega[2], lines
assert float(lines["Detector_distance"][0]) == distance, lines
assert int(lines["Count_cutoff"][0]) == cutoff, lines
