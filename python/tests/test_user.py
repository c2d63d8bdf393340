# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What a user does in a view, and the examples, which wait for it."""

import os
import re
import subprocess
import sys
import threading

import numpy
import pytest
from conftest import GUARD, ROOT

import tarvik


class Meanwhile:
    """Repeats what a user does while the block runs."""

    def __init__(self, action):
        self.done = threading.Event()
        self.thread = threading.Thread(target=self._repeat, args=(action,))

    def _repeat(self, action):
        while not self.done.wait(0.2):
            action()

    def __enter__(self):
        self.thread.start()

    def __exit__(self, *_):
        self.done.set()
        self.thread.join()


@pytest.fixture
def shown(view):
    y, x = numpy.mgrid[:400, :500]
    view.load_image((x + 1000 * y).astype(numpy.uint32))
    view.wait_for_image()
    return view


def test_click_names_the_pixel_under_it(shown):
    with Meanwhile(lambda: subprocess.run(["xdotool", "mousemove", "400", "300", "click", "1"])):
        click = shown.wait_for_click(GUARD)
    assert (click.button, click.keys) == ("left", frozenset())
    cursor = shown.cursor()
    assert (cursor.x, cursor.y) == (click.x, click.y)
    assert cursor.intensity == str(click.x + 1000 * click.y)


def test_closing_ends_a_wait(window, shown):
    with Meanwhile(lambda: subprocess.run(["xdotool", "mousemove", "787", "72", "click", "1"])):
        with pytest.raises(tarvik.NoObject):
            shown.wait_for_region(GUARD)


def example(name, *arguments):
    done = subprocess.run([sys.executable, str(ROOT / "python/examples" / name), *arguments],
                          capture_output=True, text=True, check=False, timeout=2 * GUARD)
    assert done.returncode == 0, done.stderr
    return done.stdout


def test_examples_that_need_no_user():
    assert re.match(r"\d+ arrays in ", example("live.py", "1"))
    assert example("overlay.py", "0.1") == "48 spots predicted, 16 found\n"
    assert example("four_frames.py", "0.1") == "zoom of each view: [1, 1, 1, 1]\n"


def test_example_of_a_series(tmp_path):
    subprocess.run([os.environ["DEMO"], str(tmp_path), "--small"], check=True, capture_output=True)
    file = sorted(tmp_path.glob("**/*.cbf"))[0]
    lines = example("step_series.py", str(file), "3").splitlines()
    assert len(lines) == 3
    assert all(re.match(r"\d+: \d+ counts at \(\d+, \d+\)", line) for line in lines)


def test_examples_that_wait_for_the_user(tmp_path):
    with Meanwhile(lambda: subprocess.run(["xdotool", "mousemove", "400", "300", "click", "1"])):
        said = example("wait_for_click.py", str(GUARD), "2").splitlines()
    assert len(said) == 2 and all(re.match(r"\(\d+, \d+\): \d+", line) for line in said)
    assert example("wait_for_click.py", "0.1") == "no click in time\n"
    assert example("region_curve.py", "0.1") == "no region in time\n"
