# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Messages to frames and back. The form of the bytes is that of docs/protocols/queue.md.

A text is bytes, an image an Image, a drawing list a list of Pixel, Line, Text and Ellipse.
Decoding trusts nothing: whatever does not follow the protocol is a WireError.
"""

from __future__ import annotations

import dataclasses
import struct
from collections.abc import Sequence
from typing import TYPE_CHECKING, Any, TypeAlias

if TYPE_CHECKING:
    import numpy
    import numpy.typing

Bytes: TypeAlias = bytes | bytearray | memoryview
Colour: TypeAlias = tuple[int, int, int, int]

MAGIC = b"TVMQ"
VERSION = 1
HELLO, TEXT, IMAGE, LIST, FORGET = 1, 2, 3, 4, 5
NOWHERE, INLINE, SEGMENT, OWN_FILE, KEPT = 0, 1, 2, 3, 4
NOT_KEPT = 0xFF
MOST_KEPT = 8
MOST_SEGMENTS = 1024
MOST_META = MOST_BULK = 64 << 20
PADDING = 64

HEAD = struct.Struct("<4sHHIIQQ")
PLACE = struct.Struct("<BBHIiIQ")

# Kinds of pixels: 1 bool, 2 char, 3 unsigned, 4 signed, 5 floating; with their bits.
PIXEL_FORMATS = {(1, 8): "?", (2, 8): "b", (3, 8): "B", (4, 8): "b", (3, 16): "H", (4, 16): "h",
                 (3, 32): "I", (4, 32): "i", (3, 64): "Q", (4, 64): "q", (5, 32): "f",
                 (5, 64): "d"}

INT_FIELDS = {"saturation_value"}
TEXT_FIELDS = {"data_collection_date", "description", "detector_number", "imageDescription",
               "rawHeader"}
FLOAT_FIELDS = {"beam_center_x", "beam_center_y", "detector_distance", "wavelength",
                "x_pixel_size", "y_pixel_size", "rotation_angle", "rotation_angle_step",
                "filter_transmission", "sensor_thickness", "threshold_energy", "count_time",
                "frame_time", "beam_flux"}


class WireError(Exception):
    """Bytes that do not follow the protocol, or a message that it can't carry."""


@dataclasses.dataclass
class Image:
    """Pixels row by row, x fastest, with the header of optional fields.

    `pixels` is any buffer of width * height little-endian values. `header` maps the names of the
    fields that are set to numbers, bytes or, for "pixel_mask", an Image; `tree` maps paths to
    pairs of a value and a dictionary of attributes.
    """

    width: int = 0
    height: int = 0
    type: int = 0
    bits: int = 0
    pixels: Bytes = b""
    header: dict[str, Any] = dataclasses.field(default_factory=dict)
    tree: dict[str, tuple[Any, dict[str, Any]]] = dataclasses.field(default_factory=dict)

    @property
    def size(self) -> int:
        return self.width * self.height * self.bits // 8

    def view(self) -> memoryview:
        """The pixels as a flat memoryview of numbers."""
        flat = memoryview(self.pixels).cast("B")
        return flat[: self.size].cast(PIXEL_FORMATS[self.type, self.bits])

    def array(self) -> numpy.typing.NDArray[Any]:
        """The pixels as a NumPy array of height rows, not copied."""
        import numpy

        return numpy.frombuffer(self.view(), dtype=self.view().format).reshape(
            self.height, self.width)

    @classmethod
    def from_array(cls, array: numpy.typing.NDArray[Any],
                   header: dict[str, Any] | None = None) -> Image:
        """An image of a two-dimensional NumPy array."""
        import numpy

        kinds = {"b": 1, "u": 3, "i": 4, "f": 5}
        kind, bits = kinds.get(array.dtype.kind, 0), array.dtype.itemsize * 8
        if array.ndim != 2 or (kind, bits) not in PIXEL_FORMATS:
            raise WireError(f"no image: {array.ndim} dimensions of {array.dtype}")
        array = numpy.ascontiguousarray(array, dtype=array.dtype.newbyteorder("<"))
        return cls(array.shape[1], array.shape[0], kind, bits, memoryview(array.data).cast("B")
                   if array.size else b"", dict(header or {}))


@dataclasses.dataclass
class Pixel:
    """A cross on the middle of the pixel (x, y). Colours are red, green, blue and alpha, 0 to 255."""

    x: float
    y: float
    colour: Colour = (255, 255, 255, 255)


@dataclasses.dataclass
class Line:
    """A line between two positions; the middle of the first pixel is (0.5, 0.5)."""

    x_begin: float
    y_begin: float
    x_end: float
    y_end: float
    colour: Colour = (255, 255, 255, 255)


@dataclasses.dataclass
class Text:
    """A text that begins on the middle of the pixel (x, y)."""

    x: float
    y: float
    text: bytes | str
    colour: Colour = (255, 255, 255, 255)


@dataclasses.dataclass
class Ellipse:
    """An ellipse around a position, with the half axes rx and ry, turned by `rotation` radians."""

    x: float
    y: float
    rx: float
    ry: float
    rotation: float = 0.0
    colour: Colour = (255, 255, 255, 255)


Primitive: TypeAlias = Pixel | Line | Text | Ellipse
Message: TypeAlias = str | Bytes | Image | Sequence[Primitive]
Received: TypeAlias = bytes | Image | list[Primitive]

PRIMITIVES: list[tuple[type[Primitive], int]] = [(Pixel, 2), (Line, 4),
                                                 (Text, 2), (Ellipse, 5)]


class Reader:
    """Takes values from the front of a row of bytes."""

    def __init__(self, data: Bytes) -> None:
        self.data = memoryview(data).cast("B")

    def take(self, size: int) -> memoryview:
        if size > len(self.data):
            raise WireError(f"a message ends early: {size} bytes wanted, {len(self.data)} left")
        front, self.data = self.data[:size], self.data[size:]
        return front

    def get(self, form: str) -> Any:
        return struct.unpack("<" + form, self.take(struct.calcsize("<" + form)))[0]

    def text(self) -> bytes:
        return bytes(self.take(self.get("I")))

    def count(self, least: int) -> int:
        items = int(self.get("I"))
        if items > len(self.data) // least:
            raise WireError(f"{items} items are announced in {len(self.data)} bytes")
        return items

    def end(self) -> None:
        if self.data:
            raise WireError(f"{len(self.data)} bytes too many in a message")


def encode_head(kind: int, meta: int, bulk: int, number: int, descriptors: int = 0) -> bytes:
    return HEAD.pack(MAGIC, VERSION, kind, descriptors, meta, bulk, number)


def decode_head(data: Bytes) -> tuple[int, int, int, int, int]:
    """Returns (kind, descriptors, bytes of the description, bytes of inline data, number)."""
    if len(data) < HEAD.size:
        raise WireError("a frame without a head")
    magic, version, kind, descriptors, meta, bulk, number = HEAD.unpack(data[:HEAD.size])
    if magic != MAGIC:
        raise WireError("what came is no frame")
    if version != VERSION:
        raise WireError(f"version {version} of the protocol; version {VERSION} is spoken here")
    if not HELLO <= kind <= FORGET:
        raise WireError(f"a frame of the unknown kind {kind}")
    if meta > MOST_META or bulk > MOST_BULK or descriptors > 2:
        raise WireError(f"a frame of {meta} + {bulk} bytes is too large")
    return kind, descriptors, meta, bulk, number


def _text(data: str | Bytes) -> bytes:
    raw = data.encode() if isinstance(data, str) else bytes(data)
    return struct.pack("<I", len(raw)) + raw


def _encode_value(value: Any) -> bytes:
    if value is None:
        return b"\0"
    if isinstance(value, (bool, int)):
        return struct.pack("<Bq", 1, value)
    if isinstance(value, float):
        return struct.pack("<Bd", 2, value)
    if isinstance(value, (bytes, str)):
        return b"\3" + _text(value)
    kind = value[0] if value else 0.0
    tag, item = ((4, "<q") if isinstance(kind, int) else (5, "<d") if isinstance(kind, float)
                 else (6, None))
    items = [struct.pack(item, each) if item else _text(each) for each in value]
    return struct.pack("<BI", tag, len(items)) + b"".join(items)


def _decode_value(data: Reader) -> Any:
    tag = data.get("B")
    if tag == 0:
        return None
    if tag in (1, 2):
        return data.get("q" if tag == 1 else "d")
    if tag == 3:
        return data.text()
    if tag in (4, 5):
        return [data.get("q" if tag == 4 else "d") for _ in range(data.count(8))]
    if tag == 6:
        return [data.text() for _ in range(data.count(4))]
    raise WireError(f"a value of the unknown type {tag}")


class InlineArrays:
    """Puts all pixels into the frame itself."""

    def __init__(self) -> None:
        self.bulk: list[Bytes] = []
        self.size = 0
        self.descriptors: list[int] = []

    def place(self, pixels: memoryview) -> bytes:
        offset = self.size
        self.bulk.append(pixels)
        self.size += len(pixels)
        return PLACE.pack(INLINE, NOT_KEPT, 0, 0, -1, 0, offset)


def _encode_image(image: Image, arrays: InlineArrays, is_mask: bool = False) -> bytes:
    if image.size == 0:
        place = PLACE.pack(NOWHERE, NOT_KEPT, 0, 0, -1, 0, 0)
    else:
        place = arrays.place(memoryview(image.pixels).cast("B")[: image.size])
    out = [struct.pack("<iiBBH", image.width, image.height, image.type, image.bits, 0), place,
           struct.pack("<I", len(image.header))]
    for name, value in image.header.items():
        out.append(_text(name))
        if name == "pixel_mask":
            if is_mask:
                raise WireError("a mask can't have a mask of its own")
            out += [b"\7", _encode_image(value, arrays, True)]
        elif name in FLOAT_FIELDS:
            out.append(_encode_value(float(value)))
        elif name in INT_FIELDS:
            out.append(_encode_value(int(value)))
        else:
            out.append(_encode_value(value))
    out.append(struct.pack("<I", len(image.tree)))
    for path, (value, attributes) in image.tree.items():
        out += [_text(path), _encode_value(value), struct.pack("<I", len(attributes))]
        for name, attribute in attributes.items():
            out += [_text(name), _encode_value(attribute)]
    return b"".join(out)


class NoArrays:
    """The pixels that a frame only names, for a frame that stands alone: there are none."""

    def outside(self, place: tuple[int, int, int, int], size: int) -> memoryview:
        raise WireError("pixels outside of a frame that stands alone")

    def kept(self, number: int) -> Bytes:
        raise WireError(f"the kept array {number} was never sent")

    def keep(self, number: int, pixels: Bytes) -> None:
        pass


def _decode_pixels(data: Reader, bulk: memoryview, source: NoArrays, width: int, height: int,
                   kind: int, bits: int) -> Bytes:
    place, keep, _, number, descriptor, _, offset = PLACE.unpack(data.take(PLACE.size))
    if kind == 0:
        if width or height or bits or place != NOWHERE:
            raise WireError("pixels without a type")
        return b""
    if (kind, bits) not in PIXEL_FORMATS or width < 0 or height < 0:
        raise WireError(f"no image: {width} x {height} pixels of type {kind}, {bits} bits")
    size = width * height * bits // 8
    if (size == 0) != (place == NOWHERE):
        raise WireError("an image without its pixels")
    if size == 0:
        return b""
    if place == INLINE:
        if offset > len(bulk) or size > len(bulk) - offset:
            raise WireError("pixels beyond the end of their message")
        pixels: Bytes = bulk[offset: offset + size]
    elif place in (SEGMENT, OWN_FILE):
        pixels = source.outside((place, number, descriptor, offset), size)
    elif place == KEPT:
        pixels = source.kept(number)
        if len(pixels) != size:
            raise WireError(f"the kept array {number} is another one")
    else:
        raise WireError("pixels in an unknown place")
    if keep != NOT_KEPT:
        if keep >= MOST_KEPT:
            raise WireError(f"an array to be kept as number {keep}")
        source.keep(keep, pixels)
    return pixels


def _decode_image(data: Reader, bulk: memoryview, source: NoArrays,
                  is_mask: bool = False) -> Image:
    width, height = data.get("i"), data.get("i")
    kind, bits, _ = data.get("B"), data.get("B"), data.get("H")
    image = Image(width, height, kind, bits)
    image.pixels = _decode_pixels(data, bulk, source, width, height, kind, bits)
    for _ in range(data.count(5)):
        name = data.text().decode(errors="replace")
        if data.data[:1] == b"\7":
            data.take(1)
            if name != "pixel_mask" or is_mask or name in image.header:
                raise WireError(f"the header field {name} can't be an image")
            image.header[name] = _decode_image(data, bulk, source, True)
        else:
            image.header[name] = _decode_value(data)
    for _ in range(data.count(9)):
        path = data.text().decode(errors="surrogateescape")
        value = _decode_value(data)
        image.tree[path] = (value, {
            data.text().decode(errors="surrogateescape"): _decode_value(data)
            for _ in range(data.count(5))})
    return image


def _encode_list(items: Sequence[Primitive]) -> bytes:
    out = [struct.pack("<I", len(items))]
    for item in items:
        for number, (kind, numbers) in enumerate(PRIMITIVES):
            if isinstance(item, kind):
                values = dataclasses.astuple(item)[:numbers]
                out.append(struct.pack(f"<B4B{numbers}d", number, *item.colour, *values))
                if isinstance(item, Text):
                    out.append(_text(item.text))
                break
        else:
            raise WireError(f"no drawing primitive: {item!r}")
    return b"".join(out)


def _decode_list(data: Reader) -> list[Primitive]:
    items: list[Primitive] = []
    for _ in range(data.count(21)):
        number = data.get("B")
        if number >= len(PRIMITIVES):
            raise WireError(f"a drawing primitive of the unknown type {number}")
        red, green, blue, alpha = data.take(4)
        kind, numbers = PRIMITIVES[number]
        values: list[Any] = [data.get("d") for _ in range(numbers)]
        if kind is Text:
            values.append(data.text())
        items.append(kind(*values, colour=(red, green, blue, alpha)))
    return items


def encode(message: Message, number: int, arrays: InlineArrays | None = None) -> list[Bytes]:
    """The bytes of the frame of a message, in pieces. `arrays` places the pixels."""
    if isinstance(message, (str, bytes, bytearray, memoryview)):
        data = message.encode() if isinstance(message, str) else bytes(message)
        if len(data) > MOST_BULK:
            raise WireError(f"a text of {len(data)} bytes is too long; {MOST_BULK} are allowed")
        return [encode_head(TEXT, 0, len(data), number), data]
    if isinstance(message, Image):
        arrays = arrays or InlineArrays()
        meta = _encode_image(message, arrays)
        if len(meta) > MOST_META or arrays.size > MOST_BULK:
            raise WireError("an image is too large to stand in its frame")
        head = encode_head(IMAGE, len(meta), arrays.size, number, len(arrays.descriptors))
        return [head, meta, *arrays.bulk]
    meta = _encode_list(message)
    if len(meta) > MOST_META:
        raise WireError("a drawing list is too long")
    return [encode_head(LIST, len(meta), 0, number), meta]


def encode_hello(name: str | Bytes, process: int, descriptors: int = 0) -> bytes:
    meta = struct.pack("<I", process) + _text(name)
    return encode_head(HELLO, len(meta), 0, 0, descriptors) + meta


def decode(frame: Bytes, source: NoArrays | None = None) -> tuple[int, Any]:
    """A whole frame to (kind, content): bytes, Image, list; a hello is (process, name), a forget
    frame the list of numbers."""
    frame = memoryview(frame).cast("B")
    kind, _, meta, bulk, _ = decode_head(frame)
    if len(frame) != HEAD.size + meta + bulk:
        raise WireError(f"a frame of {len(frame)} bytes calls itself one of "
                        f"{HEAD.size + meta + bulk}")
    data = Reader(frame[HEAD.size: HEAD.size + meta])
    rest = frame[HEAD.size + meta:]
    content: Any
    if kind == TEXT:
        content = bytes(rest)
    elif kind == IMAGE:
        content = _decode_image(data, rest, source or NoArrays())
    elif kind == LIST:
        content = _decode_list(data)
    elif kind == HELLO:
        content = (data.get("I"), data.text())
    else:
        content = [data.get("I") for _ in range(data.count(4))]
    data.end()
    return kind, content
