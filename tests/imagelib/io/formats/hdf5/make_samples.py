# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Makes the HDF5 files of the tests with h5py: make_samples.py FOLDER GROUP..., a folder each."""
import ctypes
import os
import struct
import sys
import time
import zlib

# Plug-ins that happen to be installed would change the values of their filters.
os.environ["HDF5_PLUGIN_PRELOAD"] = "::"

import h5py
import numpy as np

HEIGHT, WIDTH = 23, 37
BITSHUFFLE, LZ4 = 32008, 32004
DATA = "entry/data/data"
DETECTOR = "entry/instrument/detector/"


def pattern(frames, dtype="u2", first=0):
    """The frames that the tests expect: small steps that differ for every frame, row and column."""
    dtype = np.dtype(dtype)
    f, y, x = np.ogrid[first:first + frames, 0:HEIGHT, 0:WIDTH]
    values = (f * 37 + y * 11 + x * 3) % (101 if dtype.itemsize == 1 else 30011)
    if dtype.kind == "f":
        return ((values % 2001) * 0.25 - 100).astype(dtype)
    return (values - (50 if dtype.kind == "i" else 0)).astype(dtype)


def put(name, content, attributes=(), **options):
    """A file of values and links by path; of a value that is a dict a data set is created."""
    with h5py.File(name if "." in name else name + ".h5", "a", **options) as f:
        for path, value in content.items():
            if isinstance(value, dict):
                f.create_dataset(path, **value)
            else:
                f[path] = value
        for path, key, value in attributes:
            (f[path] if path in f else f.create_group(path)).attrs[key] = value


def external(name, path=DATA):
    return h5py.ExternalLink(name, "/" + path)


def empty(name, shape, chunks=None, dtype="u1", **options):
    put(name, {DATA: dict(shape=shape, dtype=dtype, chunks=chunks, **options)})


def virtual_file(name, shape, pieces, dtype="u2", fill=0, path=DATA):
    """A virtual data set of (where, source file, its path, its shape, part of it)."""
    layout = h5py.VirtualLayout(shape=shape, dtype=dtype)
    for where, source, inside, extent, *part in pieces:
        source = h5py.VirtualSource(source + ".h5", inside, shape=extent)
        layout[where] = source[part[0]] if part else source
    with h5py.File(name + ".h5", "a", libver="latest") as f:
        f.create_virtual_dataset(path, layout, fillvalue=fill)


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
        packed = min(lz4(raw[i:i + block]), raw[i:i + block], key=len)
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


def raw(name, chunks, filters, shape=(1, 64, 64), dtype="u4", masks=()):
    """Chunks of given bytes, one a frame, with filters that need not know of them."""
    with h5py.File(name + ".h5", "w") as f:
        plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        plist.set_chunk((1,) + shape[1:])
        for number, values in filters:
            plist.set_filter(number, h5py.h5z.FLAG_OPTIONAL, values)
        links = h5py.h5p.create(h5py.h5p.LINK_CREATE)
        links.set_create_intermediate_group(True)
        dataset = h5py.h5d.create(f.id, DATA.encode(), h5py.h5t.py_create(np.dtype(dtype)),
                                  h5py.h5s.create_simple(shape), plist, links)
        for i, chunk in enumerate(chunks):
            dataset.write_direct_chunk((i, 0, 0), chunk, masks[i] if masks else 0)


def packed(name, data, filters, pack):
    raw(name, [pack(frame) for frame in data], filters, data.shape, data.dtype)


# --- groups -------------------------------------------------------------------------------------

def frames():
    whole = (1, HEIGHT, WIDTH)
    for dtype in ["u1", "u2", "u4", "u8", "i1", "i2", "i4", "i8", "f2", "f4", "f8"]:
        for order, kind in [("<", "le_"), (">", "be_")]:
            data = pattern(3, order + dtype)
            put(f"contiguous_{kind}{dtype}", {DATA: data})
            put(f"chunked_{kind}{dtype}", {DATA: dict(data=data, chunks=whole, compression="gzip")})
    put("bool", {DATA: pattern(2, "u4") % 2 == 1})
    half = [0.0, -0.0, 6e-8, -6e-8, 6.1e-5, 65504, -65504, np.inf, -np.inf, np.nan]
    put("half_specials", {DATA: np.array(half, "f2").reshape(1, 2, 5)})

    data = pattern(5, "u4")
    for name, chunks in [("one_frame_chunks", whole), ("two_frame_chunks", (2, HEIGHT, WIDTH)),
                         ("tiles", (1, 8, 16)), ("tiles_of_frames", (3, 10, 37)),
                         ("rows", (1, 1, WIDTH))]:
        put(name, {DATA: dict(data=data, chunks=chunks)})
        gzip = dict(chunks=chunks, compression="gzip")
        put(name + "_gzip", {DATA: dict(data=data, shuffle=True, **gzip)})
        put(name + "_half", {DATA: dict(data=pattern(5, ">f2"), **gzip)})
    put("contiguous", {DATA: data})
    put("resizable_wide_chunks", {DATA: dict(data=data, chunks=(1, 64, 64), compression="gzip",
                                             maxshape=(None, None, None))})
    put("two_d", {DATA: data[1]})
    put("two_d_chunked", {DATA: dict(data=data[1], chunks=(8, WIDTH), compression="gzip")})
    modules = pattern(6).reshape(3, 2, HEIGHT, WIDTH)
    put("modules", {DATA: modules})
    put("modules_chunked", {DATA: dict(data=modules, chunks=(1,) + whole, compression="gzip")})
    put("checksum", {DATA: dict(data=data, chunks=whole, fletcher32=True)})
    put("scaleoffset", {DATA: dict(data=data, chunks=whole, scaleoffset=0)})
    with h5py.File("compact.h5", "w") as f:
        plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        plist.set_layout(h5py.h5d.COMPACT)
        dataset = h5py.h5d.create(f.id, b"data", h5py.h5t.NATIVE_UINT32,
                                  h5py.h5s.create_simple(data.shape), plist)
        dataset.write(h5py.h5s.ALL, h5py.h5s.ALL, data)
    put("user_block", {DATA: data}, userblock_size=1024)
    empty("never_begun", (5, HEIGHT, WIDTH), (2, 8, 8), ">f2", fillvalue=1.5, compression="gzip")
    empty("never_written", (5, HEIGHT, WIDTH), whole, "i4", fillvalue=-7)
    with h5py.File("never_written.h5", "a") as f:
        f[DATA][1] = pattern(1, "i4", 1)[0]

    for kind in ["u1", "u2", "u4", "i4", "u8", ">u2"]:
        packed("bslz4_" + kind.replace(">", "be_"), pattern(3, kind),
               [(BITSHUFFLE, (0, 3, np.dtype(kind).itemsize, 0, 2))], bitshuffle_lz4_chunk)
    packed("bslz4_small_blocks", pattern(3, "u4"), [(BITSHUFFLE, (0, 3, 4, 64, 2))],
           lambda frame: bitshuffle_lz4_chunk(frame, 64))
    packed("lz4", pattern(3, "u4"), [(LZ4, (4096,))], lz4_chunk)
    data = pattern(4, "u4")
    raw("mixed", [data[i].tobytes() if i % 2 else bitshuffle_lz4_chunk(data[i]) for i in range(4)],
        [(BITSHUFFLE, (0, 3, 4, 0, 2))], data.shape, masks=[0, 1, 0, 1])
    packed("long_plain", pattern(2, "u4"), [], lambda frame: frame.tobytes() + bytes(500_000))
    packed("unknown_filter", pattern(2, "u4"), [(32026, ())], lambda frame: frame.tobytes())
    put("bad_chunk", {DATA: dict(data=pattern(3), chunks=whole, compression="gzip")})
    with h5py.File("bad_chunk.h5") as f:
        place = f[DATA].id.get_chunk_info(1)
    with open("bad_chunk.h5", "r+b") as f:
        f.seek(place.byte_offset + 10)
        f.write(b"\x5a" * (place.size - 10))


def block(name, count, first, numbers=False):
    put(name, {DATA: dict(data=pattern(count, "u2", first), chunks=(1, HEIGHT, WIDTH))},
        [(DATA, "image_nr_low", first + 1), (DATA, "image_nr_high", first + count)] * numbers)


def master(prefix, sizes, start=1, planned=0, missing=(), numbers=False, target="/" + DATA,
           folder="", nimages=None):
    """A master with blocks of the given sizes, and links to further ones that don't exist."""
    content, first = {}, 0
    for i in range(max(planned, len(sizes))):
        name = f"{prefix}_data_{i + start:06d}.h5"
        content[f"entry/data/data_{i + start:06d}"] = h5py.ExternalLink(folder + name, target)
        if i < len(sizes):
            if i not in missing:
                block(name, sizes[i], first, numbers)
            first += sizes[i]
    if nimages:
        content[DETECTOR + "detectorSpecific/nimages"] = nimages
        content[DETECTOR + "detectorSpecific/ntrigger"] = 1
    put(prefix + "_master", content, [("entry", "NX_class", "NXentry"),
                                      ("entry/data", "NX_class", "NXdata")])


def series():
    for name in ["one", "gone", "anew", "hurt"]:
        master(name, [4, 4, 2])
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
    master("noslash", [3, 3], target=DATA)
    master("none", [], planned=3)
    put("none_master", {DETECTOR + "pixel_mask": pattern(1, "u4")[0],
                        DETECTOR + "detectorSpecific/flatfield": pattern(1, "f4")[0]})
    for i, size in enumerate([3, 3, 1]):
        block(f"orphan_data_{i:06d}", size, 3 * i)
    block("single_data", 3, 0)
    put("single_master", {DATA: external("single_data.h5"),
                          "entry/instrument/beam/wavelength": 1.25})
    master("broken", [4, 4, 4])
    os.truncate("broken_data_000002.h5", 1000)
    master("stranger", [2, 2])
    block("stranger_data_000009", 5, 100)
    block("odd name", 3, 0)
    put("foreign_master.hdf5", {"entry/data/data_000001": external("odd name.h5")})
    # What writers will add.
    os.mkdir("later")
    master("grow", [3, 3], planned=6)
    block("later/grow_data_000003", 3, 6)
    block("later/grow_data_000004", 1, 9)
    block("later/anew_data_000002", 4, 50)
    for i in range(3):
        block(f"{'later/' * (i == 2)}loose_data_{i + 1:06d}", 2, 2 * i)
    put("live", {DATA: dict(data=pattern(2), chunks=(1, HEIGHT, WIDTH),
                            maxshape=(None, HEIGHT, WIDTH))}, libver="latest")


def writer():
    """Lets live.h5 grow twice, and keeps it open, with readers beside it, until the marker goes."""
    os.chdir("../series")
    for ending, first in [("closed", 2), ("open", 5)]:
        f = h5py.File("live.h5", "r+", libver="latest")
        if ending == "open":
            f.swmr_mode = True
        f[DATA].resize(first + 3, axis=0)
        f[DATA][first:] = pattern(3, "u2", first)
        f.flush()
        if ending == "closed":
            f.close()
    open("ready", "w").close()
    end = time.time() + 60
    while os.path.exists("ready") and time.time() < end:
        time.sleep(0.01)


def layouts():
    data = pattern(3)
    put("entry1", {"entry1/data/data": data}, [("entry1", "NX_class", "NXentry")])
    put("default", {"scan/plot/counts": data, "aaa/data": np.zeros((2, 2))},
        [("/", "default", "scan"), ("scan", "default", "plot"), ("scan/plot", "signal", "counts"),
         ("scan/plot", "NX_class", "NXdata")])
    put("signal", {"entry/other/counts": data, "entry/other/axis": np.zeros((9, 9))},
        [("entry", "NX_class", "NXentry"), ("entry/other", "NX_class", "NXdata"),
         ("entry/other", "signal", "counts")])
    put("signal_missing", {"entry/data/frames": data},
        [("entry/data", "signal", "nowhere"), ("entry/data", "NX_class", "NXdata")])
    put("old_entry_data", {"entry/data": data})
    put("old_blocks", {"entry/data_01": data, "entry/data_02": pattern(2, "u2", 3)})
    put("lima", {"entry_0000/measurement/data": data},
        [("/", "default", "entry_0000"), ("entry_0000", "NX_class", "NXentry"),
         ("entry_0000/measurement", "NX_class", "NXcollection")])
    put("cxi", {"entry_1/instrument_1/detector_1/data": data}, [("entry_1", "NX_class", "NXentry")])
    put("detector", {DETECTOR + "data": data}, [("entry", "NX_class", "NXentry")])
    put("exchange", {"exchange/data": data, "exchange/dark": np.zeros((1, 90, 90))})
    put("largest", {"deep/down/cube": data, "deep/list": np.arange(10),
                    "deep/matrix": np.zeros((300, 300))})
    put("block_in_file", {DATA + "_000001": data, DATA + "_000002": pattern(1, "u2", 3)})
    put("soft", {"real/frames": data, DATA: h5py.SoftLink("/real/frames")})
    detectors(data)
    lost()


def entry_of(groups, *more):
    """Attributes that make "entry" an entry, and the groups below it what they are."""
    return [("entry", "NX_class", "NXentry"), ("entry/instrument", "NX_class", "NXinstrument"),
            *[("entry/" + group, "NX_class", kind) for group, kind in groups.items()], *more]


def detectors(data):
    """Tables, spectra and images side by side; the images are meant."""
    values = {"apd": np.zeros((9, 1)), "eye": data, "mca": np.zeros((9, 512))}
    for name, more in [("detectors", []), ("default_lost_way", [("entry", "default", "nowhere")]),
                       ("default_table", [("/", "default", "entry"), ("entry", "default", "apd")])]:
        content = {}
        for i, (group, value) in enumerate(values.items()):
            content[f"entry/instrument/{group}/data"] = value
            content[f"entry/instrument/{group}/distance"] = 1.0 + i
            content[f"entry/{group}/counts"] = h5py.SoftLink(f"/entry/instrument/{group}/data")
        put(name, content, entry_of(
            {**dict.fromkeys(values, "NXdata"),
             **{"instrument/" + group: "NXdetector" for group in values}},
            *[("entry/" + group, "signal", "counts") for group in values], *more))
    put("default_chain", {"entry/a/b/counts": data, "entry/data/data": np.zeros((60, 60)),
                          "entry/a/b/zero": np.zeros((70, 70))},
        entry_of({"a/b": "NXdata"}, ("entry", "default", "a"), ("entry/a", "default", "b"),
                 ("entry/a/b", "signal", "counts")))
    put("old_signal", {"entry/plot/early": np.zeros((60, 60)), "entry/plot/late": data},
        entry_of({"plot": "NXdata"}, ("entry/plot/late", "signal", 1),
                 ("entry/plot/early", "signal", 2)))
    put("beside", {"entry/measurement/a": np.zeros((9, 1)), "entry/measurement/mca": np.zeros((40, 512)),
                   "entry/measurement/eye": data, "entry/measurement/mask": np.zeros((90, 90, 90))},
        entry_of({"measurement": "NXcollection"}))
    put("linked_group", {"real/eye": data, "entry/plot": h5py.SoftLink("/real")},
        entry_of({}, ("entry", "default", "plot")))


def lost():
    """Files whose images are gone: what is left are masks and tables."""
    left = {DETECTOR + "pixel_mask": pattern(1)[0], DETECTOR + "detectorSpecific/flatfield":
            pattern(3, "f4"), "entry/data/positions": np.zeros((9, 3))}
    put("lost_data", {**left, DATA: external("gone.h5")}, entry_of({"data": "NXdata"}))
    put("lost_group", {**left, "entry/plot": external("gone.h5", "entry/plot")},
        entry_of({}, ("entry", "default", "plot")))
    put("lost_default", {**left, "entry/plot/eye": external("gone.h5"), DATA: pattern(1)},
        entry_of({"plot": "NXdata"}, ("entry", "default", "plot"), ("entry/plot", "signal", "eye")))
    put("lost_detector", {DETECTOR[:-1]: external("gone.h5", "detector")}, entry_of({}))
    del left["entry/data/positions"]
    put("mask_alone", left, entry_of({"instrument/detector": "NXdetector"}))
    put("empty_blocks", {f"entry/data/data_{i:06}": h5py.Empty("f4") for i in (1, 2)})
    put("mask_group", {"entry/pixel_mask/data": pattern(1)[0], "flatfield/data": pattern(2)},
        [("entry", "NX_class", "NXentry"), ("entry/pixel_mask", "NX_class", "NXdata")])
    put("circle", {**left, DATA: h5py.SoftLink("/entry/data/x"),
                   "entry/data/x": h5py.SoftLink("/" + DATA)}, entry_of({}))


def virtual():
    two = (2, HEIGHT, WIDTH)
    for i in range(3):
        put(f"source_{i}", {"data": dict(data=pattern(2, "u2", 2 * i), chunks=(1, HEIGHT, WIDTH),
                                         compression="gzip")})

    def stack(name, sources, **options):
        virtual_file(name, (2 * len(sources), HEIGHT, WIDTH),
                     [(slice(2 * i, 2 * i + 2), source, "data", two)
                      for i, source in enumerate(sources) if source], **options)

    sources = ["source_0", "source_1", "source_2"]
    stack("stack", sources)
    stack("stack_master", ["stack_data_000001", "stack_data_000002"])
    for i in range(2):
        put(f"stack_data_{i + 1:06d}", {"data": pattern(2, "u2", 2 * i)})
    stack("wider", sources, dtype="u4")
    stack("floating", sources, dtype="f8")
    stack("missing", ["source_0", "lost", "source_2"])
    virtual_file("missing_data", two, [(..., "lost", DATA, two)])
    stack("unmapped", ["source_0", None, "source_2"], fill=77)
    stack("nested", [None, None, None])
    for name in ["same_file", "before"]:
        put(name, {"raw": pattern(4)}, libver="latest")
        virtual_file(name, (4, HEIGHT, WIDTH), [(..., name, "raw", (4, HEIGHT, WIDTH))])
    os.rename("before.h5", "renamed.h5")

    for i in range(2):
        put(f"every_{i}", {"data": pattern(4)[i::2]})
        put(f"flat_{i}", {"data": pattern(2)[i]})
        put(f"comb_{i}", {"data": pattern(2, "u2", i)})
    virtual_file("interleaved", (4, HEIGHT, WIDTH),
                 [(slice(i, None, 2), f"every_{i}", "data", two) for i in range(2)])
    virtual_file("of_flat", two, [(i, f"flat_{i}", "data", (HEIGHT, WIDTH)) for i in range(2)])
    # Two modules of 10 rows with a gap of three, one of them cut out of a larger source.
    put("upper", {"data": pattern(2)[:, :10]})
    padded = np.zeros((2, 14, WIDTH + 6), "u2")
    padded[:, 2:12, 3:-3] = pattern(2)[:, 13:]
    put("lower", {"data": dict(data=padded, chunks=(1, 14, WIDTH + 6))})
    virtual_file("modules", two, [(np.s_[:, :10], "upper", "data", (2, 10, WIDTH)),
                                  (np.s_[:, 13:], "lower", "data", padded.shape,
                                   np.s_[:, 2:12, 3:-3])], fill=9999)
    # Every other column: too irregular to follow, read by the library.
    wide = (2, HEIGHT, 2 * WIDTH)
    for i, (values, pack) in enumerate([
            ([(LZ4, (4096,))], lz4_chunk), ([(BITSHUFFLE, (0, 3, 2, 64, 2))],
                                            lambda frame: bitshuffle_lz4_chunk(frame, 64))]):
        packed(f"filtered_{i}", pattern(2, "u2", i), values, pack)
    packed("planes", pattern(2)[:, :16, :32], [(BITSHUFFLE, (0, 3, 2, 0, 0))],
           lambda frame: bitshuffled(frame.reshape(-1)))
    for name, path in [("comb", "data"), ("filtered", DATA)]:
        virtual_file(name, wide, [(np.s_[:, :, i::2], f"{name}_{i}", path, two) for i in range(2)])
    virtual_file("planes_comb", (2, 16, 64),
                 [(np.s_[:, :, i::2], "planes", DATA, (2, 16, 32)) for i in range(2)])
    virtual_file("comb_missing", wide, [(np.s_[:, :, ::2], "comb_0", "data", two),
                                        (np.s_[:, :, 1::2], "lost", "data", two)])
    virtual_file("comb_of_comb", wide, [(np.s_[:, :, ::2], "comb", DATA, wide, np.s_[:, :, ::2])])
    virtual_file("ring_a", two, [(..., "ring_b", "data", two)], path="data")
    virtual_file("ring_b", two, [(..., "ring_a", "data", two)], path="data")

    def endless(name, extent, rows, source, source_space):
        with h5py.File(name, "w", libver="latest") as f:
            plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
            space = h5py.h5s.create_simple(extent, (h5py.h5s.UNLIMITED, HEIGHT, WIDTH))
            space.select_hyperslab((0, 0, 0), (h5py.h5s.UNLIMITED, 1, 1), stride=(rows, 1, 1),
                                   block=(rows, HEIGHT, WIDTH))
            plist.set_virtual(space, source, b"data", source_space or space)
            h5py.h5d.create(f.id, b"data", h5py.h5t.NATIVE_UINT16, space, plist)

    endless("ring_endless.h5", two, 1, b".", None)
    # Sources by number, without end.
    endless("numbered.h5", (6, HEIGHT, WIDTH), 2, b"source_%b.h5", h5py.h5s.create_simple(two))


def headers():
    values = {"beam_center_x": (np.float32(18.5), "pixel"), "detector_distance": (151.5, "mm"),
              "beam_center_y": (np.array([11.25], "f4"), "pixel"), "x_pixel_size": (7.5e-5, "m"),
              "y_pixel_size": (75.0, "um"), "saturation_value": (np.uint32(46000), ""),
              "sensor_thickness": (0.45, "mm"), "threshold_energy": (6.35, "keV"),
              "count_time": (9.5, "ms"), "frame_time": (0.01, "s"),
              "description": (np.bytes_("Detector 1M"), ""), "detector_number": ("E-01-0001", "")}
    put("full_master", {
        "entry/definition": "NXmx", "entry/start_time": "2024-05-06T07:08:09.123",
        DATA: pattern(4, "u4"), "entry/instrument/beam/wavelength": 0.97,
        "entry/instrument/beam/total_flux": 1.5e12,
        "entry/instrument/attenuator/attenuator_transmission": 0.25,
        DETECTOR + "detectorSpecific/nimages": 4,
        DETECTOR + "detectorSpecific/flatfield": np.ones((70, 70), "f4"),
        "entry/sample/goniometer/omega": [10.0, 10.5, 11.0, 11.5],
        "entry/sample/goniometer/omega_range_average": 0.5,
        **{DETECTOR + key: value for key, (value, _) in values.items()}},
        [("entry", "NX_class", np.bytes_("NXentry")),
         (DETECTOR, "NX_class", np.bytes_("NXdetector")),
         ("entry/instrument/beam/wavelength", "units", "angstrom"),
         ("entry/sample/goniometer/omega", "units", "degree")] +
        [(DETECTOR + key, "units", unit) for key, (_, unit) in values.items() if unit])
    mask = np.zeros((HEIGHT, WIDTH), "u4")
    mask[0, 1], mask[1, 0], mask[2, 2], mask[3, 3], mask[4, 4] = 1, 8, 1 << 8, 1 << 31, 1 << 6 | 2
    path = DETECTOR + "pixel_mask"
    for name, content in [
            ("u4", {path: mask}), ("u1", {path: (mask & 255).astype("u1")}),
            ("i4", {path: mask.astype("i4")}), ("rank3", {path: mask[None]}),
            ("turned", {path: np.ascontiguousarray(mask.T)}),
            ("gzip", {path: dict(data=mask, compression="gzip")}),
            ("specific", {DETECTOR + "detectorSpecific/pixel_mask": mask}),
            ("second", {path: mask & 1, path + "_2": mask & ~np.uint32(1)}),
            ("linked", {path: external("mask_u4.h5", path)})]:
        put("mask_" + name, {DATA: pattern(3, "u4"), **content})
    put("meta", {"detector/detector_distance": 0.3})
    put("linked_meta.nxs", {DATA: pattern(1, "u4"), DETECTOR[:-1]: external("meta.h5", "detector")})


if __name__ == "__main__":
    for group in sys.argv[2:]:
        os.makedirs(os.path.join(sys.argv[1], group), exist_ok=True)
        os.chdir(os.path.join(sys.argv[1], group))
        globals()[group]()
