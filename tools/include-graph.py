#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Prints the circles of the include graph between units, longest first.

A unit is X.h with X.cpp. With --most N, prints only circles of more than N units, and fails when
there are any.
"""

import argparse
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
root = pathlib.Path(__file__).resolve().parent.parent


def unit_of(path):
    return str(path.relative_to(root).with_suffix(""))


def graph(folders):
    arrows = {}
    for path in (path for folder in folders for path in (root / folder).rglob("*")):
        if path.suffix not in {".h", ".cpp"}:
            continue
        below = arrows.setdefault(unit_of(path), set())
        for target in INCLUDE.findall(path.read_text(errors="replace")):
            for candidate in (root / target, root / "src" / target, path.parent / target):
                if candidate.is_file():
                    below.add(unit_of(candidate.resolve()))
                    break
        below.discard(unit_of(path))
    return arrows


def reachable(arrows, unit):
    found, waiting = set(), [unit]
    while waiting:
        for below in arrows.get(waiting.pop(), ()):
            if below not in found:
                found.add(below)
                waiting.append(below)
    return found


def circles(arrows):
    reach = {unit: reachable(arrows, unit) for unit in arrows}
    # Units that reach each other are in one circle.
    groups = {frozenset(other for other in reach[unit] if unit in reach.get(other, ()))
              for unit in arrows if unit in reach[unit]}
    return sorted((sorted(group) for group in groups), key=lambda group: (-len(group), group))


arguments = argparse.ArgumentParser(description=__doc__)
arguments.add_argument("folders", nargs="*", default=["imagelib", "src", "demo", "simulator"], metavar="FOLDER")
arguments.add_argument("--most", type=int, help="units that a circle may have")
given = arguments.parse_args()
found = [circle for circle in circles(graph(given.folders)) if len(circle) > (given.most or 0)]
for circle in found:
    print(len(circle), ", ".join(circle))
sys.exit(given.most is not None and bool(found))
