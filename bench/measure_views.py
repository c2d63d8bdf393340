#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Measures a viewer with hundreds of views: opening, memory, and the end through the window.

    xvfb-run -a -s "-screen 0 1200x800x24" sh -c \
        'openbox & exec bench/measure_views.py [--early N] PROGRAM FILE...'

Prints the seconds until all files are on show, the most and the last memory of the viewer, the number
of its threads and children, and the seconds from closing the window to the end of the process.
--early closes it as soon as N files are on show. The exit code is 1 where a process is left over.
Needs xdotool, and a window manager for Alt+F4."""
import argparse
import os
import subprocess
import sys
import time

DONE = b"TOTAL TIME LOADING IMAGE"


def status(pid, field):
    with open(f"/proc/{pid}/status", encoding="ascii", errors="replace") as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith(field + ":"))


def companions(pid):
    """The processes that serve a viewer: its children, and those given its number."""
    found = []
    for entry in os.listdir("/proc"):
        try:
            with open(f"/proc/{entry}/stat", encoding="ascii", errors="replace") as stat:
                parent = int(stat.read().rpartition(")")[2].split()[1])
            with open(f"/proc/{entry}/cmdline", "rb") as line:
                words = line.read().split(b"\0")
        except (OSError, IndexError):
            continue
        if parent == pid or (b"--parent-pid" in words and str(pid).encode() in words):
            found.append(int(entry))
    return found


def wait_for(condition, seconds, pause=0.01):
    end = time.monotonic() + seconds
    while not condition() and time.monotonic() < end:
        time.sleep(pause)
    return condition()


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--early", type=int)
    arguments.add_argument("program")
    arguments.add_argument("files", nargs="+")
    options = arguments.parse_args()
    wanted = options.early or len(options.files)
    output = "/tmp/measure_views.%d" % os.getpid()
    with open(output, "wb") as out:
        begin = time.monotonic()
        viewer = subprocess.Popen([options.program, *options.files], stdout=out,
                                  stderr=subprocess.DEVNULL)
    most = 0

    def shown():
        nonlocal most
        most = max(most, status(viewer.pid, "VmRSS"))
        with open(output, "rb") as lines:
            return lines.read().count(DONE)

    wait_for(lambda: shown() >= wanted or viewer.poll() is not None, 600, 0.05)
    print(f"on show: {shown()} of {len(options.files)} after {time.monotonic() - begin:.1f} s")
    if not options.early:
        time.sleep(3)
    children = companions(viewer.pid)
    print(f"memory: {max(most, status(viewer.pid, 'VmHWM')) / 1024:.0f} MiB at the most, "
          f"{status(viewer.pid, 'VmRSS') / 1024:.0f} MiB now; {status(viewer.pid, 'Threads')} threads, "
          f"{len(children)} processes besides")
    find = ["xdotool", "search", "--onlyvisible", "--name", "^TARVIK$"]
    window = subprocess.run(find, capture_output=True, check=True).stdout.split()[-1]
    begin = time.monotonic()
    subprocess.run(["xdotool", "windowactivate", "--sync", window, "key", "alt+F4"], check=True)
    viewer.wait(60)
    print(f"gone: {time.monotonic() - begin:.2f} s after the window was closed")
    left = lambda: [pid for pid in children if os.path.exists(f"/proc/{pid}/exe")]
    wait_for(lambda: not left(), 5)
    os.remove(output)
    if left():
        print("left over:", *left())
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
