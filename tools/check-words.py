#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Fails on words of comments and documents that have to be read twice, and names better ones."""

import pathlib
import re
import subprocess
import sys

BETTER = {
    r"\b(?:the|its|at|a|each|from) begin\b": "start",
    r"\bof no (?:more )?use\b": "unusable",
    r"\bto be had\b": "available",
    r"\btold\b(?! apart)": "reported, stated",
    r"\bwhatever becomes of\b": "whatever happens to",
    r"(?<!left )(?<!leave )(?<!leaves )(?<!junk )(?<!waits )\bbehind\b(?! a (?:hidden|const)\b)": "after",
}
CODE = r"//.*"
TEXT = {".h": CODE, ".cpp": CODE, ".py": r'(?:# |""").*', ".sh": r"# .*", ".md": r".+"}

root = pathlib.Path(__file__).resolve().parent.parent
names = subprocess.run(["git", "ls-files"], cwd=root, capture_output=True, text=True, check=True)
found = []
for name in names.stdout.splitlines():
    path = root / name
    if path.suffix not in TEXT or not path.is_file() or name in ("CHANGELOG.md", "tools/check-words.py"):
        continue
    block = False  # of a document: quoted output or code
    for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
        block ^= path.suffix == ".md" and line.startswith("```")
        text = "" if block else " ".join(re.findall(TEXT[path.suffix], line))
        found += [f"{name}:{number}: better \"{better}\": {text}" for word, better in BETTER.items()
                  if re.search(word, text, re.IGNORECASE)]
print("\n".join(found), end="\n" if found else "")
sys.exit(1 if found else 0)
