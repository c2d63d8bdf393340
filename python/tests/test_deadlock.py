# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Random calls while the user closes the views that they go to. The variable CALLS says how many,
SEED which:

    CALLS=10000 TARVIK=build/ci/bin/tarvik xvfb-run -a python3 -m pytest python/tests/test_deadlock.py
"""

import collections
import contextlib
import faulthandler
import os
import random
import signal
import subprocess
import sys
import threading

import numpy
from conftest import GUARD, stacks

import tarvik

CALLS = int(os.environ.get("CALLS", "300"))
WIDTH, HEIGHT = 800, 600


class Watchdog:
    """Prints where all threads of the viewer are, and ends it, when no call has ended for a long
    time."""

    def __init__(self, viewer):
        self.viewer = viewer
        self.calls = 0
        self._over = threading.Event()
        self._thread = threading.Thread(target=self._watch)

    def _watch(self):
        seen = -1
        while not self._over.wait(GUARD / 2):
            if seen == self.calls:
                faulthandler.dump_traceback()
                print(stacks(self.viewer.pid), file=sys.stderr)
                os.kill(self.viewer.pid, signal.SIGKILL)
                return
            seen = self.calls
            faulthandler.dump_traceback_later(GUARD * 2, exit=True)  # begins anew

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._over.set()
        self._thread.join()


class User:
    """Clicks on the places where a view has its button to close, one view or several beside each
    other, and into the view, and closes dialogs."""

    def __init__(self, seed):
        self._over = threading.Event()
        self._random = random.Random(seed)
        self._thread = threading.Thread(target=self._act)

    def _act(self):
        places = [(WIDTH - 13, 72), (WIDTH // 2 - 13, 72), (WIDTH - 13, HEIGHT // 2 + 42), (200, 300)]
        while not self._over.wait(self._random.uniform(0, 0.05)):
            x, y = self._random.choice(places)
            deed = ["key", "Escape"] if self._random.random() < 0.2 else ["mousemove", x, y, "click", 1]
            subprocess.run(["xdotool", *map(str, deed)], check=False)

    def __enter__(self):
        self._thread.start()

    def __exit__(self, *_):
        self._over.set()
        self._thread.join()


class Script:
    """Makes random calls, and counts how they end."""

    def __init__(self, viewer, seed, path):
        self.random = random.Random(seed)
        self.viewer = viewer
        self.path = path
        self.windows, self.views = [], []
        self.ends = collections.Counter()
        self.images = [numpy.arange(size * size, dtype="i4").reshape(size, size)
                       for size in (3, 64, 700)]

    def step(self):
        """One call."""
        call = self.random.choice(self._calls())
        try:
            call()
            self.ends["done"] += 1
        except (tarvik.NoObject, tarvik.NoImage, TimeoutError, tarvik.CallFailed) as end:
            self.ends[type(end).__name__] += 1
            if isinstance(end, tarvik.NoObject):  # the user was faster
                self._forget_closed()

    def _forget_closed(self):
        self.windows = [each for each in self.windows if not each.closed]
        self.views = [each for each in self.views if not each.closed]

    def _close(self, frame):
        frame.close()
        self._forget_closed()

    def _calls(self):
        if not self.windows:
            return [self._open_window]
        window = self.random.choice(self.windows)
        if not self.views:
            return [self._open_view]
        return [lambda: self._common(window)] + [self._of_view] * 9

    def _open_window(self):
        self.windows.append(tarvik.open_main_frame(WIDTH, HEIGHT, daemon=self.viewer))

    def _open_view(self):
        """In the window that lies above the others, where the user can reach it."""
        self.views.append(self.windows[-1].open_sub_frame())

    def _common(self, window):
        """Calls of a window, and those that open and close."""
        view = self.random.choice(self.views)
        self.random.choice([
            window.sub_frames, window.hide_tool_bar, *[window.show_tool_bar] * 4,
            window.synchronize_viewport, window.synchronize_statistics,
            lambda: self._close(view), lambda: self.random.random() < 0.2 and self._close(window),
            *([self._open_window] * (len(self.windows) < 3)),
            *([self._open_view] * 5 * (len(self.views) < 4))])()

    def _of_view(self):
        view, number = self.random.choice(self.views), self.random.random()
        self.random.choice([
            *[lambda: view.load_image(self.random.choice(self.images))] * 5,
            lambda: view.load_file(self.path), lambda: view.go_to(int(number * 5)),
            lambda: view.wait_for_image(1), lambda: view.wait_for_close(number / 50),
            lambda: view.wait_for_click(number / 50), lambda: view.wait_for_region(number / 50),
            lambda: view.set_contrast(number * 1000, 0), lambda: view.set_zoom_power(int(number * 4)),
            lambda: view.set_paint_list([tarvik.Ellipse(5, 5, 3, 4, number)]),
            lambda: view.set_title(str(number)), view.show_resolution_rings, view.hide_tool_buttons,
            *[view.show_tool_buttons] * 4, view.picture, view.viewport, view.image, view.mask, view.region,
            view.peaks, view.info, view.cursor, lambda: view.closed])()


def test_calls_and_closing_windows_never_block_each_other(daemon, tmp_path, monkeypatch):
    monkeypatch.setattr(daemon, "timeout", 10 * GUARD)  # the watchdog comes first
    seed = int(os.environ.get("SEED", "1"))
    file = tmp_path / "image.edf"
    file.write_bytes(b"{ Dim_1 = 20 ; Dim_2 = 10 ; DataType = UnsignedByte ; Size = 200 ;".ljust(510)
                     + b"}\n" + bytes(200))
    script = Script(daemon, seed, file)
    with Watchdog(daemon) as watchdog, User(seed):
        while watchdog.calls < CALLS or script.ends["NoObject"] < CALLS // 1000:
            script.step()
            watchdog.calls += 1
    for window in script.windows:
        with contextlib.suppress(tarvik.NoObject):
            window.close()
            window.wait_for_close(GUARD)
    print(dict(script.ends))
    assert daemon.alive and script.ends["done"] > CALLS // 4
    # Windows still open and answer.
    with tarvik.open_main_frame(daemon=daemon) as window:
        view = window.open_sub_frame()
        view.load_image(script.images[1])
        assert view.wait_for_image().width == 64


def test_the_watchdog_says_where_everybody_is(daemon):
    said = stacks(daemon.pid)
    assert "tarvik" in said and len(said.splitlines()) > 3
