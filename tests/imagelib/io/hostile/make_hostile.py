# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Makes HDF5 files that are damaged, lie or lead astray: make_hostile.py FOLDER."""
import os
import struct
import sys
import zlib

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../formats/hdf5"))
from make_samples import BITSHUFFLE, DATA, DETECTOR, LZ4, empty, external, h5py, np, put, raw
from make_samples import virtual_file

PIXELS = np.arange(2 * 12 * 20, dtype="u2").reshape(2, 12, 20)


def links():
    put("soft_dangling", {DATA: h5py.SoftLink("/nowhere")})
    put("soft_loop", {DATA: h5py.SoftLink("/entry/data/other"),
                      "entry/data/other": h5py.SoftLink("/" + DATA)})
    put("soft_itself", {DATA: h5py.SoftLink("/" + DATA)})
    for name, target in [("dangling", "nowhere.h5"), ("itself", "external_itself.h5"),
                         ("a", "external_b.h5"), ("b", "external_a.h5"), ("folder", "."),
                         ("pipe", "pipe")]:
        put("external_" + name, {DATA: external(target)})
    put("default_itself", {}, [("/", "default", "/"), ("entry", "default", "/entry")])
    put("blocks_missing",
        {f"entry/data/data_{i:06}": external(f"no_{i}.h5", "data") for i in range(2000)})
    # What surrounds good images may be as bad as it likes.
    put("readable_surroundings", {
        DATA: PIXELS, "entry/loop": h5py.SoftLink("/entry/loop"),
        "entry/gone": external("nowhere.h5", ""), "entry/pipe": external("pipe", ""),
        "entry/self": external("readable_surroundings.h5", ""),
        **{f"entry/many/{i}": i for i in range(3000)}, "entry" + "/deep" * 100: 1})
    for name, path in [("group_in_itself", "data/data"), ("readable_surroundings", "up")]:
        with h5py.File(name + ".h5", "a") as f:
            entry = f.require_group("entry")
            entry[path] = entry


def shapes():
    for rank in (1, 5, 6):
        put(f"rank_{rank}", {DATA: np.zeros((2,) * rank, "u2")})
    put("scalar", {DATA: 5})
    put("null_space", {DATA: h5py.Empty("u2")})
    put("type_text", {DATA: np.full((2, 3), b"abc")})
    for name, dtype in [("compound", [("a", "u2"), ("b", "f4")]), ("opaque", "V7")]:
        put("type_" + name, {DATA: np.zeros((2, 3, 4), dtype)})
    put("type_reference", {DATA: dict(shape=(2, 3), dtype=h5py.ref_dtype)})
    put("type_vlen", {DATA: dict(shape=(2, 3), dtype=h5py.vlen_dtype(np.dtype("u2")))})
    empty("no_frames", (0, 5, 5), dtype="u2", maxshape=(None, 5, 5))
    empty("no_rows", (3, 0, 5), dtype="u2", maxshape=(3, None, 5))
    empty("product_32", (1, 65536, 65536), (1, 64, 64))
    empty("product_wraps", (1, 65537, 65535), (1, 64, 64), "u4")
    empty("columns_64", (1, 1, 1 << 62), (1, 1, 64))
    empty("frame_of_gigabytes", (1, 40000, 40000), (1, 1000, 1000), "u8")
    empty("readable_endless_frames", (1 << 62, 4, 4), (1, 4, 4))
    empty("readable_many_frames", (1000, 2167, 2070), (1, 2167, 2070), "u4")
    # Together they have no frames, in 64 bits.
    put("readable_endless_blocks", {f"entry/data/data_{i}": dict(
        shape=(1 << 62, 4, 4), dtype="u1", chunks=(1, 4, 4)) for i in range(4)})
    empty("chunks_of_one_pixel", (2, 1000, 1000), (1, 1, 1), "u2", compression="gzip")
    empty("plain_chunks_of_one_pixel", (2, 1000, 1000), (1, 1, 1), "u2")
    empty("readable_unwritten_large_chunk", (4000, 300, 300), (4000, 300, 300), compression="gzip")


def chunks():
    head = struct.pack(">QI", 64 * 64 * 4, 8192)
    noise = struct.pack(">I", 60) + bytes(range(60)) * 3
    for name, chunk in [
            ("one_byte", b"x"), ("short_head", head[:7]), ("head_alone", head),
            ("block_beyond", head + struct.pack(">I", 0xFFFFFFF0) + b"x" * 50),
            ("other_size", struct.pack(">QI", 1 << 40, 8192) + b"x" * 50),
            ("wrapped_size", struct.pack(">QI", (1 << 64) - 4, 0xFFFFFFF8) + b"x"),
            ("noise", head + noise)]:
        raw("chunk_" + name, [chunk], [(BITSHUFFLE, (0, 3, 4, 0, 2))])
    raw("chunk_lz4_noise", [head + noise], [(LZ4, (8192,))])
    raw("chunk_values_odd", [head + b"x" * 99], [(BITSHUFFLE, (0, 3, 0xFFFFFFFF, 7, 99))])
    # Through the library: twelve bytes that announce four gigabytes.
    bomb = struct.pack(">QI", 0xFFFFFFFF, 8192)
    raw("chunk_library_bomb", [bomb], [(2, (4,)), (LZ4, (8192,)), (3, ())], masks=[4])
    raw("chunk_library_bomb_2", [bomb], [(LZ4, (8192,)), (2, (4,)), (LZ4, (8192,))])
    raw("chunk_unknown", [b"x" * 99], [(31999, (1, 2, 3))])
    raw("chunk_plain_short", [b"x" * 99], [])
    raw("readable_plain_long", [bytes(64 * 64 * 4) + b"x" * 999999], [])
    raw("chunk_gzip", [zlib.compress(b"x")[:2] + bytes(60)], [(1, (1,))])
    raw("chunk_gzip_more", [zlib.compress(bytes(1 << 26))], [(1, (1,))])
    raw("chunk_gzip_less", [zlib.compress(bytes(1 << 10))], [(1, (1,))])


def masks():
    for name, mask in [
            ("shape", np.ones((5, 5), "u4")), ("rank_1", np.ones(9, "u4")),
            ("rank_5", np.ones((1, 1, 1, 12, 20), "u4")), ("text", np.full((12, 20), b"x")),
            ("empty", np.ones((0, 20), "u4")), ("three", np.ones((3, 12, 20), "u4")),
            ("lost", external("nowhere.h5", "mask")),
            ("huge", dict(shape=(1 << 20, 1 << 20), dtype="u4", chunks=(64, 64))),
            ("of_frames", np.stack([np.full((12, 20), i, "u4") for i in (1, 2)]))]:
        put("mask_" + name, {DATA: PIXELS, DETECTOR + "pixel_mask": mask})


def values():
    """Ten thousand texts that are all the same megabyte; values in a huge chunk and in a pipe."""
    put("readable_texts", {DATA: PIXELS})
    with h5py.File("readable_texts.h5", "a") as f:
        dataset = f.create_dataset("entry/texts", shape=(4000,), dtype=h5py.string_dtype())
        dataset[0] = "x" * (1 << 20)
        f["entry"].attrs.create("texts", ["y" * 60000] * 60, dtype=h5py.string_dtype())
        offset = dataset.id.get_offset()
    content = bytearray(open("readable_texts.h5", "rb").read())
    content[offset:offset + 16 * 4000] = content[offset:offset + 16] * 4000
    open("readable_texts.h5", "wb").write(content)
    path = DETECTOR + "detector_distance"
    put("readable_bomb_value", {DATA: PIXELS, path: dict(
        shape=(1,), maxshape=(None,), dtype="f4", chunks=(24 << 20,), compression="gzip")})
    with h5py.File("readable_bomb_value.h5", "a") as f:
        f[path].id.write_direct_chunk((0,), zlib.compress(bytes(96 << 20), 1))
    put("readable_pipe_value", {DATA: PIXELS, path: dict(
        shape=(4,), dtype="i4", external=[(os.path.abspath("pipe"), 0, 16)])})


def virtual():
    put("pixels", {"data": PIXELS})
    put("piped", {"data": dict(shape=(2, 12, 20), dtype="u2",
                               external=[(os.path.abspath("pipe"), 0, 960)])})
    virtual_file("virtual_pipe", (2, 12, 40),
                 [(np.s_[:, :, i::2], name, "data", (2, 12, 20))
                  for i, name in enumerate(["pixels", "piped"])])
    virtual_file("virtual_itself", (2, 12, 20), [(..., "virtual_itself", DATA, (2, 12, 20))])
    virtual_file("virtual_too_large", (9, 99, 99), [(..., "pixels", "data", (9, 99, 99))])


def whole():
    for libver in ("earliest", "latest"):
        put("readable_whole_" + libver, {
            DATA: dict(data=PIXELS, chunks=(1, 12, 20), compression="gzip"),
            "entry/instrument/beam/wavelength": 1.0, "entry/title": "a text"},
            [("entry", "NX_class", "NXentry")], libver=libver)


if __name__ == "__main__":
    os.chdir(sys.argv[1])
    os.mkfifo("pipe")
    for make in (links, shapes, chunks, masks, values, virtual, whole):
        make()
