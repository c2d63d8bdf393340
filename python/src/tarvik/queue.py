# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""One end of a message queue; see docs/protocols/queue.md. Linux only."""

from __future__ import annotations

import collections
import fcntl
import mmap
import os
import select
import socket
import stat
import struct
import threading
import time
import weakref

from . import wire

LEASE_PAGE = 8192
HELLO_TIME = 2.0
COUNTERS_AT = 64
SMALLEST_SHARED = 256 << 10  # smaller images travel in their frame
SEALS = fcntl.F_SEAL_SHRINK | fcntl.F_SEAL_GROW


class PeerGone(Exception):
    """The other end closed the connection or died, and all that it sent has been received."""


def address(name, user=None):
    """The abstract socket address of a queue name, with its leading zero."""
    raw = name.encode() if isinstance(name, str) else bytes(name)
    folder = f"tarvik/{os.geteuid() if user is None else user}/".encode()
    if len(folder) + len(raw) > 107:
        digest = 0xCBF29CE484222325
        for each in raw:
            digest = ((digest ^ each) * 0x100000001B3) & 0xFFFFFFFFFFFFFFFF
        raw = raw[:48] + b"~%016x" % digest
    return b"\0" + folder + raw


def _check_user(connection):
    credentials = connection.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12)
    if struct.unpack("iII", credentials)[1] != os.geteuid():
        raise PermissionError("the name of the queue is held by another user")


def _map(descriptor, access):
    """Maps a memory file that came from the peer, after a look at it."""
    try:
        seals = fcntl.fcntl(descriptor, fcntl.F_GET_SEALS)
    except OSError:
        raise wire.WireError("a descriptor that is no memory file") from None
    status = os.fstat(descriptor)
    if not stat.S_ISREG(status.st_mode) or not seals & fcntl.F_SEAL_SHRINK:
        raise wire.WireError("a memory file that is not sealed")
    if status.st_size == 0 or status.st_blocks < status.st_size // 512:
        raise wire.WireError("a memory file with holes")
    return _Mapped(descriptor, status.st_size, access=access)


class _OutgoingArrays(wire.InlineArrays):
    """Puts large arrays into memory files that the peer alone will hold."""

    def place(self, pixels):
        if len(pixels) < SMALLEST_SHARED:
            return super().place(pixels)
        descriptor = os.memfd_create("tarvik-image", os.MFD_CLOEXEC | os.MFD_ALLOW_SEALING)
        self.descriptors.append(descriptor)
        size = len(pixels) + wire.PADDING
        os.posix_fallocate(descriptor, 0, size)
        with mmap.mmap(descriptor, size) as memory:
            memory[: len(pixels)] = pixels
        fcntl.fcntl(descriptor, fcntl.F_ADD_SEALS, SEALS)
        return wire.PLACE.pack(wire.OWN_FILE, wire.NOT_KEPT, 0, 0, len(self.descriptors) - 1, 0, 0)

    def close(self):
        for descriptor in self.descriptors:
            os.close(descriptor)


class _Mapped(mmap.mmap):
    """A mapping that can be watched: it goes with the last view of it."""


class _IncomingArrays:
    """The pixels that the peer's frames only name."""

    def __init__(self):
        self.page = None
        self.lock = threading.Lock()
        self.returned = collections.deque()  # numbers of segments
        self.descriptors = []
        self.segments = {}
        self.kept_arrays = {}

    def set_page(self, descriptor):
        page = _map(descriptor, mmap.ACCESS_WRITE)
        if len(page) != LEASE_PAGE or page[:8] != b"TVLP\1\0\0\0":
            raise wire.WireError("a lease page that is none")
        self.page = memoryview(page)
        self.counters = self.page[COUNTERS_AT: COUNTERS_AT + 4 * wire.MOST_SEGMENTS].cast("I")

    def taken(self, frames):
        if self.page is not None:
            self.page[8:16].cast("Q")[0] = frames

    def outside(self, place, size):
        kind, number, descriptor, offset = place
        if descriptor >= len(self.descriptors):
            raise wire.WireError("a frame names a descriptor that it has not brought")
        file = self.descriptors[descriptor] if descriptor >= 0 else None
        if kind == wire.SEGMENT:
            if self.page is None or number >= wire.MOST_SEGMENTS:
                raise wire.WireError(f"pixels in the segment {number}, which can't be")
            if file is not None:
                self.forget([number] if number in self.segments else [])
                self.segments[number] = os.dup(file)
            file = self.segments.get(number)
        if file is None:
            raise wire.WireError("pixels in a segment that was never sent")
        # One mapping per message: when its last view ends, the lease is returned.
        memory = _map(file, mmap.ACCESS_READ)
        if kind == wire.SEGMENT:
            weakref.finalize(memory, self._give_back, number)
        if offset % 64 or offset + size + wire.PADDING > len(memory):
            raise wire.WireError(f"{size} bytes of pixels beyond their memory file")
        return memoryview(memory)[offset: offset + size]

    def _give_back(self, number):
        # Called by the garbage collector on any thread, perhaps within itself: whoever has the
        # lock counts for all. The peer only reads.
        self.returned.append(number)
        while self.returned and self.lock.acquire(blocking=False):
            try:
                while self.returned:
                    back = self.returned.popleft()
                    self.counters[back] = (self.counters[back] + 1) & 0xFFFFFFFF
            finally:
                self.lock.release()

    def forget(self, numbers):
        for number in numbers:
            if number not in self.segments:
                raise wire.WireError(f"the segment {number} is forgotten, which was never there")
            os.close(self.segments.pop(number))

    def kept(self, number):
        if number not in self.kept_arrays:
            raise wire.WireError(f"the kept array {number} was never sent")
        return self.kept_arrays[number]

    def keep(self, number, pixels):
        self.kept_arrays[number] = pixels

    def close(self):
        self.forget(list(self.segments))


class _Connection:
    """A connected socket: frames in and out."""

    def __init__(self, connection, name):
        self.socket = connection
        self.buffer = bytearray()
        self.arrays = _IncomingArrays()
        self.pending = []  # descriptors not yet claimed by a frame
        self.sent = self.taken = 0
        self.name = name
        self.socket.setblocking(True)
        self._write([wire.encode_hello(name, os.getpid())], [])

    def _write(self, pieces, descriptors):
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

    def send(self, message):
        arrays = _OutgoingArrays()
        try:
            self._write(wire.encode(message, self.sent, arrays), arrays.descriptors)
        finally:
            arrays.close()

    def _fill(self, deadline):
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

    def frame(self, deadline=None):
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

    def greet(self, deadline):
        _, (process, name) = self.frame(deadline)
        if name != self.name.encode():
            raise wire.WireError(f"the process {process} asks for {name!r}")

    def receive(self, deadline):
        while True:
            kind, content = self.frame(deadline)
            if kind != wire.FORGET:
                return content
            self.arrays.forget(content)

    def close(self):
        self.socket.close()
        self.arrays.close()
        for descriptor in self.pending:
            os.close(descriptor)
        self.pending = []


class MessageQueue:
    """One end of the queue of that name.

    Either side may come first: whatever is asked for waits until a peer is there. After a PeerGone
    the next call meets the next peer. Thread: one at a time.
    """

    def __init__(self, name):
        self.name = name
        self._address = address(name)
        self._listener = None
        self._connection = None

    def connect(self, timeout=None):
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

    def _meet(self, deadline):
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

    def _listen(self):
        listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            listener.bind(self._address)
        except OSError:
            listener.close()
            return None
        listener.listen(64)
        return listener

    def _with_peer(self, action):
        self.connect()
        try:
            return action(self._connection)
        except (PeerGone, wire.WireError):
            self._connection.close()
            self._connection = None
            raise

    def send(self, message):
        """Sends a text (str or bytes), an Image, or a list of drawing primitives."""
        self._with_peer(lambda connection: connection.send(message))

    def receive(self, timeout=None):
        """The next message: bytes, an Image, or a list of drawing primitives.

        Raises PeerGone when the peer has gone, TimeoutError when nothing came in time.
        """
        deadline = None if timeout is None else time.monotonic() + timeout
        if self._connection is None:
            self.connect(timeout)
        return self._with_peer(lambda connection: connection.receive(deadline))

    def close(self):
        for each in (self._connection, self._listener):
            if each:
                each.close()
        self._connection = self._listener = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()
