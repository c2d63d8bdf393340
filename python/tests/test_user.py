# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What a user does in a view, and the examples, which wait for it."""

import os
import re
import runpy
import subprocess
import sys
import threading

import numpy
import pytest
from conftest import GUARD, ROOT, wait_for

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


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True)


def choose_box(view, width):
    """Opens the panel for regions in a window of that width, and chooses boxes."""
    for x, y in ((50, 46), (345, 75), (345, 105), (319, 133), (177, 166)):
        xdotool("mousemove", width - x, y, "click", 1)
        # Once the view has seen the mouse again, the window has taken the click.
        for y in (300, 450):
            xdotool("mousemove", 300, y)
            wait_for(lambda: (at := view.cursor()) and (at.y < 180) == (y == 300), "the mouse")


def draw_box():
    xdotool("mousemove", 100, 250, "mousedown", 3, "mousemove", 200, 300, "mousemove", 220, 350,
            "mouseup", 3)


def test_region_that_is_drawn_by_hand(daemon):
    image = numpy.random.default_rng(1).poisson(20, (400, 500)).astype(numpy.int32)
    with tarvik.open_main_frame(900, 700, daemon=daemon) as window:
        view = window.open_sub_frame()
        view.load_image(image)
        view.wait_for_image()
        choose_box(view, 900)
        with Meanwhile(draw_box):
            region = view.wait_for_region(GUARD)
        assert region == view.region()
    assert region.kind == "box"
    (left, right), (top, bottom) = map(sorted, zip(region.begin, region.end))
    part = image[int(top):int(bottom), int(left):int(right)]
    assert region.numbers.integral == part.sum() and region.numbers.area == part.size > 1000


def test_closing_ends_a_wait(window, shown):
    with Meanwhile(lambda: subprocess.run(["xdotool", "mousemove", "787", "72", "click", "1"])):
        with pytest.raises(tarvik.NoObject):
            shown.wait_for_region(GUARD)


@pytest.mark.parametrize("page", ["README.md", "docs/user/python.md"])
def test_lines_of_the_pages_run(page, tmp_path):
    subprocess.run([os.environ["DEMO"], str(tmp_path), "--small", "--formats", "cbf"], check=True,
                   capture_output=True)
    names = {"tarvik": tarvik, "array": numpy.ones((400, 600)), "bad": numpy.zeros((400, 600)),
             "spots": [(50.5, 60.5), (100, 70)]}
    blocks = re.findall(r"```python\n(.*?)```", (ROOT / page).read_text(), re.DOTALL)
    assert blocks
    with Meanwhile(lambda: xdotool("mousemove", 400, 300, "click", 1)):
        for block in blocks:
            file = next(tmp_path.glob("**/*.cbf"))
            names["view"] = tarvik.show(names["array"])
            exec(block.replace("/data/crystal_00001.cbf", str(file)), names)
    tarvik.default_daemon().quit()


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


def test_example_of_a_region_that_is_drawn(daemon, monkeypatch, capsys):
    wait = tarvik.SubFrame.wait_for_region

    def with_a_user(view, timeout):
        choose_box(view, 900)
        with Meanwhile(draw_box):
            return wait(view, timeout)

    monkeypatch.setattr(tarvik.SubFrame, "wait_for_region", with_a_user)
    monkeypatch.setattr(sys, "argv", ["region_curve.py", str(GUARD)])
    runpy.run_path(str(ROOT / "python/examples/region_curve.py"), run_name="__main__")
    said = capsys.readouterr().out.splitlines()
    assert re.match(r"box: mean [345]\d\.\d+, integral \d{5,}$", said[0])
    assert said[1] == "X Pixel, X Projection"
    assert len(said) > 30 and all(re.match(r" *\d+\.0 +\d+\.\d #+$", line) for line in said[2:])
