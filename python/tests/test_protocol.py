# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What a careless, broken or hostile script may send, past the package: the viewer says what is
wrong, and serves the next request and the next script."""

import struct
import subprocess
import sys

import numpy
import pytest
from conftest import GUARD

import tarvik
from tarvik import MessageQueue, PeerGone, wire
from tarvik.daemon import parse


class Raw:
    """The queue to a viewer, without the package's care."""

    def __init__(self, daemon):
        self.process = daemon._process
        self.queue = self.process.queue

    def ask(self, *messages):
        for message in messages:
            self.queue.send(message)
        return parse(self.queue.receive(GUARD))

    def call(self, target, command, *arguments):
        arguments = "".join(f'<arg value="{each}"/>' for each in arguments)
        return self.ask(f'<request objID="{target}" command="{command}">{arguments}</request>')


@pytest.fixture
def raw(daemon):
    client = Raw(daemon)
    client.queue.connect(GUARD)
    yield client
    # Whatever came, windows open and answer.
    with tarvik.open_main_frame(daemon=daemon) as frame:
        view = frame.open_sub_frame()
        view.load_image(numpy.ones((5, 6)))
        assert view.wait_for_image().width == 6
    assert daemon.alive


REQUEST = '<request objID="0" command="x"/>'


@pytest.mark.parametrize("text, reason", [
    (b"", "no XML"), (b"\0\xff" * 100, "no XML"), (b"<request", "no XML"), (b"<a/>", "no element"),
    (b'<request objID="0" command="x"><arg value=</request>', "line 1, column"),
    (REQUEST * 2, "no XML"), (REQUEST.encode("utf-16"), None),
    (f'<!DOCTYPE r [<!ENTITY a "{"x" * 4000}">]><r>{"&a;" * 100000}{REQUEST}</r>', "entities"),
    (f'<!DOCTYPE r [<!ENTITY a "b"><!ENTITY c "&a;&a;">]>{REQUEST}', "entities"),
    (f'<!DOCTYPE r [<!ENTITY a SYSTEM "file:///etc/passwd">]><r>&a;{REQUEST}</r>', "entities"),
    ("<a>" * 1_000_000, "nested"), (f"<a>{REQUEST}&undeclared;</a>", "no XML"),
    ('<request objID="0" command="x">' + '<arg value=""/>' * 200_000 + "</request>", None),
    (f"<a b='{'x' * (20 << 20)}'>{REQUEST}</a>", None),
    ('<!DOCTYPE r SYSTEM "http://localhost:1/x.dtd">' + REQUEST, None)], ids=lambda each: str(each)[:12])
def test_what_is_no_request(raw, text, reason):
    answer, failure = raw.ask(text)
    assert answer == "NoObject" and isinstance(failure, tarvik.NoObject)
    assert reason is None or reason in str(failure)


def test_unknown_objects_methods_and_arguments(raw):
    window, _ = raw.call(0, "openMainFrame", 640)
    view, _ = raw.call(window, "openSubFrame")
    for command in ("quit", "openMainFrame"):
        assert raw.call("1", command)[0] == "NoObject"  # of the application alone
    for target in ("1", "-1", "18446744073709551615", "99999999999999999999", "0x10", "", "abc"):
        for command in ("setTitle", "loadFile", "openSubFrame", "image", "waitForClick", "region"):
            assert raw.call(target, command, "x")[0] == "NoObject", (target, command)
    assert raw.call("1", "close")[0] == ""
    assert raw.call("1", "waitForClose") == ("", None)
    for target, command, arguments, answer, reason in (
            (view, "deleteLater", (), "NoMethod", None), (view, "close", (1, 2), "", None),
            (window, "newSubWindow", (), "NoMethod", None),
            (window, "setWindowTitle", ("x",), "NoMethod", None),
            (window, "region", (), "NoMethod", None), (window, "waitForClick", (), "NoMethod", None),
            (view, "", (), "", "the method is called hideToolButtons"),
            (view, "setOffset", (1,), "", "the method is called setOffsetX"),
            (view, "setOffsetX(", (1,), "", "setOffsetX"), (view, "setzoompower", (1,), "NoMethod", None),
            (view, "setOffsetX", (1, 2), "NoMethod", None),
            (view, "setOffsetX", (), "", "argument 1 of setOffsetX(double) is missing"),
            (view, "setViewport", (1,), "", "1 arguments instead of those of setViewport"),
            (window, "subFrames", ("x",), "", None), (window, "x" * 1_000_000, (), "NoMethod", None)):
        if command == "close":
            continue
        got, failure = raw.call(target, command, *arguments)
        assert got == answer and failure, (command, got)
        assert reason is None or reason in str(failure)


HOSTILE = ["nan", "inf", "-inf", "1e308", "-1e308", "1e-320", "2147483647", "-2147483648",
           "99999999999999999999", "x", "", "&#228;&#x10FFFF;&#9;", "x" * 200_000]


def test_hostile_values_leave_the_view_alive(raw):
    window, _ = raw.call(0, "openMainFrame", 640, 480)
    view, _ = raw.call(window, "openSubFrame")
    for image in (None, wire.Image.from_array(numpy.arange(600, dtype="u2").reshape(20, 30))):
        if image:
            raw.ask(f'<request objID="{view}" command="loadImage"/>', image)
            raw.call(view, "waitForImage")
        for value in HOSTILE:
            for command, count in (("setOffsetX", 1), ("setOffsetY", 1), ("setZoomPower", 1),
                                   ("setViewport", 3), ("setForeground", 1), ("setBackground", 1),
                                   ("setContrast", 2), ("goTo", 1), ("setColorMode", 1),
                                   ("setActiveColor", 3), ("setTitle", 1), ("waitForImage", 1)):
                answer, failure = raw.call(view, command, *[value] * count)
                assert not failure or command == "waitForImage", (command, value, answer)
            for command in ("viewport", "contrast", "region", "cursor", "viewInfo"):
                assert raw.call(view, command)[1] is None
            assert raw.call(window, "synchronizeViewport", value)[1] is None
        assert raw.call(view, "picture")[1] is None
        assert isinstance(raw.queue.receive(GUARD), wire.Image)
    raw.call(window, "close")


@pytest.mark.parametrize("size", [(-1, -1), (0, 0), (-5, 7), (1, 1), (2**31 - 1, 2**31 - 1),
                                  (40000, 100), (-2**31, -2**31)])
def test_windows_of_any_size(raw, size):
    window, failure = raw.call(0, "openMainFrame", *size)
    assert not failure
    view, failure = raw.call(window, "openSubFrame")
    assert not failure and raw.call(view, "viewInfo")[1] is None
    raw.call(window, "close")


def test_masks_and_headers_that_do_not_fit(raw):
    window, _ = raw.call(0, "openMainFrame")
    view, _ = raw.call(window, "openSubFrame")
    pixels = numpy.arange(600, dtype="i4").reshape(20, 30) - 3
    for mask in (numpy.ones((3, 3), "u1"), numpy.ones((20, 30), "f8"), numpy.ones((20, 30), "i2"),
                 numpy.ones((20, 30), "?"), numpy.ones((0, 0), "u4")):
        image = wire.Image.from_array(pixels, {"pixel_mask": wire.Image.from_array(mask)})
        assert raw.ask(f'<request objID="{view}" command="loadImage"/>', image)[1] is None
        raw.call(view, "waitForImage")
    for value in (float("nan"), float("inf"), -1e300):
        header = dict.fromkeys(sorted(wire.FLOAT_FIELDS), value)
        image = wire.Image.from_array(pixels, {**header, "saturation_value": 2**62})
        raw.ask(f'<request objID="{view}" command="loadImage"/>', image)
        raw.call(view, "waitForImage")
        raw.call(view, "showResolutionRings")
        assert raw.call(view, "region")[1] is None
    for image in (wire.Image(), wire.Image.from_array(numpy.full((4, 4), numpy.nan)),
                  wire.Image.from_array(numpy.ones((1, 100_000), "u1"))):
        assert raw.ask(f'<request objID="{view}" command="loadImage"/>', image)[1] is None
        raw.call(view, "waitForImage")
    raw.call(window, "close")


def test_drawing_lists_of_any_numbers(raw):
    window, _ = raw.call(0, "openMainFrame")
    view, _ = raw.call(window, "openSubFrame")
    raw.ask(f'<request objID="{view}" command="loadImage"/>',
            wire.Image.from_array(numpy.ones((50, 50), "u1")))
    raw.call(view, "waitForImage")
    numbers = [float("nan"), float("inf"), 1e308, -1e308, 1e9, 0.0]
    items = [kind(*[number] * count) for number in numbers
             for kind, count in ((wire.Pixel, 2), (wire.Line, 4), (wire.Ellipse, 5))]
    items += [wire.Text(number, 5, "x" * 100_000) for number in numbers]
    for command in ("setPaintList", "addToPaintList"):
        assert raw.ask(f'<request objID="{view}" command="{command}"/>', items)[1] is None
        assert raw.call(view, "picture")[1] is None
        raw.queue.receive(GUARD)
    raw.call(window, "close")


def test_images_that_lie_end_the_connection_only(raw, daemon):
    window, _ = raw.call(0, "openMainFrame")
    view, _ = raw.call(window, "openSubFrame")
    good = b"".join(wire.encode(wire.Image.from_array(numpy.ones((40, 50), "u2")), 0))
    for at, value in ((0, 2**31 - 1), (0, -1), (4, 41), (8, 0xFFFF), (12, 0x05), (12, 2), (36, 2**31 - 1)):
        raw.queue.connect(GUARD)
        connection = raw.queue._connection
        connection.send(f'<request objID="{view}" command="loadImage"/>')
        frame = bytearray(good)
        struct.pack_into("<Q", frame, 24, connection.sent)
        struct.pack_into("<i" if value < 2**31 else "<I", frame, wire.HEAD.size + at, value)
        connection.socket.sendall(frame)
        with pytest.raises(PeerGone):
            raw.queue.receive(GUARD)
    raw.queue.connect(GUARD)
    assert raw.call(view, "viewInfo")[1] is None
    raw.call(window, "close")


@pytest.mark.parametrize("last", [
    f'<request objID="0" command="loadImage"/>', f'<request objID="0" command="setPaintList"/>',
    '<request objID="{view}" command="waitForClick"/>', '<request objID="{view}" command="picture"/>',
    '<request objID="{window}" command="waitForClose"/>'])
def test_a_script_that_dies_in_the_middle_is_followed_by_the_next(raw, last):
    window, _ = raw.call(0, "openMainFrame")
    view, _ = raw.call(window, "openSubFrame")
    raw.queue.send(last.format(window=window, view=view))
    raw.queue.disconnect()
    raw.queue.connect(GUARD)
    assert raw.call(view, "viewInfo")[1] is None
    raw.call(window, "close")


def test_half_a_message_and_death(raw):
    frame = b"".join(wire.encode(REQUEST, 1))
    raw.queue._connection.socket.sendall(frame[:40])
    raw.queue.disconnect()
    raw.queue.connect(GUARD)
    assert raw.call(0, "x")[0] == "NoObject"


def test_a_second_script_is_served_after_the_first(raw):
    answers = []
    script = (f"import sys; from tarvik import MessageQueue; q = MessageQueue({raw.queue.name!r});"
              f"q.send({REQUEST!r}); print(q.receive({GUARD}))")
    # The first one keeps the name; the second reaches the viewer when the first lets go of it.
    second = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.PIPE, text=True)
    try:
        for _ in range(20):
            answers.append(raw.call(0, "x")[0])
        assert set(answers) == {"NoObject"}
        raw.queue.close()
        said, _ = second.communicate(timeout=GUARD)
        assert "NoObject" in said
    finally:
        second.kill()
        second.wait()
