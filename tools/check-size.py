#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Fails when a source file has grown beyond what one thing needs."""

import pathlib
import sys

MOST_LINES = 600
FOLDERS = ("imagelib", "src", "demo", "tests", "bench", "tools", "python", "simulator")
ENDINGS = {".cpp", ".h", ".py", ".glsl", ".sh"}

root = pathlib.Path(__file__).resolve().parent.parent
too_long = []
for folder in FOLDERS:
    for path in (root / folder).rglob("*"):
        if path.suffix in ENDINGS and path.is_file():
            lines = len(path.read_text(errors="replace").splitlines())
            if lines > MOST_LINES:
                too_long.append(f"{path.relative_to(root)}: {lines} lines, at most {MOST_LINES}")
print("\n".join(too_long), end="\n" if too_long else "")
sys.exit(1 if too_long else 0)
