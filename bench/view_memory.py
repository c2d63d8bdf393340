#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Memory of the viewer after views have come and gone: after 20 of them and after 200.

Runs the test program that opens and closes views, under whatever display there is:
    xvfb-run -a bench/view_memory.py build/ci/bin/tst_window
"""

import os
import re
import subprocess
import sys

output = subprocess.run(
    [sys.argv[1], "--gtest_filter=*ViewsThatComeAndGo*"],
    env={**os.environ, "TARVIK_VIEWS": "200"}, capture_output=True, text=True, check=True).stdout
sizes = [int(kilobytes) for kilobytes in re.findall(r"VIEWS \d+: (\d+) kB", output)]
if len(sizes) != 2:
    sys.exit("no figures in the output of the test")
print(f"after 20 views {sizes[0]} kB, after 200 views {sizes[1]} kB: ratio {sizes[1] / sizes[0]:.3f}")
