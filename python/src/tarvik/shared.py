# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Pixels in memory that two processes share; "Images" and "Leases" of docs/protocols/queue.md."""

from __future__ import annotations

import collections
import dataclasses
import fcntl
import mmap
import os
import stat
import threading
import weakref

from . import wire

LEASE_PAGE = 8192
PAGE_HEAD = b"TVLP\1\0\0\0"
COUNTERS_AT = 64
SMALLEST_SHARED = 256 << 10  # smaller images travel in their frame
MOST_POOLED = 64  # segments; what does not fit gets a file of its own
SEALS = fcntl.F_SEAL_SHRINK | fcntl.F_SEAL_GROW


class Mapped(mmap.mmap):
    """A mapping that can be watched: it goes with the last view of it."""


def _map(descriptor: int, access: int) -> Mapped:
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
    return Mapped(descriptor, status.st_size, access=access)


def _make(size: int) -> tuple[int, mmap.mmap]:
    """A sealed memory file of that size, and a mapping to write to it."""
    descriptor = os.memfd_create("tarvik-image", os.MFD_CLOEXEC | os.MFD_ALLOW_SEALING)
    try:
        os.posix_fallocate(descriptor, 0, size)
        fcntl.fcntl(descriptor, fcntl.F_ADD_SEALS, SEALS)
        return descriptor, mmap.mmap(descriptor, size)
    except BaseException:
        os.close(descriptor)
        raise


@dataclasses.dataclass
class _Segment:
    descriptor: int
    memory: mmap.mmap
    lent: int = 0
    known: bool = False  # to the peer

    def close(self) -> None:
        self.memory.close()
        os.close(self.descriptor)


class SegmentPool:
    """The segments of one connection's sender. They are written again once the peer has given
    them back, which saves the system from clearing fresh pages for each image."""

    def __init__(self) -> None:
        self.page, self._page_memory = _make(LEASE_PAGE)
        self._page_memory[:len(PAGE_HEAD)] = PAGE_HEAD
        self._returned = memoryview(self._page_memory)[
            COUNTERS_AT: COUNTERS_AT + 4 * wire.MOST_SEGMENTS].cast("I")
        self._segments: list[_Segment] = []

    def place(self, pixels: memoryview) -> int | None:
        """Copies pixels into a free segment and lends it. Returns its number, None without a free
        one."""
        size = len(pixels) + wire.PADDING
        free = [number for number in range(len(self._segments))
                if self._returned[number] == self[number].lent & 0xFFFFFFFF]
        fitting = [number for number in free if len(self[number].memory) >= size]
        if fitting:
            number = min(fitting, key=lambda each: len(self[each].memory))
        elif free or len(self._segments) < MOST_POOLED:
            segment = _Segment(*_make(size))
            if free:
                number = free[0]
                segment.lent = self[number].lent
                self[number].close()
                self._segments[number] = segment
            else:
                number = len(self._segments)
                self._segments.append(segment)
        else:
            return None
        self[number].memory[: len(pixels)] = pixels
        self[number].lent += 1
        return number

    def __getitem__(self, number: int) -> _Segment:
        return self._segments[number]

    def close(self) -> None:
        self._returned.release()
        self._page_memory.close()
        os.close(self.page)
        for segment in self._segments:
            segment.close()
        self._segments.clear()


class OutgoingArrays(wire.InlineArrays):
    """Puts the large arrays of one message into shared memory."""

    def __init__(self, pool: SegmentPool) -> None:
        super().__init__()
        self._pool = pool
        self._own: list[int] = []
        self._lent: list[_Segment] = []

    def place(self, pixels: memoryview) -> bytes:
        if len(pixels) < SMALLEST_SHARED:
            return super().place(pixels)
        number = self._pool.place(pixels)
        if number is None:
            descriptor, memory = _make(len(pixels) + wire.PADDING)
            self._own.append(descriptor)
            with memory:
                memory[: len(pixels)] = pixels
            index = self._bring(descriptor)
            return wire.PLACE.pack(wire.OWN_FILE, wire.NOT_KEPT, 0, 0, index, 0, 0)
        segment = self._pool[number]
        self._lent.append(segment)
        index = -1 if segment.known else self._bring(segment.descriptor)
        return wire.PLACE.pack(wire.SEGMENT, wire.NOT_KEPT, 0, number, index, 0, 0)

    def _bring(self, descriptor: int) -> int:
        """The index of a descriptor that the frame takes along."""
        self.descriptors.append(descriptor)
        return len(self.descriptors) - 1

    def sent(self) -> None:
        for segment in self._lent:
            segment.known = True

    def cancel(self) -> None:
        """The message won't be sent."""
        for segment in self._lent:
            segment.lent -= 1

    def close(self) -> None:
        for descriptor in self._own:
            os.close(descriptor)


class IncomingArrays(wire.NoArrays):
    """The pixels that the peer's frames only name."""

    def __init__(self) -> None:
        self.page: memoryview | None = None
        self.lock = threading.Lock()
        self.returned: collections.deque[int] = collections.deque()  # numbers of segments
        self.descriptors: list[int] = []
        self.segments: dict[int, int] = {}
        self.kept_arrays: dict[int, wire.Bytes] = {}

    def set_page(self, descriptor: int) -> None:
        page = _map(descriptor, mmap.ACCESS_WRITE)
        if len(page) != LEASE_PAGE or page[:8] != PAGE_HEAD:
            raise wire.WireError("a lease page that is none")
        self.page = memoryview(page)
        self.counters = self.page[COUNTERS_AT: COUNTERS_AT + 4 * wire.MOST_SEGMENTS].cast("I")

    def taken(self, frames: int) -> None:
        if self.page is not None:
            self.page[8:16].cast("Q")[0] = frames

    def outside(self, place: tuple[int, int, int, int], size: int) -> memoryview:
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

    def _give_back(self, number: int) -> None:
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

    def forget(self, numbers: list[int]) -> None:
        for number in numbers:
            if number not in self.segments:
                raise wire.WireError(f"the segment {number} is forgotten, which was never there")
            os.close(self.segments.pop(number))

    def kept(self, number: int) -> wire.Bytes:
        if number not in self.kept_arrays:
            return super().kept(number)
        return self.kept_arrays[number]

    def keep(self, number: int, pixels: wire.Bytes) -> None:
        self.kept_arrays[number] = pixels

    def close(self) -> None:
        self.forget(list(self.segments))
