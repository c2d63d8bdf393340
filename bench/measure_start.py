#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Measures the start of the viewer: milliseconds from the start of the process to what a user sees.

    xvfb-run -a -s "-screen 0 1200x800x24" bench/measure_start.py [--runs N] PROGRAM FILE

Prints the least and the median of N runs for: a process that only prints its version (loading of the
libraries), an empty window on the screen, and, with the file, OpenGL, the end of reading and statistics,
the image handed to its view, and its upload in the first frame that shows it. Needs xdotool."""
import argparse
import statistics
import subprocess
import threading
import time

MARKS = [(b"OpenGL info", "OpenGL is ready"), (b"TIME OPENING SERIES", "file open"),
         (b"TIME FOR ADDITIONAL", "read, with statistics"), (b"TIME UPLOADING", "first frame"),
         (b"TOTAL TIME LOADING", "image handed to its view")]


def milliseconds(since):
    return 1000 * (time.perf_counter() - since)


def version(program):
    start = time.perf_counter()
    subprocess.run([program, "--version"], check=True, stdout=subprocess.DEVNULL)
    return {"process that prints its version": milliseconds(start)}


def end(process):
    process.kill()
    process.wait()


def empty_window(program):
    start = time.perf_counter()
    process = subprocess.Popen([program], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        while subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(process.pid)],
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode:
            if process.poll() is not None:
                raise SystemExit("The viewer ended by itself")
        return {"empty window": milliseconds(start)}
    finally:
        end(process)


def first_image(program, file):
    times = {}
    start = time.perf_counter()
    process = subprocess.Popen([program, file], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    guard = threading.Timer(60, process.kill)
    guard.start()
    try:
        for line in process.stdout:
            for mark, name in MARKS:
                if line.strip().startswith(mark):
                    times.setdefault(name, milliseconds(start))
            if len(times) == len(MARKS):
                return times
        raise SystemExit("The viewer ended before it showed the image")
    finally:
        guard.cancel()
        end(process)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--runs", type=int, default=15)
    parser.add_argument("program")
    parser.add_argument("file")
    options = parser.parse_args()
    first_image(options.program, options.file)  # warms the disk
    series = {}
    for _ in range(options.runs):
        for name, value in (version(options.program) | empty_window(options.program)
                            | first_image(options.program, options.file)).items():
            series.setdefault(name, []).append(value)
    for name, values in series.items():
        print(f"{name:34} least {min(values):5.0f} ms, median {statistics.median(values):5.0f} ms")


if __name__ == "__main__":
    main()
