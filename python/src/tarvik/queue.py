# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""One end of a message queue; see docs/protocols/queue.md. Linux only."""

from __future__ import annotations

import os
import select
import socket
import struct
import time
from collections.abc import Callable
from typing import Any, TypeVar

from . import wire
from .shared import IncomingArrays, OutgoingArrays, SegmentPool

HELLO_TIME = 2.0
Result = TypeVar("Result")


class PeerGone(Exception):
    """The other end closed the connection or died, and all that it sent has been received."""


def address(name: str | wire.Bytes, user: int | None = None) -> bytes:
    """The abstract socket address of a queue name, with its leading zero."""
    raw = name.encode() if isinstance(name, str) else bytes(name)
    folder = f"tarvik/{os.geteuid() if user is None else user}/".encode()
    if len(folder) + len(raw) > 107:
        digest = 0xCBF29CE484222325
        for each in raw:
            digest = ((digest ^ each) * 0x100000001B3) & 0xFFFFFFFFFFFFFFFF
        raw = raw[:48] + b"~%016x" % digest
    return b"\0" + folder + raw


def _check_user(connection: socket.socket) -> None:
    credentials = connection.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12)
    if struct.unpack("iII", credentials)[1] != os.geteuid():
        raise PermissionError("the name of the queue is held by another user")


class _Connection:
    """A connected socket: frames in and out."""

    def __init__(self, connection: socket.socket, name: str) -> None:
        self.socket = connection
        self.buffer = bytearray()
        self.arrays = IncomingArrays()
        self.pool = SegmentPool()
        self.pending: list[int] = []  # descriptors not yet claimed by a frame
        self.sent = self.taken = 0
        self.name = name
        self.socket.setblocking(True)
        self._write([wire.encode_hello(name, os.getpid(), 1)], [self.pool.page])

    def _write(self, pieces: list[wire.Bytes], descriptors: list[int]) -> None:
        data = memoryview(b"".join(pieces))
        try:
            while data:
                wrote = (socket.send_fds(self.socket, [data], descriptors) if descriptors
                         else self.socket.send(data))
                descriptors = []
                data = data[wrote:]
        except (BrokenPipeError, ConnectionResetError) as error:
            raise PeerGone("the peer has gone") from error
        self.sent += 1

    def send(self, message: wire.Message) -> None:
        arrays = OutgoingArrays(self.pool)
        try:
            try:
                pieces = wire.encode(message, self.sent, arrays)
            except BaseException:
                arrays.cancel()
                raise
            self._write(pieces, arrays.descriptors)
            arrays.sent()
        finally:
            arrays.close()

    def _fill(self, deadline: float | None) -> None:
        wait = None if deadline is None else max(0.0, deadline - time.monotonic())
        if not select.select([self.socket], [], [], wait)[0]:
            raise TimeoutError("no message came in time")
        try:
            data, descriptors, flags, _ = socket.recv_fds(self.socket, 1 << 20, 64)
        except ConnectionResetError as error:
            raise PeerGone("the peer has gone") from error
        self.pending += descriptors
        if not data:
            raise PeerGone("the peer has gone")
        if flags & socket.MSG_CTRUNC or len(self.pending) > 64:
            raise wire.WireError("descriptors that can't be taken")
        self.buffer += data

    def frame(self, deadline: float | None = None) -> tuple[int, Any]:
        """The next frame, (kind, content)."""
        while len(self.buffer) < wire.HEAD.size:
            self._fill(deadline)
        kind, descriptors, meta, bulk, number = wire.decode_head(self.buffer)
        if number != self.taken or (kind == wire.HELLO) != (number == 0):
            raise wire.WireError(f"the frame {number} comes where the frame {self.taken} is due")
        size = wire.HEAD.size + meta + bulk
        while len(self.buffer) < size:
            self._fill(deadline)
        if descriptors > len(self.pending):
            raise wire.WireError("a frame without the descriptors that it announces")
        frame, self.buffer = bytes(self.buffer[:size]), self.buffer[size:]
        self.arrays.descriptors = self.pending[:descriptors]
        self.pending = self.pending[descriptors:]
        try:
            if kind == wire.HELLO and descriptors:
                self.arrays.set_page(self.arrays.descriptors[0])
            content = wire.decode(frame, self.arrays)
        finally:
            for descriptor in self.arrays.descriptors:
                os.close(descriptor)
            self.arrays.descriptors = []
        self.taken += 1
        self.arrays.taken(self.taken)
        return content

    def greet(self, deadline: float | None) -> None:
        _, (process, name) = self.frame(deadline)
        if name != self.name.encode():
            raise wire.WireError(f"the process {process} asks for {name!r}")

    def receive(self, deadline: float | None) -> wire.Received:
        while True:
            kind, content = self.frame(deadline)
            if kind != wire.FORGET:
                message: wire.Received = content
                return message
            self.arrays.forget(content)

    def close(self) -> None:
        self.socket.close()
        self.arrays.close()
        self.pool.close()
        for descriptor in self.pending:
            os.close(descriptor)
        self.pending = []


class MessageQueue:
    """One end of the queue of that name.

    Either side may come first: whatever is asked for waits until a peer is there. After a PeerGone
    the next call meets the next peer. Thread: one at a time.
    """

    def __init__(self, name: str) -> None:
        self.name = name
        self._address = address(name)
        self._listener: socket.socket | None = None
        self._connection: _Connection | None = None

    def connect(self, timeout: float | None = None) -> None:
        """Waits for a peer. Raises TimeoutError, or PermissionError when another user holds the
        name."""
        deadline = None if timeout is None else time.monotonic() + timeout
        while self._connection is None:
            candidate = None
            try:
                connection, accepted = self._meet(deadline)
                candidate = _Connection(connection, self.name)
                # A silent connection holds up others no longer than this.
                patience = time.monotonic() + HELLO_TIME if accepted else None
                candidate.greet(min((each for each in (deadline, patience) if each is not None),
                                    default=None))
                self._connection, candidate = candidate, None
            except PeerGone:
                pass  # the usual end of a peer that waited in the backlog
            except TimeoutError:
                if deadline is not None and time.monotonic() >= deadline:
                    raise
            finally:
                if candidate:
                    candidate.close()

    def _meet(self, deadline: float | None) -> tuple[socket.socket, bool]:
        """A socket connected to somebody of the same user, and whether it came to us."""
        while True:
            if self._listener is None:
                self._listener = self._listen()
            if self._listener is not None:
                # Never 0, which would be another kind of socket with another error.
                wait = None if deadline is None else max(0.001, deadline - time.monotonic())
                self._listener.settimeout(wait)
                connection, _ = self._listener.accept()
                try:
                    _check_user(connection)
                    return connection, True
                except PermissionError:
                    connection.close()
                    continue
            connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            connection.setblocking(False)
            try:
                connection.connect(self._address)
                _check_user(connection)
                return connection, False
            except PermissionError:
                connection.close()
                raise
            # Its holder is starting or ending, or the backlog is full.
            except (ConnectionRefusedError, BlockingIOError):
                connection.close()
                if deadline is not None and time.monotonic() > deadline:
                    raise TimeoutError("no peer came in time") from None
                time.sleep(0.002)

    def _listen(self) -> socket.socket | None:
        listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            listener.bind(self._address)
        except OSError:
            listener.close()
            return None
        listener.listen(64)
        return listener

    def _with_peer(self, action: Callable[[_Connection], Result]) -> Result:
        self.connect()
        assert self._connection is not None
        try:
            return action(self._connection)
        except (PeerGone, wire.WireError):
            self.disconnect()
            raise

    def send(self, message: wire.Message) -> None:
        """Sends a text (str or bytes), an Image, or a list of drawing primitives."""
        self._with_peer(lambda connection: connection.send(message))

    def receive(self, timeout: float | None = None) -> wire.Received:
        """The next message: bytes, an Image, or a list of drawing primitives.

        Raises PeerGone when the peer has gone, TimeoutError when nothing came in time.
        """
        deadline = None if timeout is None else time.monotonic() + timeout
        if self._connection is None:
            self.connect(timeout)
        return self._with_peer(lambda connection: connection.receive(deadline))

    def disconnect(self) -> None:
        """Ends the connection with a peer, if there is one; the next call meets the next peer, or
        the same one again."""
        connection, self._connection = self._connection, None
        if connection:
            connection.close()

    def close(self) -> None:
        self.disconnect()
        if self._listener:
            self._listener.close()
        self._listener = None

    def __enter__(self) -> MessageQueue:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()
