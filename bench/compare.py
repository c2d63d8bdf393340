#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Prints the results of benchmark runs as one Markdown table: median time, spread, counters.

    bench/compare.py RESULT.json ...
"""

import json
import pathlib
import sys

KNOWN = {"name", "run_name", "run_type", "repetitions", "repetition_index", "threads", "iterations",
         "real_time", "cpu_time", "time_unit", "aggregate_name", "aggregate_unit", "family_index",
         "per_family_instance_index", "label"}


def rows(path):
    runs = {}
    for run in json.loads(path.read_text())["benchmarks"]:
        kind = run.get("aggregate_name", "median")
        runs.setdefault(run["run_name"], {})[kind] = run
    for name, kinds in runs.items():
        median = kinds["median"]
        spread = f"{100 * kinds['cv']['real_time']:.0f} %" if "cv" in kinds else ""
        counters = ", ".join(f"{key} {value:.3g}" for key, value in median.items()
                             if key not in KNOWN and isinstance(value, (int, float)))
        time = f"{median['real_time']:.4g} {median['time_unit']}"
        yield f"| {path.stem} | {name} | {time} | {spread} | {counters} |"


print("| program | case | median | spread | counters |")
print("|---|---|---|---|---|")
for argument in sys.argv[1:]:
    for row in rows(pathlib.Path(argument)):
        print(row)
