#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Compares the options in the user guide with those of the programs.

    check-guide.py DOCS PROGRAM...

Fails when --help of a PROGRAM prints an option or a command that its page in DOCS/user lacks, or when the page has one
that the program doesn't print. tests/gui/window/tst_guide.cpp does the same for the window."""
import pathlib
import re
import subprocess
import sys

# Options that the guide has and --help leaves out, and the other way round.
UNPRINTED = {
    "tarvik": {"--version", "-version"},  # accepted, but in no line of the usage
}
UNDESCRIBED = {
    "tarvik": {"-h"},  # printed, but taken for the name of a file
}
OPTION = re.compile(r"(?<![\w-])--?[a-z][a-z-]*(?:[A-Z]+)?\b")


def section(docs, name):
    """The part of a page that is about a program."""
    if name == "tarvik-image":
        return (docs / "user/tarvik-image.md").read_text(encoding="utf-8")
    text = (docs / "user/programs.md").read_text(encoding="utf-8")
    found = re.search(rf"^## {re.escape(name)}$(.*?)(?=^## |\Z)", text, re.MULTILINE | re.DOTALL)
    return found.group(1) if found else ""


def options_of_help(text):
    """Those that begin a line or follow a comma there, a bracket or a bar of the usage."""
    return {match.group() for match in OPTION.finditer(text)
            if re.search(r"(^\s*|, |\[|\| |\(|  )$", text[text.rfind("\n", 0, match.start()) + 1:match.start()])}


def wrong(docs, program):
    name = program.name
    usage = subprocess.run([program, "--help"], capture_output=True, text=True, check=True).stdout
    page = section(docs, name)
    if not page:
        return [f"{name}: has no part in docs/user/programs.md"]
    found = []
    if name == "tarvik-image":
        if usage.strip() not in page:
            found.append(f"{name}: the page's usage differs from --help")
        headings = re.findall(r"^##+ (.+)$", page, re.MULTILINE)
        commands = {command for heading in headings for command in re.split(r", | ", heading)}
        found += [f"{name}: no heading for {command}"
                  for command in sorted(set(re.findall(rf"{name} ([a-z]+)", usage)) - commands)]
        return found
    printed = options_of_help(usage) - UNDESCRIBED.get(name, set())
    described = {option for code in re.findall(r"^\| (`.*?) \|", page, re.MULTILINE) for option in OPTION.findall(code)}
    found += [f"{name}: the guide lacks {option}" for option in sorted(printed - described)]
    found += [f"{name}: there is no {option}" for option in sorted(described - printed - UNPRINTED.get(name, set()))]
    return found


def main(docs, programs):
    found = [line for program in programs for line in wrong(docs, program)]
    if found:
        sys.exit("\n".join(found))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(pathlib.Path(sys.argv[1]), [pathlib.Path(each).resolve() for each in sys.argv[2:]])
