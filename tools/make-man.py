#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Makes a manual page from what a program says for --help, so that the two can't differ.

    make-man.py PROGRAM PURPOSE VERSION PAGE.1.gz

PROGRAM is run. The lines after "Usage:" become the synopsis, all others stay as they are laid out. Exits with 1 when the
text has no usage."""
import gzip
import pathlib
import re
import subprocess
import sys

USAGE = re.compile(r"^usage: *", re.IGNORECASE)


def split(text, name):
    """@returns the lines of the synopsis and those of the rest"""
    lines = text.expandtabs().rstrip().splitlines()
    start = next((number for number, line in enumerate(lines) if USAGE.match(line)), None)
    if start is None:
        sys.exit(f"make-man.py: the help of {name} has no line \"Usage:\"")
    end = next((number for number in range(start + 1, len(lines)) if not lines[number].startswith("  ")), len(lines))
    usage = [USAGE.sub("", line).strip() for line in lines[start:end]]
    # A program that names itself by its path would put the folder of the build into the page.
    usage = [re.sub(r"^\S*/(?=" + re.escape(name) + r"\b)", "", line) for line in usage]
    return usage, lines[:start] + lines[end:]


def escaped(line):
    line = line.replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + line if line.startswith((".", "'")) else line


def page(name, purpose, version, usage, rest):
    def block(lines):
        return [".nf", *map(escaped, lines), ".fi"]

    while rest and not rest[0].strip():
        rest = rest[1:]
    return "\n".join([f'.TH {name.upper()} 1 "" "TARVIK {version}" "User Commands"', ".SH NAME", f"{escaped(name)} \\- {purpose}", ".SH SYNOPSIS",
                      *block(usage), ".SH DESCRIPTION", *block(rest), ".SH SEE ALSO", "/usr/share/doc/tarvik/html/index.html", ""])


def main():
    program, purpose, version, target = sys.argv[1:]
    name = pathlib.Path(program).name
    done = subprocess.run([program, "--help"], capture_output=True, text=True, timeout=60)
    if done.returncode != 0:
        sys.exit(f"make-man.py: {name} --help failed: {done.stderr}")
    text = page(name, purpose, version, *split(done.stdout or done.stderr, name))
    # Without a time stamp the same sources make the same file.
    pathlib.Path(target).write_bytes(gzip.compress(text.encode(), mtime=0))


main()
