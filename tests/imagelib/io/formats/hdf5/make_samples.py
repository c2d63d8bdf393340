# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Makes the HDF5 files of the tests with h5py: make_samples.py GROUP FOLDER.
import ctypes
import os
import struct
import sys
import zlib

# Plug-ins that happen to be installed would change the values of their filters.
os.environ["HDF5_PLUGIN_PRELOAD"] = "::"

import h5py
import numpy as np

HEIGHT, WIDTH = 23, 37
BITSHUFFLE, LZ4, ZSTD = 32008, 32004, 32015


def pattern(frames, dtype="u4", first=0, height=HEIGHT, width=WIDTH):
    """The frames that the tests expect: small steps that differ for every frame, row and column."""
    dtype = np.dtype(dtype)
    f, y, x = np.ogrid[first:first + frames, 0:height, 0:width]
    values = (f * 37 + y * 11 + x * 3) % (101 if dtype.itemsize == 1 else 30011)
    if dtype.kind == "f":
        return ((values % 2001) * 0.25 - 100).astype(dtype)
    return (values - (50 if dtype.kind == "i" else 0)).astype(dtype)


def create(name, data, path="entry/data/data", chunks=None, **options):
    with h5py.File(name, "a", libver=options.pop("libver", None)) as f:
        return f.create_dataset(path, data=data, chunks=chunks, **options).name


# --- filters, packed here so that reading is not checked against our own packing ---------------

_lz4 = ctypes.CDLL("liblz4.so.1")


def lz4(block):
    room = ctypes.create_string_buffer(_lz4.LZ4_compressBound(len(block)))
    size = _lz4.LZ4_compress_default(block, room, len(block), len(room))
    return room.raw[:size]


def lz4_chunk(data, block=4096):
    raw = data.tobytes()
    out = struct.pack(">QI", len(raw), block)
    for i in range(0, len(raw), block):
        packed = lz4(raw[i:i + block])
        if len(packed) >= len(raw[i:i + block]):
            packed = raw[i:i + block]
        out += struct.pack(">I", len(packed)) + packed
    return out


def bitshuffled(block):
    """Bit k of all elements, then bit k + 1: eight elements a byte, the first in bit 0."""
    size = block.dtype.itemsize
    bits = np.unpackbits(block.view("u1").reshape(-1, size), axis=1, bitorder="little")
    return np.packbits(bits.T.reshape(size * 8, -1), axis=1, bitorder="little").tobytes()


def bitshuffle_lz4_chunk(data, elements=0):
    data = np.ascontiguousarray(data).reshape(-1)
    size = data.dtype.itemsize
    elements = elements or max(8192 // size // 8 * 8, 128)
    out = struct.pack(">QI", data.nbytes, elements * size)
    whole = len(data) // 8 * 8
    for i in range(0, whole, elements):
        packed = lz4(bitshuffled(data[i:min(i + elements, whole)]))
        out += struct.pack(">I", len(packed)) + packed
    return out + data[whole:].tobytes()


def create_raw(name, data, filters, pack, masks=None, path="entry/data/data"):
    """A data set with filters that h5py does not have: its chunks are written as bytes."""
    with h5py.File(name, "a") as f:
        plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        plist.set_chunk((1,) + data.shape[1:])
        for number, values in filters:
            plist.set_filter(number, h5py.h5z.FLAG_OPTIONAL, values)
        links = h5py.h5p.create(h5py.h5p.LINK_CREATE)
        links.set_create_intermediate_group(True)
        dataset = h5py.h5d.create(f.id, path.encode(), h5py.h5t.py_create(data.dtype),
                                  h5py.h5s.create_simple(data.shape), plist, links)
        for i, frame in enumerate(data):
            mask = masks[i] if masks else 0
            dataset.write_direct_chunk((i, 0, 0), frame.tobytes() if mask else pack(frame), mask)


# --- groups -------------------------------------------------------------------------------------

def frames():
    for dtype in ["u1", "u2", "u4", "u8", "i1", "i2", "i4", "i8", "f2", "f4", "f8"]:
        for order in "<>":
            kind = ("le_" if order == "<" else "be_") + dtype
            data = pattern(3, order + dtype)
            create(f"contiguous_{kind}.h5", data)
            create(f"chunked_{kind}.h5", data, chunks=(1, HEIGHT, WIDTH), compression="gzip")
    with h5py.File("bool.h5", "w") as f:
        f["entry/data/data"] = pattern(2) % 2 == 1
    half = np.array([[0.0, -0.0, 6e-8, -6e-8, 6.1e-5, 65504, -65504, np.inf, -np.inf, np.nan]], "f2")
    create("half_specials.h5", half.reshape(1, 2, 5))

    data = pattern(5)
    layouts = {
        "one_frame_chunks": (1, HEIGHT, WIDTH), "two_frame_chunks": (2, HEIGHT, WIDTH),
        "tiles": (1, 8, 16), "tiles_of_frames": (3, 10, 37), "rows": (1, 1, WIDTH),
    }
    for name, chunks in layouts.items():
        create(f"{name}.h5", data, chunks=chunks)
        create(f"{name}_gzip.h5", data, chunks=chunks, shuffle=True, compression="gzip")
        create(f"{name}_half.h5", pattern(5, ">f2"), chunks=chunks, compression="gzip")
    create("contiguous.h5", data)
    create("resizable_wide_chunks.h5", data, chunks=(1, 64, 64),
           maxshape=(None, None, None), compression="gzip")
    create("two_d.h5", data[1])
    create("two_d_chunked.h5", data[1], chunks=(8, WIDTH), compression="gzip")
    modules = pattern(6, "u2").reshape(3, 2, HEIGHT, WIDTH)
    create("modules.h5", modules)
    create("modules_chunked.h5", modules, chunks=(1, 1, HEIGHT, WIDTH), compression="gzip")
    create("checksum.h5", data, chunks=(1, HEIGHT, WIDTH), fletcher32=True)
    create("scaleoffset.h5", data, chunks=(1, HEIGHT, WIDTH), scaleoffset=0)
    with h5py.File("compact.h5", "w") as f:
        plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        plist.set_layout(h5py.h5d.COMPACT)
        dataset = h5py.h5d.create(f.id, b"data", h5py.h5t.NATIVE_UINT32,
                                  h5py.h5s.create_simple(data.shape), plist)
        dataset.write(h5py.h5s.ALL, h5py.h5s.ALL, data)
    with h5py.File("user_block.h5", "w", userblock_size=1024) as f:
        f["entry/data/data"] = data
    with h5py.File("external_storage.h5", "w") as f:
        f.create_dataset("data", data=data, external=[("raw.bin", 0, h5py.h5f.UNLIMITED)])
    with h5py.File("never_begun.h5", "w") as f:
        f.create_dataset("data", shape=(5, HEIGHT, WIDTH), dtype=">f2", chunks=(2, 8, 8),
                         fillvalue=1.5, compression="gzip")
    with h5py.File("never_written.h5", "w") as f:
        f.create_dataset("data", shape=(5, HEIGHT, WIDTH), dtype="i4", chunks=(1, HEIGHT, WIDTH),
                         fillvalue=-7)[1] = pattern(1, "i4", 1)[0]

    for kind in ["u1", "u2", "u4", "i4", "u8"]:
        create_raw(f"bslz4_{kind}.h5", pattern(3, kind),
                   [(BITSHUFFLE, (0, 3, np.dtype(kind).itemsize, 0, 2))], bitshuffle_lz4_chunk)
    create_raw("bslz4_be_u2.h5", pattern(3, ">u2"), [(BITSHUFFLE, (0, 3, 2, 0, 2))],
               bitshuffle_lz4_chunk)
    create_raw("bslz4_small_blocks.h5", pattern(3), [(BITSHUFFLE, (0, 3, 4, 64, 2))],
               lambda frame: bitshuffle_lz4_chunk(frame, 64))
    create_raw("lz4.h5", pattern(3), [(LZ4, (4096,))], lz4_chunk)
    create_raw("mixed.h5", pattern(4), [(BITSHUFFLE, (0, 3, 4, 0, 2))], bitshuffle_lz4_chunk,
               masks=[0, 1, 0, 1])
    create_raw("unknown_filter.h5", pattern(2), [(32026, ())], lambda frame: frame.tobytes())


def block(name, frames, first, path="entry/data/data", numbers=False, **options):
    create(name, pattern(frames, "u2", first), path, chunks=(1, HEIGHT, WIDTH), **options)
    if numbers:
        with h5py.File(name, "a") as f:
            f[path].attrs["image_nr_low"] = first + 1
            f[path].attrs["image_nr_high"] = first + frames


def master(prefix, sizes, start=1, planned=0, missing=(), numbers=False, target="/entry/data/data",
           folder="", nimages=None):
    """A master with blocks of the given sizes, and links to further ones that don't exist."""
    first = 0
    with h5py.File(f"{prefix}_master.h5", "w") as f:
        entry = f.create_group("entry")
        entry.attrs["NX_class"] = "NXentry"
        data = entry.create_group("data")
        data.attrs["NX_class"] = "NXdata"
        for i in range(max(planned, len(sizes))):
            name = f"{prefix}_data_{i + start:06d}.h5"
            data[f"data_{i + start:06d}"] = h5py.ExternalLink(folder + name, target)
            if i < len(sizes):
                if i not in missing:
                    block(name, sizes[i], first, numbers=numbers)
                first += sizes[i]
        if nimages:
            f["entry/instrument/detector/detectorSpecific/nimages"] = nimages
            f["entry/instrument/detector/detectorSpecific/ntrigger"] = 1


def series():
    master("one", [4, 4, 2])
    master("zero", [4, 4, 2], start=0)
    master("planned", [4, 3], planned=40)
    master("gap", [4, 4, 4, 4, 1], missing=[1, 2])
    master("firstgap", [3, 3, 3], missing=[0])
    master("uneven", [5, 2, 7, 1])
    master("long", [2] * 40)
    master("longuneven", [2] * 20 + [3] + [2] * 19)
    master("numbered", [2] * 39 + [1], numbers=True)
    master("announced", [2] * 39 + [1], nimages=79)
    master("lying", [2] * 20 + [1] + [2] * 19, nimages=80)
    master("dead", [3, 3], folder="/no/such/folder/")
    master("noslash", [3, 3], target="entry/data/data")
    master("none", [], planned=3)
    for i, size in enumerate([3, 3, 1]):
        block(f"orphan_data_{i:06d}.h5", size, 3 * i)
    block("single_data.h5", 3, 0)
    with h5py.File("single_master.h5", "w") as f:
        f["entry/data/data"] = h5py.ExternalLink("single_data.h5", "/entry/data/data")
        f["entry/instrument/beam/wavelength"] = 1.25
    master("broken", [4, 4, 4])
    with open("broken_data_000002.h5", "r+b") as f:
        f.truncate(1000)
    master("stranger", [2, 2])
    block("stranger_data_000009.h5", 5, 100)
    block("odd name.h5", 3, 0)
    with h5py.File("foreign_master.hdf5", "w") as f:
        f["entry/data/data_000001"] = h5py.ExternalLink("odd name.h5", "/entry/data/data")
    master("grow", [3, 3], planned=6)
    with h5py.File("growing.h5", "w", libver="latest") as f:
        f.create_dataset("entry/data/data", data=pattern(2, "u2"), chunks=(1, HEIGHT, WIDTH),
                         maxshape=(None, HEIGHT, WIDTH))


def layouts():
    data = pattern(3, "u2")

    def make(name, path, attributes=(), more=()):
        with h5py.File(name + ".h5", "w") as f:
            f[path] = data
            for where, key, value in attributes:
                f.require_group(where).attrs[key] = value
            for where, value in more:
                f[where] = value

    make("entry1", "entry1/data/data", [("entry1", "NX_class", "NXentry")])
    make("default", "scan/plot/counts",
         [("/", "default", "scan"), ("scan", "default", "plot"), ("scan/plot", "signal", "counts"),
          ("scan/plot", "NX_class", "NXdata")], [("aaa/data", np.zeros((2, 2)))])
    make("signal", "entry/other/counts",
         [("entry", "NX_class", "NXentry"), ("entry/other", "NX_class", "NXdata"),
          ("entry/other", "signal", "counts")], [("entry/other/axis", np.zeros((9, 9)))])
    make("signal_missing", "entry/data/frames",
         [("entry/data", "signal", "nowhere"), ("entry/data", "NX_class", "NXdata")])
    make("old_entry_data", "entry/data")
    make("old_blocks", "entry/data_01", more=[("entry/data_02", pattern(2, "u2", 3))])
    make("lima", "entry_0000/measurement/data",
         [("/", "default", "entry_0000"), ("entry_0000", "NX_class", "NXentry"),
          ("entry_0000/measurement", "NX_class", "NXcollection")])
    make("cxi", "entry_1/instrument_1/detector_1/data", [("entry_1", "NX_class", "NXentry")])
    make("detector", "entry/instrument/detector/data", [("entry", "NX_class", "NXentry")])
    make("exchange", "exchange/data", more=[("exchange/dark", np.zeros((1, 90, 90)))])
    make("largest", "deep/down/cube",
         more=[("deep/list", np.arange(10)), ("deep/matrix", np.zeros((300, 300)))])
    make("block_in_file", "entry/data/data_000001", more=[("entry/data/data_000002", data[:1])])
    with h5py.File("soft.h5", "w") as f:
        f["real/frames"] = data
        f["entry/data/data"] = h5py.SoftLink("/real/frames")
    with h5py.File("loops.h5", "w") as f:
        f["entry/data/data"] = data
        f["entry/instrument/loop"] = h5py.SoftLink("/entry/instrument/loop")
        f["entry/instrument/up"] = h5py.SoftLink("/entry")
        f["entry/instrument/self"] = h5py.ExternalLink("loops.h5", "/entry")
        f["entry/hard"] = f["entry"]
    with h5py.File("loop_only.h5", "w") as f:
        f["entry/data/data"] = h5py.ExternalLink("loop_only.h5", "/entry/data/data")
    with h5py.File("nothing.h5", "w") as f:
        f["entry/title"] = "no images"
    with h5py.File("rank5.h5", "w") as f:
        f["entry/data/data"] = np.zeros((1, 1, 1, 2, 2))
    with h5py.File("compound.h5", "w") as f:
        f["entry/data/data"] = np.zeros((2, 3, 4), [("a", "u2"), ("b", "u2")])
    with h5py.File("text.h5", "w") as f:
        f["entry/data/data"] = np.full((2, 3, 4), b"abc")
    with h5py.File("empty.h5", "w") as f:
        f.create_dataset("entry/data/data", shape=(0, 5, 5), maxshape=(None, 5, 5), dtype="u2")


def virtual():
    for i in range(3):
        create(f"source_{i}.h5", pattern(2, "u2", 2 * i), "data", chunks=(1, HEIGHT, WIDTH),
               compression="gzip")

    def stack(name, sources, dtype="u2", shape=(6, HEIGHT, WIDTH), fill=0):
        layout = h5py.VirtualLayout(shape=shape, dtype=dtype)
        for i, source in enumerate(sources):
            if source:
                layout[2 * i:2 * i + 2] = h5py.VirtualSource(source, "data",
                                                             shape=(2, HEIGHT, WIDTH))
        with h5py.File(name, "a", libver="latest") as f:
            f.create_virtual_dataset("entry/data/data", layout, fillvalue=fill)

    stack("stack.h5", ["source_0.h5", "source_1.h5", "source_2.h5"])
    stack("stack_master.h5", ["stack_data_000001.h5", "stack_data_000002.h5"],
          shape=(4, HEIGHT, WIDTH))
    for i in range(2):
        create(f"stack_data_{i + 1:06d}.h5", pattern(2, "u2", 2 * i), "data")
    stack("wider.h5", ["source_0.h5", "source_1.h5", "source_2.h5"], dtype="u4")
    stack("floating.h5", ["source_0.h5", "source_1.h5", "source_2.h5"], dtype="f8")
    stack("missing.h5", ["source_0.h5", "lost.h5", "source_2.h5"])
    stack("unmapped.h5", ["source_0.h5", None, "source_2.h5"], fill=77)
    stack("nested.h5", [None, None, None])
    with h5py.File("same_file.h5", "w", libver="latest") as f:
        f["raw"] = pattern(4, "u2")
        layout = h5py.VirtualLayout(shape=(4, HEIGHT, WIDTH), dtype="u2")
        layout[...] = h5py.VirtualSource(f["raw"])
        f.create_virtual_dataset("entry/data/data", layout)
    with h5py.File("before.h5", "w", libver="latest") as f:
        f["raw"] = pattern(4, "u2")
        layout = h5py.VirtualLayout(shape=(4, HEIGHT, WIDTH), dtype="u2")
        layout[...] = h5py.VirtualSource("before.h5", "raw", shape=(4, HEIGHT, WIDTH))
        f.create_virtual_dataset("entry/data/data", layout)
    os.rename("before.h5", "renamed.h5")

    layout = h5py.VirtualLayout(shape=(4, HEIGHT, WIDTH), dtype="u2")
    for i in range(2):
        create(f"every_{i}.h5", pattern(4, "u2")[i::2], "data")
        layout[i::2] = h5py.VirtualSource(f"every_{i}.h5", "data", shape=(2, HEIGHT, WIDTH))
    with h5py.File("interleaved.h5", "w", libver="latest") as f:
        f.create_virtual_dataset("entry/data/data", layout)

    # Two modules of 10 rows with a gap of three, one of them cut out of a larger source.
    layout = h5py.VirtualLayout(shape=(2, HEIGHT, WIDTH), dtype="u2")
    data = pattern(2, "u2")
    create("upper.h5", data[:, :10], "data")
    padded = np.zeros((2, 14, WIDTH + 6), "u2")
    padded[:, 2:12, 3:-3] = data[:, 13:]
    create("lower.h5", padded, "data", chunks=(1, 14, WIDTH + 6))
    layout[:, :10] = h5py.VirtualSource("upper.h5", "data", shape=(2, 10, WIDTH))
    layout[:, 13:] = h5py.VirtualSource("lower.h5", "data", shape=padded.shape)[:, 2:12, 3:-3]
    with h5py.File("modules.h5", "w", libver="latest") as f:
        f.create_virtual_dataset("entry/data/data", layout, fillvalue=9999)

    layout = h5py.VirtualLayout(shape=(2, HEIGHT, WIDTH), dtype="u2")
    for i in range(2):
        create(f"flat_{i}.h5", pattern(2, "u2")[i], "data")
        layout[i] = h5py.VirtualSource(f"flat_{i}.h5", "data", shape=(HEIGHT, WIDTH))
    with h5py.File("of_flat.h5", "w", libver="latest") as f:
        f.create_virtual_dataset("entry/data/data", layout)

    # Every other column: too irregular to follow, read by the library.
    layout = h5py.VirtualLayout(shape=(2, HEIGHT, 2 * WIDTH), dtype="u2")
    for i in range(2):
        create(f"comb_{i}.h5", pattern(2, "u2", i), "data")
        layout[:, :, i::2] = h5py.VirtualSource(f"comb_{i}.h5", "data", shape=(2, HEIGHT, WIDTH))
    with h5py.File("comb.h5", "w", libver="latest") as f:
        f.create_virtual_dataset("entry/data/data", layout)
    layout[:, :, 1::2] = h5py.VirtualSource("lost.h5", "data", shape=(2, HEIGHT, WIDTH))
    with h5py.File("comb_missing.h5", "w", libver="latest") as f:
        f.create_virtual_dataset("entry/data/data", layout)

    with h5py.File("ring_a.h5", "w", libver="latest") as f:
        layout = h5py.VirtualLayout(shape=(2, HEIGHT, WIDTH), dtype="u2")
        layout[...] = h5py.VirtualSource("ring_b.h5", "data", shape=(2, HEIGHT, WIDTH))
        f.create_virtual_dataset("data", layout)
    with h5py.File("ring_b.h5", "w", libver="latest") as f:
        layout = h5py.VirtualLayout(shape=(2, HEIGHT, WIDTH), dtype="u2")
        layout[...] = h5py.VirtualSource("ring_a.h5", "data", shape=(2, HEIGHT, WIDTH))
        f.create_virtual_dataset("data", layout)

    with h5py.File("ring_endless.h5", "w", libver="latest") as f:
        plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        space = h5py.h5s.create_simple((2, HEIGHT, WIDTH), (h5py.h5s.UNLIMITED, HEIGHT, WIDTH))
        space.select_hyperslab((0, 0, 0), (h5py.h5s.UNLIMITED, 1, 1), block=(1, HEIGHT, WIDTH))
        plist.set_virtual(space, b".", b"data", space)
        h5py.h5d.create(f.id, b"data", h5py.h5t.NATIVE_UINT16, space, plist)
    layout = h5py.VirtualLayout(shape=(2, HEIGHT, 2 * WIDTH), dtype="u2")
    layout[:, :, ::2] = h5py.VirtualSource("comb.h5", "entry/data/data",
                                           shape=(2, HEIGHT, 2 * WIDTH))[:, :, ::2]
    with h5py.File("comb_of_comb.h5", "w", libver="latest") as f:
        f.create_virtual_dataset("entry/data/data", layout)

    # Sources by number, without end.
    with h5py.File("numbered.h5", "w", libver="latest") as f:
        plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        space = h5py.h5s.create_simple((6, HEIGHT, WIDTH), (h5py.h5s.UNLIMITED, HEIGHT, WIDTH))
        space.select_hyperslab((0, 0, 0), (h5py.h5s.UNLIMITED, 1, 1), stride=(2, 1, 1),
                               block=(2, HEIGHT, WIDTH))
        source = h5py.h5s.create_simple((2, HEIGHT, WIDTH))
        plist.set_virtual(space, b"source_%b.h5", b"data", source)
        h5py.h5d.create(f.id, b"data", h5py.h5t.NATIVE_UINT16, space, plist)


def headers():
    with h5py.File("full_master.h5", "w") as f:
        entry = f.create_group("entry")
        entry.attrs["NX_class"] = np.bytes_("NXentry")
        entry["definition"] = "NXmx"
        entry["start_time"] = "2024-05-06T07:08:09.123"
        f["entry/data/data"] = pattern(4, "u4")
        beam = f.create_group("entry/instrument/beam")
        beam["wavelength"] = 0.97
        beam["wavelength"].attrs["units"] = "angstrom"
        beam["total_flux"] = 1.5e12
        f["entry/instrument/attenuator/attenuator_transmission"] = 0.25
        detector = f.create_group("entry/instrument/detector")
        detector.attrs["NX_class"] = "NXdetector"

        def put(name, value, units=None):
            detector[name] = value
            if units:
                detector[name].attrs["units"] = units

        put("beam_center_x", np.float32(18.5), "pixel")
        put("beam_center_y", np.array([11.25], "f4"), "pixel")
        put("detector_distance", 151.5, "mm")
        put("x_pixel_size", 7.5e-5, "m")
        put("y_pixel_size", 75.0, "um")
        put("saturation_value", np.uint32(46000))
        put("sensor_thickness", 0.45, "mm")
        put("threshold_energy", 6.35, "keV")
        put("count_time", 9.5, "ms")
        put("frame_time", 0.01, "s")
        put("description", np.bytes_("Detector 1M"))
        put("detector_number", "E-01-0001")
        f["entry/instrument/detector/detectorSpecific/nimages"] = 4
        f["entry/instrument/detector/detectorSpecific/flatfield"] = np.ones((70, 70), "f4")
        omega = f.create_dataset("entry/sample/goniometer/omega", data=[10.0, 10.5, 11.0, 11.5])
        omega.attrs["units"] = "degree"
        f["entry/sample/goniometer/omega_range_average"] = 0.5
    mask = np.zeros((HEIGHT, WIDTH), "u4")
    mask[0, 1], mask[1, 0], mask[2, 2], mask[3, 3], mask[4, 4] = 1, 8, 1 << 8, 1 << 31, 1 << 6 | 2
    for name, data, extra in [
            ("u4", mask, {}), ("u1", (mask & 255).astype("u1"), {}),
            ("i4", mask.astype("i4"), {}), ("rank3", mask[None], {}),
            ("turned", np.ascontiguousarray(mask.T), {}), ("wrong", mask[:5], {}),
            ("gzip", mask, {"compression": "gzip"})]:
        with h5py.File(f"mask_{name}.h5", "w") as f:
            f["entry/data/data"] = pattern(3)
            f.create_dataset("entry/instrument/detector/pixel_mask", data=data, **extra)
    with h5py.File("mask_specific.h5", "w") as f:
        f["entry/data/data"] = pattern(3)
        f["entry/instrument/detector/detectorSpecific/pixel_mask"] = mask
    with h5py.File("mask_second.h5", "w") as f:
        f["entry/data/data"] = pattern(3)
        f["entry/instrument/detector/pixel_mask"] = mask & 1
        f["entry/instrument/detector/pixel_mask_2"] = mask & ~np.uint32(1)
    with h5py.File("mask_linked.h5", "w") as f:
        f["entry/data/data"] = pattern(3)
        f["entry/instrument/detector/pixel_mask"] = h5py.ExternalLink(
            "mask_u4.h5", "/entry/instrument/detector/pixel_mask")
    with h5py.File("mask_lost.h5", "w") as f:
        f["entry/data/data"] = pattern(3)
        f["entry/instrument/detector/pixel_mask"] = h5py.ExternalLink("lost.h5", "/mask")
    with h5py.File("meta.h5", "w") as f:
        f["detector/detector_distance"] = 0.3
    with h5py.File("linked_meta.nxs", "w") as f:
        f["entry/data/data"] = pattern(1)
        f["entry/instrument/detector"] = h5py.ExternalLink("meta.h5", "/detector")


def damage():
    create("whole.h5", pattern(3, "u2"), chunks=(1, HEIGHT, WIDTH), compression="gzip")
    whole = open("whole.h5", "rb").read()
    open("cut.h5", "wb").write(whole[:len(whole) // 2])
    open("cut_tiny.h5", "wb").write(whole[:20])
    with h5py.File("whole.h5") as f:
        info = f["entry/data/data"].id.get_chunk_info(1)
    bad = bytearray(whole)
    for i in range(info.byte_offset + 10, info.byte_offset + info.size):
        bad[i] ^= 0x5A
    open("bad_chunk.h5", "wb").write(bad)
    with h5py.File("huge_count.h5", "w") as f:
        f.create_dataset("data", shape=(1000, 2167, 2070), dtype="u4", chunks=(1, 2167, 2070))
    with h5py.File("huge_frame.h5", "w") as f:
        f.create_dataset("data", shape=(1, 60000, 60000), dtype="u1", chunks=(1, 100, 100))
    with h5py.File("large_frame.h5", "w") as f:
        f.create_dataset("data", shape=(1, 40000, 40000), dtype="u8", chunks=(1, 1000, 1000))
    with h5py.File("wide.h5", "w") as f:
        f.create_dataset("data", shape=(1, 1, 1 << 40), dtype="u1", chunks=(1, 1, 1 << 20))
    create_raw("short_bslz4.h5", pattern(2), [(BITSHUFFLE, (0, 3, 4, 0, 2))],
               lambda frame: bitshuffle_lz4_chunk(frame)[:-200])
    create_raw("lying_bslz4.h5", pattern(2), [(BITSHUFFLE, (0, 3, 4, 0, 2))],
               lambda frame: struct.pack(">Q", 1 << 60) + bitshuffle_lz4_chunk(frame)[8:])
    pipe = os.path.abspath("pipe")
    os.mkfifo(pipe)
    with h5py.File("pipe_pixels.h5", "w") as f:
        f.create_dataset("data", shape=(2, 4, 4), dtype="u2", external=[(pipe, 0, 64)])
    with h5py.File("pipe_value.h5", "w") as f:
        f["entry/data/data"] = pattern(2)
        f["entry"].create_dataset("value", shape=(4,), dtype="i4", external=[(pipe, 0, 16)])
    with h5py.File("bomb_value.h5", "w") as f:
        f["entry/data/data"] = pattern(2)
        detector = f.create_group("entry/instrument/detector")
        bomb = detector.create_dataset("detector_distance", shape=(1,), maxshape=(None,),
                                       dtype="f4", chunks=(24 << 20,), compression="gzip")
        bomb.id.write_direct_chunk((0,), zlib.compress(bytes(96 << 20)))
    create_raw("long_plain.h5", pattern(2), [], lambda frame: frame.tobytes() + bytes(500_000))


if __name__ == "__main__":
    os.chdir(sys.argv[2])
    globals()[sys.argv[1]]()
