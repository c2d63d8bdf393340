# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Writes the seeds of the fuzzers, corpus/<target>/seed-*: small files of each kind that the readers
# know. Files of past findings (found-*) stay as they are.
import base64
import bz2
import gzip
import io
import pathlib
import struct
import sys
import zlib

import numpy
from PIL import Image

ROOT = pathlib.Path(__file__).parent / "corpus"
sys.path.insert(0, str(ROOT.parents[2] / "python/src"))
from tarvik import wire


def seed(target, name, content):
    folder = ROOT / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / ("seed-" + name)).write_bytes(content)


def pixels(dtype, width=9, height=5):
    values = numpy.arange(width * height).reshape(height, width) * 7 % 101
    values[1, 2] = 100000 % (2 ** (8 * numpy.dtype(dtype).itemsize - 1))
    return values.astype(dtype)


def edf_block(image, order="LowByteFirst", more="", packed=None):
    names = {"u1": "UnsignedByte", "i2": "SignedShort", "u2": "UnsignedShort", "i4": "SignedInteger",
             "u4": "UnsignedInteger", "f4": "FloatValue", "f8": "DoubleValue", "i8": "Signed64"}
    data = image.tobytes() if packed is None else packed
    dims = "".join(f"Dim_{i + 1} = {n} ;\n" for i, n in enumerate(reversed(image.shape)))
    text = (f"{{\nHeaderID = EH:000001:000000:000000 ;\nByteOrder = {order} ;\n"
            f"DataType = {names[image.dtype.str[1:]]} ;\n{dims}Size = {len(data)} ;\n{more}")
    return text.encode() + b" " * (-(len(text) + 2) % 64) + b"}\n" + data


def make_edf():
    small = pixels("<u2")
    seed("edf", "plain", edf_block(small))
    seed("edf", "big-endian", edf_block(pixels(">i4"), "HighByteFirst"))
    seed("edf", "two-frames", edf_block(small) + edf_block(pixels("<f4")))
    seed("edf", "stack", edf_block(numpy.stack([small, small + 1])))
    fields = ("Center_1 = 4.5 ;\nPSize_1 = 172 um ;\nSampleDistance = 0.2 m ;\nEnergy = 12 keV ;\n"
              "count_time = 100 ms ;\nEDF_BinarySize = 90 ;\n")
    seed("edf", "fields", edf_block(small, more=fields))
    for name, pack in (("gzip", lambda data: gzip.compress(data, mtime=0)), ("bzip2", bz2.compress), ("z", zlib.compress)):
        packed = pack(small.tobytes())
        seed("edf", name, edf_block(small, more=f"Compression = {name} ;\n", packed=packed))
    general = b"{\nEDF_DataBlockID = 0.Image.General ;\nEDF_BinarySize = 0 ;\nPSize_2 = 1 cm ;\n}\n"
    seed("edf", "general", general + edf_block(small))
    external = 'EDF_BinaryFileName = "a.bin" ;\nEDF_BinaryFilePosition = 8 ;\n'
    seed("edf", "external", edf_block(small, more=external, packed=b""))


def byte_offset(values):
    stream, last = b"", 0
    for value in values:
        step, last = value - last, value
        for kind, width in (("<b", 8), ("<h", 16), ("<i", 32), ("<q", 64)):
            if abs(step) < 1 << (width - 1):
                stream += struct.pack(kind, step)
                break
            stream += struct.pack(kind, -(1 << (width - 1)))
    return stream


HEADER = """###CBF: VERSION 1.5
data_image

_array_data.header_convention "PILATUS_1.2"
_array_data.header_contents
;
# Detector: made, S/N 1
# 2026-01-02T03:04:05.678
# Pixel_size 172e-6 m x 172e-6 m
# Exposure_time 0.1 s
# Wavelength 1.0 A
# Detector_distance 0.2 m
# Beam_xy (4.5, 2.5) pixels
# Start_angle 0.0 deg.
;

_array_data.data
;
"""


def section(data, conversion="x-CBF_BYTE_OFFSET", kind="signed 32-bit integer", encoding="BINARY",
            size=(9, 5), more="", mark=b"\x0c\x1a\x04\xd5"):
    names = ("Fastest", "Second", "Third")
    dims = "".join(f"X-Binary-Size-{name}-Dimension: {n}\r\n" for name, n in zip(names, size))
    head = ("--CIF-BINARY-FORMAT-SECTION--\r\nContent-Type: application/octet-stream;\r\n"
            f'     conversions="{conversion}"\r\nContent-Transfer-Encoding: {encoding}\r\n'
            f'X-Binary-Size: {len(data)}\r\nX-Binary-ID: 1\r\nX-Binary-Element-Type: "{kind}"\r\n'
            f"X-Binary-Element-Byte-Order: LITTLE_ENDIAN\r\n{more}{dims}\r\n")
    return head.encode() + mark + data + b"\r\n--CIF-BINARY-FORMAT-SECTION----\r\n;\r\n"


def canonical_stream():
    # Differences of 2 bits, longer ones of 3: symbols -, 1, 2, -1 of 2 bits, the end, one more bit.
    return bytes(32) + bytes([2, 3]) + bytes([2, 2, 2, 3, 4, 4]) + bytes(255 - n % 200 for n in range(40))


def packed_stream():
    return bytes(32) + bytes(n * 29 % 251 for n in range(90))


def make_cbf():
    head = HEADER.encode()
    image = pixels("<i4")
    stream = byte_offset(int(v) for v in image.flat)
    seed("cbf", "byte-offset", head + section(stream))
    seed("cbf", "two-sections", head + section(stream) + section(image.tobytes(), "x-CBF_NONE"))
    seed("cbf", "stack", head + section(stream * 2, size=(9, 5, 2)))
    unsigned = {"kind": "unsigned 16-bit integer"}
    seed("cbf", "plain", head + section(pixels(">u2").tobytes(), "x-CBF_NONE", **unsigned)
         .replace(b"LITTLE", b"BIG"))
    seed("cbf", "packed", head + section(packed_stream(), "x-CBF_PACKED"))
    seed("cbf", "packed-v2-flat",
         head + section(packed_stream(), 'x-CBF_PACKED_V2"; "flat', **unsigned))
    seed("cbf", "canonical", head + section(canonical_stream(), "x-CBF_CANONICAL"))
    seed("cbf", "base64", head + section(base64.encodebytes(stream), encoding="BASE64", mark=b""))
    seed("cbf", "quoted", head + section(b"=01=02abc=\r\n=80=00=01" * 5, mark=b"",
                                         encoding="QUOTED-PRINTABLE"))
    seed("cbf", "numbers", head + section(b"# x\r\nH4< 0100 2\r\nO3> 1 ==77\r\nD2< 128\r\n" * 9,
                                          mark=b"", encoding="X-BASE16"))
    seed("cbf", "packed-bare", head.replace(b"data_", b"loop_\n_array_structure_list.index\n"
         b"_array_structure_list.dimension\n1 9\n2 5\n_data_") + section(packed_stream(), "x-CBF_PACKED", size=()))
    full = (b"###CBF: VERSION 1.5\ndata_1\n_diffrn.id 'D1'\nloop_\n_array_structure_list.index\n"
            b"_array_structure_list.dimension\n_array_structure_list.precedence\n1 9 1\n2 5 2\n"
            b"_diffrn_radiation_wavelength.wavelength 0.98\n_array_data.data\n;\n")
    seed("cbf", "full-imgcif", full + section(stream, size=()))
    seed("cbf", "real", head + section(pixels("<f4").tobytes(), "x-CBF_NONE",
                                       "signed 32-bit real IEEE"))


def make_streams():
    for width in range(4):
        values = [(n * 7919 % 5) * 256 ** (n % (1 << width)) for n in range(120)]
        count = struct.pack("<H", 120)
        seed("byteoffset", f"steps-{1 << width}", bytes([width]) + count + byte_offset(values))
    quiet = byte_offset([5 + n % 3 for n in range(200)] + [70000] + [5] * 100)
    seed("byteoffset", "spot", b"\x06\0\0" + quiet)
    for version in range(4):
        layout = bytes([version + 16 * (version % 3), 7, 4, 1])
        seed("cbfpacked", f"packed-{version}", layout + packed_stream())
    for width in range(4):
        seed("cbfpacked", f"nibble-{width}", bytes([128 + 16 * width, 7, 4, 0]) +
             bytes.fromhex("34386481 00c1ec3f 0042a00f fcff03") + bytes(range(8, 200, 3)))
        seed("cbfpacked", f"canonical-{width}",
             bytes([64 + 16 * width, 7, 4, 0]) + canonical_stream())


def page(tags, data, order, big):
    """A TIFF file of one page: tags as {number: (type, values)}; the strip follows the directory."""
    sizes = {1: "B", 2: "B", 3: "H", 4: "I", 16: "Q"}
    offset = "Q" if big else "I"
    width = 8 if big else 4
    head = (struct.pack(order + "2sHHHQ", b"II" if order == "<" else b"MM", 43, 8, 0, 16) if big
            else struct.pack(order + "2sHI", b"II" if order == "<" else b"MM", 42, 8))
    count = struct.pack(order + ("Q" if big else "H"), len(tags))
    begin = len(head) + len(count) + len(tags) * (20 if big else 12) + width
    entries, behind = b"", b""
    for tag, (kind, values) in sorted(tags.items()):
        if values == "data":
            values = [begin + 256]
        packed = struct.pack(order + sizes[kind] * len(values), *values)
        if len(packed) > width:
            packed, behind = struct.pack(order + offset, begin + len(behind)), behind + packed
        entries += struct.pack(order + "HH" + offset, tag, kind, len(values))
        entries += packed.ljust(width, b"\0")
    return head + count + entries + bytes(width) + behind.ljust(256, b"\0") + data


def make_tiff():
    def tags(image, bits, kind, **more):
        height, width = image.shape
        return {256: (4, [width]), 257: (4, [height]), 258: (3, [bits]), 259: (3, [1]),
                262: (3, [1]), 273: (4, "data"), 277: (3, [1]), 278: (4, [height]),
                279: (4, [image.nbytes]), 339: (3, [kind]), **more}
    text = (2, list(b"# Pixel_size 172e-6 m x 172e-6 m\n# Exposure_time 0.1 s\n\0"))
    small = pixels("<i4")
    seed("tiff", "plain", page({**tags(small, 32, 2), 270: text}, small.tobytes(), "<", False))
    swapped = pixels(">u2")
    seed("tiff", "big-endian", page(tags(swapped, 16, 1), swapped.tobytes(), ">", False))
    floats = pixels("<f8")
    seed("tiff", "big-tiff", page(tags(floats, 64, 3), floats.tobytes(), "<", True))
    bits = pixels("<u2")
    seed("tiff", "twelve-bits", page(tags(bits, 12, 1), bits.tobytes(), "<", False))
    half = pixels("<f2")
    seed("tiff", "half", page(tags(half, 16, 3), half.tobytes(), "<", False))
    tile = pixels("<u1", 16, 16)
    tiled = {**tags(tile, 8, 1), 322: (3, [16]), 323: (3, [16]), 324: (4, "data"), 325: (4, [256])}
    for strip in (273, 278, 279):
        del tiled[strip]
    seed("tiff", "tiled", page({**tiled, 256: (4, [11]), 257: (4, [13])}, tile.tobytes(), "<", False))
    image = Image.fromarray(pixels("<u2").astype("<i4"))
    for name in ("tiff_lzw", "tiff_adobe_deflate", "packbits", "tiff_lzma", "zstd"):
        out = io.BytesIO()
        image.save(out, "TIFF", compression=name)
        seed("tiff", name.replace("tiff_", "").replace("_", "-"), out.getvalue())
    out = io.BytesIO()
    image.save(out, "TIFF", save_all=True, append_images=[image, image])
    seed("tiff", "three-pages", out.getvalue())


def make_chunks():
    raw = pixels("<u2", 32, 16).tobytes()
    size = struct.pack("<H", len(raw))
    head = struct.pack(">QI", len(raw), 512)
    literal = bytes([0xf0, 255, 512 - 15 - 255]) + raw[:512]  # LZ4: literals alone
    blocks = b"".join(struct.pack(">I", len(b)) + b for b in (literal, b"\xf0" + bytes(9)))
    seed("chunk", "lz4", b"\x19" + size + b"\0" + head + blocks)
    stored = struct.pack(">I", 512) + raw[:512] + struct.pack(">I", 512) + raw[512:]
    seed("chunk", "lz4-stored", b"\x09" + size + b"\0" + head + stored)
    for packing in (0, 2, 3):
        filters = b"\1" + bytes([2, 0, 0, packing])
        seed("chunk", f"bitshuffle-{packing}",
             b"\x19" + size + filters + (head + blocks if packing else raw))
    seed("chunk", "deflate", b"\x11" + size + b"\3" + zlib.compress(raw))
    seed("chunk", "shuffle-deflate", b"\x15" + size + b"\2\2\3" + zlib.compress(raw))


def make_hdf5():
    names = {"entry": 0, "data": 1, "instrument": 2, "detector": 3, "data_000001": 4,
             "data_000002": 5, "detectorSpecific": 7, "pixel_mask": 8, "nimages": 10, "sample": 13,
             "x_pixel_size": 16, "transformations": 21, "omega": 22, "depends_on": 27}
    def group(parent, name):
        return bytes([1, parent, names[name]])
    def array(parent, name, kind, rank, extents, layout=b"\0"):
        ranks = {3: 0, 2: 1, 0: 3, 1: 4, 4: 5}
        return (bytes([3, parent, names[name], kind, ranks[rank], 1]) + bytes(extents) + layout +
                b"\7\3")
    def external(parent, name, file, path):
        return bytes([8, parent, names[name], path, 1, file])
    def turn(file):
        return bytes([0, file])
    # Parents: 0 the root, 1 and on what was made below it. Extents 3 and 4 are 5 and 8.
    block = group(0, "entry") + group(1, "data") + array(2, "data", 0, 3, (2, 3, 4))
    master = (group(0, "entry") + group(1, "data") + external(2, "data_000001", 1, 0) +
              external(2, "data_000002", 2, 0))
    detector = (group(1, "instrument") + group(3, "detector") + array(4, "pixel_mask", 1, 2, (3, 4)) +
                array(4, "nimages", 1, 0, ()) + array(4, "x_pixel_size", 7, 0, ()) +
                group(4, "detectorSpecific"))
    klass = b"".join(bytes([6, n, 0, n - 1, 0]) for n in (1, 2))
    seed("hdf5", "series", b"\0" + turn(1) + block + turn(2) + block + turn(0) + master)
    seed("hdf5", "header", b"\0" + turn(1) + block + turn(0) + master + klass + detector)
    seed("hdf5", "data-file", b"\3" + turn(1) + block + turn(2) + block)
    chunked = b"\3" + bytes([0, 3, 4]) + bytes([4 << 2 | 128, 0])
    chunk = bytes([5, 0, 1, 0, 0, 20]) + struct.pack(">QIIB", 80, 80, 9, 0xF0) + bytes(8)
    seed("hdf5", "chunks", b"\0" + group(0, "entry") + array(1, "data", 0, 3, (2, 3, 4), chunked)
         + chunk)
    sample = (group(1, "sample") + group(2, "transformations") + array(3, "omega", 7, 1, (3,)) +
              bytes([6, 4, 3, 12, 0]) + array(2, "depends_on", 206, 0, (), b"\0\x28\0\x12"))
    seed("hdf5", "axes", b"\0" + group(0, "entry") + sample + array(1, "data", 1, 3, (2, 3, 4)))
    whole = bytes([0, 0, 0])
    virtual = (bytes([9, 1, names["data"], 0, 1, 2, 3, 4, 0]) + whole + bytes([1, 0, 0, 1, 2, 3, 4, 0]))
    seed("hdf5", "virtual", b"\0" + turn(1) + block + turn(0) + group(0, "entry") + virtual)


class Outside(wire.InlineArrays):
    def place(self, pixels):
        return wire.PLACE.pack(2, wire.NOT_KEPT, 0, 1, 0, 0, 0)


def make_queue():
    def parts(*pieces, descriptors=0):
        frame = b"".join(pieces)
        kind, _, meta, _, _ = wire.decode_head(frame)
        return b"\0" + struct.pack("<BBH", kind, descriptors, meta) + frame[wire.HEAD.size:]
    numbers = struct.pack("<III", 2, 5, 6)
    seed("queue", "hello", parts(wire.encode_hello("preload", 77), descriptors=1))
    seed("queue", "text", parts(*wire.encode("openImage a.cbf", 9)))
    seed("queue", "forget", parts(wire.encode_head(wire.FORGET, len(numbers), 0, 9), numbers))
    image = wire.Image.from_array(pixels("<u2", 4, 3))
    seed("queue", "image", parts(*wire.encode(image, 9)))
    image.header = {"wavelength": 0.98, "description": "made", "pixel_mask": wire.Image.from_array(image.array())}
    image.tree = {"/entry/x": ([1.0, 2.0], {"units": "m"})}
    seed("queue", "header", parts(*wire.encode(image, 9, Outside())))
    drawing = [wire.Pixel(0, 1), wire.Line(0, 1, 2, 3), wire.String(0, 1, b"spot"),
               wire.Ellipse(0, 1, 2, 3, 4)]
    seed("queue", "drawing", parts(*wire.encode(drawing, 9)))
    seed("queue", "whole-frame", b"\1" + b"".join(wire.encode("text", 9)))


make_edf()
make_cbf()
make_streams()
make_tiff()
make_chunks()
make_hdf5()
make_queue()
