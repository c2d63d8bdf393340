# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""A viewer that serves this process; the texts are those of docs/protocols/scripting.md."""

from __future__ import annotations

import contextlib
import dataclasses
import math
import os
import secrets
import shutil
import subprocess
import tempfile
import threading
import time
import weakref
from typing import IO, TypeAlias, TypeVar
from xml.etree import ElementTree

from .errors import CallFailed, DaemonGone, NoImage, NoMethod, NoObject, TarvikError
from .queue import MessageQueue, PeerGone
from .wire import Image, Message, WireError

Argument: TypeAlias = str | int | float
Expected = TypeVar("Expected", bytes, Image)
LOOK = 1.0  # seconds between two looks whether the process lives
PATIENCE = 5.0  # seconds for a viewer to end
FAILURES: dict[str, type[TarvikError]] = {"NoObject": NoObject, "NoMethod": NoMethod,
                                          "NoImage": NoImage}


@dataclasses.dataclass
class Reply:
    """What a call came to: a text, and the image that some calls bring."""

    text: str
    image: Image | None = None


def find_executable(executable: str | os.PathLike[str] | None = None) -> str:
    """The viewer: the argument, else the variable TARVIK, else `tarvik` in the PATH."""
    wanted = os.fspath(executable or os.environ.get("TARVIK") or "tarvik")
    found = shutil.which(wanted)
    if not found:
        raise FileNotFoundError(f"There is no program {wanted!r}. Give its path as `executable` or "
                                "in the variable TARVIK, or install it into a folder of the PATH.")
    return found


def request(target: int, command: str, arguments: tuple[Argument, ...]) -> str:
    """The text of a request."""
    document = ElementTree.Element("request", objID=str(target), command=command)
    for argument in arguments:
        if isinstance(argument, float) and not math.isfinite(argument):
            raise ValueError(f"{command} takes no {argument}")
        text = str(int(argument)) if isinstance(argument, bool) else str(argument)
        if any(each < " " and each not in "\t\n\r" for each in text):
            raise ValueError(f"{command} takes no control characters: {text!r}")
        ElementTree.SubElement(document, "arg", value=text)
    return ElementTree.tostring(document, encoding="unicode")


def parse(reply: bytes) -> tuple[str, Exception | None]:
    """The text of a reply, and what has failed."""
    document = ElementTree.fromstring(reply.decode(errors="replace"))
    error = document.find("error")
    if error is None:
        value = document.find("return")
        return (value.get("value", "") if value is not None else ""), None
    text, reason = error.get("value", ""), error.get("reason", "")
    if text == "Timeout":
        return text, TimeoutError("it did not happen in time")
    if text in FAILURES:
        kind = FAILURES[text]
        return text, kind(reason or (kind.__doc__ or text).rstrip("."))
    return text, CallFailed(text or reason or "the viewer gives no reason")


class _Process:
    """The process of a viewer, with the queue to it."""

    def __init__(self, executable: str) -> None:
        name = f"script_{os.getpid()}_{secrets.token_hex(8)}"
        self.owner = os.getpid()
        self.lock = threading.Lock()  # held by the call that is under way
        self.queue = MessageQueue(name)
        self.errors: IO[bytes] = tempfile.TemporaryFile()
        # Not in the group of this process: the key that interrupts it must not end the viewer.
        self.process = subprocess.Popen(
            [executable, "--daemon", name, "--parent-pid", str(self.owner)],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=self.errors,
            start_new_session=True)

    def connect(self, deadline: float | None) -> None:
        """Waits for the viewer to listen."""
        while self.process.poll() is None:
            left = LOOK if deadline is None else min(LOOK, deadline - time.monotonic())
            try:
                return self.queue.connect(max(0.0, left))
            except TimeoutError:
                if deadline is not None and time.monotonic() >= deadline:
                    raise TimeoutError("the viewer does not answer") from None
        raise self.gone()

    def gone(self) -> DaemonGone:
        with contextlib.suppress(subprocess.TimeoutExpired):
            self.process.wait(LOOK)  # it may be ending right now
        if self.process.poll() is None:
            return DaemonGone("the viewer has ended the connection")
        self.errors.seek(0)
        said = self.errors.read()[-2000:].decode(errors="replace").strip()
        return DaemonGone("the viewer has ended" + (f": {said}" if said else ""))

    def end(self) -> None:
        """Ends the viewer, politely unless a call is under way or it does not listen."""
        if os.getpid() != self.owner:
            return  # a fork of the process that it belongs to
        if self.process.poll() is None and self.lock.acquire(blocking=False):
            with contextlib.suppress(TarvikError, PeerGone, WireError, OSError,
                                     subprocess.TimeoutExpired):
                self.connect(time.monotonic() + LOOK)
                self.queue.send(request(0, "quit", ()))
                self.process.wait(PATIENCE)
            self.lock.release()
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.queue.close()
        self.errors.close()


class Daemon:
    """A viewer without a window of its own, started for this process. It ends with `quit()`, at
    the end of a `with` block, and in any case when Python ends.

        executable  the program; otherwise the variable TARVIK or the PATH names it
        timeout     seconds that a call may take, beyond any time that it is given to wait

    Calls are served one after the other; calls from several threads wait for each other. After a
    call that was interrupted or took too long the next one may be made as usual.
    """

    def __init__(self, executable: str | os.PathLike[str] | None = None, *,
                 timeout: float = 60.0) -> None:
        self.timeout = timeout
        self._process = _Process(find_executable(executable))
        self._end = weakref.finalize(self, self._process.end)
        try:
            self._process.connect(time.monotonic() + timeout)
        except BaseException:
            self._end()
            raise

    @property
    def pid(self) -> int:
        """The viewer's process."""
        return self._process.process.pid

    @property
    def alive(self) -> bool:
        return self._end.alive and self._process.process.poll() is None

    def call(self, target: int, command: str, *arguments: Argument,
             attachment: Message | None = None, waits: float | None = 0.0,
             brings_image: bool = False) -> Reply:
        """Asks the object with that number, 0 for the viewer itself; the methods of the frames do
        it for you.

            attachment    follows the request: an Image, or a list of Pixel, Line, Text, Ellipse
            waits         seconds that the viewer may wait for the user, None for any time
            brings_image  an image follows the reply
        """
        text = request(target, command, arguments)
        if not self._end.alive:
            raise DaemonGone("the viewer was ended")
        patience = None if waits is None else waits + self.timeout
        deadline = None if patience is None else time.monotonic() + patience
        process = self._process
        if not process.lock.acquire(timeout=-1 if patience is None else patience):
            raise TimeoutError("a call of another thread is under way")
        try:
            process.connect(deadline)
            process.queue.send(text)
            if attachment is not None:
                process.queue.send(attachment)
            answer, failure = parse(self._receive(bytes, deadline))
            image = self._receive(Image, deadline) if brings_image and not failure else None
        except PeerGone:
            raise process.gone() from None
        except BaseException:
            # So that a late reply is not mistaken for that of the next call.
            process.queue.disconnect()
            raise
        finally:
            process.lock.release()
        if failure:
            raise failure
        return Reply(answer, image)

    def _receive(self, kind: type[Expected], deadline: float | None) -> Expected:
        left = None if deadline is None else max(0.0, deadline - time.monotonic())
        try:
            message = self._process.queue.receive(left)
        except TimeoutError:
            raise TimeoutError("the viewer has not answered in time") from None
        if not isinstance(message, kind):
            raise WireError(f"the viewer sent {type(message).__name__} for {kind.__name__}")
        return message

    def quit(self) -> None:
        """Ends the viewer, with all its windows."""
        self._end()

    def __enter__(self) -> Daemon:
        return self

    def __exit__(self, *_: object) -> None:
        self.quit()

    def __repr__(self) -> str:
        return f"<tarvik.Daemon, process {self.pid}{'' if self.alive else ', ended'}>"

