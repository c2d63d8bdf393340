# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Windows and views of a viewer that runs."""

import os
import re
import signal
import subprocess
import sys

import numpy
import pytest
from conftest import ROOT, wait_for

import tarvik
from tarvik import (CallFailed, Daemon, DaemonGone, Ellipse, Line, NoImage, NoObject, Pixel, Text,
                    daemon as daemon_module)


def counts(width=60, height=40, dtype=numpy.uint16):
    return (numpy.arange(width * height) % 100).reshape(height, width).astype(dtype)


@pytest.mark.parametrize("dtype", ["?", "i1", "u1", "i2", "u2", "i4", "u4", "i8", "u8", "f4", "f8",
                                   ">u2", ">f8"])
def test_arrays_come_back_as_they_went(view, dtype):
    for array in (counts(7, 5, dtype), counts(700, 900, dtype), counts(90, 80, dtype)[::2, ::-3]):
        view.load_image(array)
        assert view.wait_for_image().width == array.shape[1]
        back = view.image()
        assert back.dtype == array.dtype.newbyteorder("<") and (back == array).all()


def test_header_and_mask_go_along(view):
    array = numpy.ma.masked_greater(counts(), 90)
    view.load_image(array, {"wavelength": 1.5, "saturation_value": 99, "description": "größer"})
    view.wait_for_image()
    assert view.header() == {"wavelength": 1.5, "saturation_value": 99, "description": "größer"}
    assert ((view.mask() != 0) == array.mask).all()
    large = numpy.zeros((600, 800), "u4")
    large[100:200] = 5
    view.load_image(large, mask=large)
    view.wait_for_image()
    assert (view.mask() == large).all()


@pytest.mark.parametrize("array, options, error", [
    (numpy.zeros(5), {}, ValueError), (numpy.zeros((2, 2, 2)), {}, ValueError),
    (numpy.zeros((0, 5)), {}, ValueError), (numpy.zeros((2, 2), complex), {}, TypeError),
    ([["a"]], {}, TypeError), (counts(), {"mask": counts(5, 5)}, ValueError),
    (counts(), {"header": {"wavelenght": 1}}, ValueError),
    (counts(), {"header": {"wavelength": "one"}}, ValueError)])
def test_what_is_no_image_is_refused_and_the_view_goes_on(view, array, options, error):
    with pytest.raises(error):
        view.load_image(array, **options)
    view.load_image(counts())
    assert view.wait_for_image().index == 0


def test_every_slot_for_scripts_has_its_method():
    for header, kind in (("gui/kit/AbstractSubWindow.h", tarvik.SubFrame),
                         ("gui/window/SubWindow.h", tarvik.SubFrame),
                         ("gui/window/MainWindow.h", tarvik.MainFrame)):
        slots = re.findall(r"API_CALLABLE void (\w+)\(", (ROOT / "src" / header).read_text())
        assert slots
        for slot in slots:
            assert callable(getattr(kind, re.sub("([A-Z])", r"_\1", slot).lower())), slot


def test_view_obeys(window, view):
    view.load_image(counts())
    view.wait_for_image()
    view.set_viewport(3, 4.5, 1)
    assert (view.viewport().offset_x, view.viewport().offset_y) == (3, 4.5)
    view.set_zoom_power(2)
    view.set_offset_x(7)
    view.set_offset_y(-8)
    assert (view.viewport().zoom_power, view.viewport().offset_y) == (2, -8)
    view.set_contrast(80, 10)
    view.set_foreground(75.5)
    view.set_background(-1e30)
    view.set_color_mode("HDR")
    assert view.contrast() == tarvik.Contrast(75.5, -1e30, "High Dynamic Range")
    view.set_paint_list([Pixel(1, 2), Line(0, 0, 30, 20, (255, 0, 0, 255)), Text(5, 5, "peak ä"),
                         Ellipse(20, 20, 5, 8, 0.5)])
    painted = view.picture()
    view.clear_paint_list()
    assert painted.shape[2] == 4 and (painted != view.picture()).any()
    assert ([255, 0, 0, 255] == painted).all(axis=2).any()
    view.add_to_paint_list([Pixel(1, 2)])
    view.set_title("a title with \"<&> and\nlines")
    for call in (view.unset_title, view.show_resolution_rings, view.hide_resolution_rings,
                 view.hide_tool_buttons, view.show_tool_buttons, window.hide_tool_bar,
                 window.show_tool_bar, window.enable_keyboard_shortcuts, window.enable_close,
                 window.disable_keyboard_shortcuts, window.disable_close,
                 window.synchronize_viewport, window.synchronize_contrast,
                 window.synchronize_statistics):
        call()
    view.set_active_color(300, -5, 0)
    view.set_non_active_color(0, 0, 99)
    assert window.sub_frames() == [view]
    assert view.peaks()[0].value == 99 and view.region().kind is None and view.cursor() is None


def test_no_numbers_that_are_none(view):
    for value in (float("nan"), float("inf")):
        with pytest.raises(ValueError):
            view.set_foreground(value)
    with pytest.raises(ValueError):
        view.set_title("a\0b")


def test_series_of_images_steps_back(view):
    for number in range(3):
        view.load_image(counts() + number)
    assert view.wait_for_image().last == 2
    view.go_to(1)
    assert view.wait_for_image().index == 1
    assert view.image()[0, 0] == 1


def test_load_that_fails_says_why_even_if_asked_late(view, tmp_path):
    with pytest.raises(NoImage):
        view.wait_for_image()
    with pytest.raises(NoImage):
        view.image()
    view.load_file(tmp_path / "not there.cbf")
    with pytest.raises(CallFailed, match="not there.cbf"):
        view.wait_for_image()
    with pytest.raises(CallFailed, match="not there.cbf"):
        view.wait_for_image()
    view.load_image(counts())
    view.wait_for_image()


def test_closed_windows_are_no_objects(window, daemon):
    view = window.open_sub_frame()
    assert not view.closed
    with pytest.raises(TimeoutError):
        view.wait_for_close(0.05)
    view.close()
    view.close()
    view.wait_for_close()
    for call in (view.info, view.show_tool_buttons, view.wait_for_click, view.wait_for_image):
        with pytest.raises(NoObject):
            call()
    with pytest.raises(tarvik.NoMethod):
        daemon.call(window._number, "image")
    assert view.closed and window.sub_frames() == []


def test_window_of_the_application_closes_its_views(daemon):
    with tarvik.open_main_frame(daemon=daemon) as frame:
        views = [frame.open_sub_frame() for _ in range(4)]
        assert frame.sub_frames() == views
    for view in views:
        view.wait_for_close(60)
        assert view.closed


def test_late_replies_are_not_those_of_the_next_call(view, daemon, monkeypatch):
    view.load_image(counts())
    view.wait_for_image()
    monkeypatch.setattr(daemon, "timeout", 0.2)
    os.kill(daemon.pid, signal.SIGSTOP)
    try:
        for call in (view.info, view.image, view.viewport):
            with pytest.raises(TimeoutError):
                call()
    finally:
        os.kill(daemon.pid, signal.SIGCONT)
    monkeypatch.setattr(daemon, "timeout", 60)
    assert view.contrast().color_mode and view.image().shape == (40, 60)
    with pytest.raises(TimeoutError):
        view.wait_for_click(0.05)
    assert view.info().width == 60


def test_viewer_that_dies_is_gone_and_the_next_call_starts_another(monkeypatch):
    first = tarvik.show(counts(), "gone")
    assert tarvik.show(counts(), "gone") is first and tarvik.show(counts(), "b") is not first
    os.kill(first.daemon.pid, signal.SIGKILL)
    with pytest.raises(DaemonGone):
        first.info()
    assert first.closed
    second = tarvik.show(counts(), "gone")
    second.wait_for_image()
    assert second.daemon.alive and second.daemon is not first.daemon
    second.close()
    assert tarvik.show(counts(), "gone") is not second
    second.daemon.quit()


def test_viewer_that_cannot_start_says_why(monkeypatch, tmp_path):
    monkeypatch.delenv("DISPLAY")
    with pytest.raises(DaemonGone, match="DISPLAY is not set"):
        Daemon()
    monkeypatch.setenv("TARVIK", str(tmp_path / "none"))
    with pytest.raises(FileNotFoundError, match="none"):
        Daemon()


@pytest.mark.parametrize("end", ["os.kill(os.getpid(), 9)", "sys.exit()", "view.daemon.quit()"])
def test_no_viewer_outlives_its_python(end):
    script = ("import os, sys, numpy, tarvik; view = tarvik.show(numpy.ones((9, 9)));"
              f"print(view.daemon.pid, flush=True); {end}")
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                          check=False)
    pid = int(done.stdout)
    wait_for(lambda: not os.path.exists(f"/proc/{pid}"), "the end of the viewer")


def test_one_call_at_a_time(view, daemon, monkeypatch):
    monkeypatch.setattr(daemon, "timeout", 0.05)
    assert daemon._process.lock.acquire()
    try:
        with pytest.raises(TimeoutError, match="another thread"):
            view.info()
    finally:
        daemon._process.lock.release()


def test_replies_are_read_as_they_are_written():
    for reply, text, failure in (
            ('<reply><return value="5"/></reply>\n', "5", None),
            ('<reply><return value=""/><error value="" reason="why"/></reply>', "", "why"),
            ('<reply><return value="NoObject"/><error value="NoObject"/></reply>', "NoObject",
             "The window or view is closed"),
            ('<reply><return value="x"/><error value="x"/></reply>', "x", "x")):
        got, error = daemon_module.parse(reply.encode())
        assert got == text and (str(error) if error else None) == failure
