# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
#
# Makes HDF5 files that are damaged, lie or lead astray: make_hostile.py FOLDER.
import os
import struct
import sys
import zlib

os.environ["HDF5_PLUGIN_PRELOAD"] = "::"

import h5py
import numpy as np

PATH = "entry/data/data"
PIXELS = np.arange(2 * 12 * 20, dtype="u2").reshape(2, 12, 20)
BITSHUFFLE, LZ4 = 32008, 32004


def new(name, **options):
    return h5py.File(name + ".h5", "w", **options)


def empty(name, shape, chunks, dtype="u1", **options):
    with new(name) as f:
        f.create_dataset(PATH, shape=shape, dtype=dtype, chunks=chunks, **options)


def raw(name, chunk, filters, shape=(1, 64, 64), dtype="u4", mask=0):
    """One chunk of given bytes behind filters that need not know of it."""
    with new(name) as f:
        plist = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        plist.set_chunk((1,) + shape[1:])
        for number, values in filters:
            plist.set_filter(number, h5py.h5z.FLAG_OPTIONAL, values)
        links = h5py.h5p.create(h5py.h5p.LINK_CREATE)
        links.set_create_intermediate_group(True)
        dataset = h5py.h5d.create(f.id, PATH.encode(), h5py.h5t.py_create(np.dtype(dtype)),
                                  h5py.h5s.create_simple(shape), plist, links)
        dataset.write_direct_chunk((0, 0, 0), chunk, mask)


def links():
    with new("soft_dangling") as f:
        f[PATH] = h5py.SoftLink("/nowhere")
    with new("external_dangling") as f:
        f[PATH] = h5py.ExternalLink("nowhere.h5", "/" + PATH)
    with new("soft_loop") as f:
        f[PATH] = h5py.SoftLink("/entry/data/other")
        f["entry/data/other"] = h5py.SoftLink("/" + PATH)
    with new("soft_itself") as f:
        f[PATH] = h5py.SoftLink("/" + PATH)
    with new("external_itself") as f:
        f[PATH] = h5py.ExternalLink("external_itself.h5", "/" + PATH)
    for one, other in ("ab", "ba"):
        with new("external_" + one) as f:
            f[PATH] = h5py.ExternalLink(f"external_{other}.h5", "/" + PATH)
    with new("group_in_itself") as f:
        f["entry/data/data"] = f["entry"] if "entry" in f else f.create_group("entry")
    with new("default_itself") as f:
        f.attrs["default"] = "/"
        f.create_group("entry").attrs["default"] = "/entry"
    with new("external_folder") as f:
        f[PATH] = h5py.ExternalLink(".", "/" + PATH)
    with new("external_pipe") as f:
        f[PATH] = h5py.ExternalLink("pipe", "/" + PATH)
    with new("blocks_missing") as f:
        for i in range(2000):
            f[f"entry/data/data_{i:06}"] = h5py.ExternalLink(f"no_{i}.h5", "/data")
    # What surrounds good images may be as bad as it likes.
    with new("readable_surroundings") as f:
        f[PATH] = PIXELS
        f["entry/loop"] = h5py.SoftLink("/entry/loop")
        f["entry/up"] = f["entry"]
        f["entry/gone"] = h5py.ExternalLink("nowhere.h5", "/")
        f["entry/self"] = h5py.ExternalLink("readable_surroundings.h5", "/")
        f["entry/pipe"] = h5py.ExternalLink("pipe", "/")
        for i in range(3000):
            f[f"entry/many/{i}"] = i
        deep = f["entry"]
        for i in range(100):
            deep = deep.create_group("deep")


def shapes():
    for rank in (1, 5, 6):
        with new(f"rank_{rank}") as f:
            f[PATH] = np.zeros((2,) * rank, "u2")
    with new("scalar") as f:
        f[PATH] = 5
    with new("null_space") as f:
        f[PATH] = h5py.Empty("u2")
    for name, data in (("text", np.full((2, 3), b"abc")),
                       ("compound", np.zeros((2, 3, 4), [("a", "u2"), ("b", "f4")])),
                       ("opaque", np.zeros((2, 3, 4), "V7")),
                       ("array", np.zeros((2, 3, 4), np.dtype(("u2", (5,)))))):
        with new("type_" + name) as f:
            f.create_dataset(PATH, data=data, dtype=data.dtype)
    with new("type_reference") as f:
        f.create_dataset(PATH, (2, 3), dtype=h5py.ref_dtype)
    with new("type_vlen") as f:
        f.create_dataset(PATH, (2, 3), dtype=h5py.vlen_dtype(np.dtype("u2")))
    with new("no_frames") as f:
        f.create_dataset(PATH, shape=(0, 5, 5), maxshape=(None, 5, 5), dtype="u2")
    with new("no_rows") as f:
        f.create_dataset(PATH, shape=(3, 0, 5), maxshape=(3, None, 5), dtype="u2")
    empty("product_32", (1, 65536, 65536), (1, 64, 64))
    empty("product_wraps", (1, 65537, 65535), (1, 64, 64), "u4")
    empty("columns_64", (1, 1, 1 << 62), (1, 1, 64))
    empty("frame_of_gigabytes", (1, 40000, 40000), (1, 1000, 1000), "u8")
    empty("readable_endless_frames", (1 << 62, 4, 4), (1, 4, 4))
    # Together they have no frames, in 64 bits.
    with new("readable_endless_blocks") as f:
        for i in range(4):
            f.create_dataset(f"entry/data/data_{i}", shape=(1 << 62, 4, 4), dtype="u1",
                             chunks=(1, 4, 4))
    empty("chunks_of_one_pixel", (2, 1000, 1000), (1, 1, 1), "u2", compression="gzip")
    empty("plain_chunks_of_one_pixel", (2, 1000, 1000), (1, 1, 1), "u2")
    empty("readable_unwritten_large_chunk", (4000, 300, 300), (4000, 300, 300), "u1",
          compression="gzip")


def chunks():
    head = struct.pack(">QI", 64 * 64 * 4, 8192)
    bitshuffle = [(BITSHUFFLE, (0, 3, 4, 0, 2))]
    raw("chunk_one_byte", b"x", bitshuffle)
    raw("chunk_short_head", head[:7], bitshuffle)
    raw("chunk_head_alone", head, bitshuffle)
    raw("chunk_block_beyond", head + struct.pack(">I", 0xFFFFFFF0) + b"x" * 50, bitshuffle)
    raw("chunk_other_size", struct.pack(">QI", 1 << 40, 8192) + b"x" * 50, bitshuffle)
    raw("chunk_wrapped_size", struct.pack(">QI", (1 << 64) - 4, 0xFFFFFFF8) + b"x", bitshuffle)
    raw("chunk_noise", head + struct.pack(">I", 60) + bytes(range(60)) * 3, bitshuffle)
    raw("chunk_lz4_noise", head + struct.pack(">I", 60) + bytes(range(60)) * 3, [(LZ4, (8192,))])
    raw("chunk_values_odd", head + b"x" * 99, [(BITSHUFFLE, (0, 3, 0xFFFFFFFF, 7, 99))])
    # Through the library: twelve bytes that announce four gigabytes.
    raw("chunk_library_bomb", struct.pack(">QI", 0xFFFFFFFF, 8192),
        [(2, (4,)), (LZ4, (8192,)), (3, ())], mask=4)
    raw("chunk_library_bomb_2", struct.pack(">QI", 0xFFFFFFFF, 8192),
        [(LZ4, (8192,)), (2, (4,)), (LZ4, (8192,))])
    raw("chunk_unknown", b"x" * 99, [(31999, (1, 2, 3))])
    raw("chunk_plain_short", b"x" * 99, [])
    raw("chunk_plain_long", b"x" * 999999, [])
    with new("gzip") as f:
        dataset = f.create_dataset(PATH, data=np.zeros((2, 64, 64), "u4"), chunks=(1, 64, 64),
                                   compression="gzip")
        place = dataset.id.get_chunk_info(1)
    whole = bytearray(open("gzip.h5", "rb").read())
    whole[place.byte_offset + 2:place.byte_offset + place.size] = bytes(place.size - 2)
    open("chunk_gzip.h5", "wb").write(whole)
    raw("chunk_gzip_more", zlib.compress(bytes(1 << 26)), [(1, (1,))])
    raw("chunk_gzip_less", zlib.compress(bytes(1 << 10)), [(1, (1,))])
    os.remove("gzip.h5")


def masks():
    for name, data in (("shape", np.ones((5, 5), "u4")), ("rank_1", np.ones(9, "u4")),
                       ("rank_5", np.ones((1, 1, 1, 12, 20), "u4")),
                       ("text", np.full((12, 20), b"x")), ("empty", np.ones((0, 20), "u4")),
                       ("three", np.ones((3, 12, 20), "u4"))):
        with new("mask_" + name) as f:
            f[PATH] = PIXELS
            f["entry/instrument/detector/pixel_mask"] = data
    with new("mask_lost") as f:
        f[PATH] = PIXELS
        f["entry/instrument/detector/pixel_mask"] = h5py.ExternalLink("nowhere.h5", "/mask")
    with new("mask_huge") as f:
        f[PATH] = PIXELS
        f.create_dataset("entry/instrument/detector/pixel_mask", shape=(1 << 20, 1 << 20),
                         dtype="u4", chunks=(64, 64))
    with new("mask_of_frames") as f:
        f[PATH] = PIXELS
        f["entry/instrument/detector/pixel_mask"] = np.stack([np.full((12, 20), i, "u4")
                                                              for i in (1, 2)])


def texts():
    """Ten thousand texts that are all the same megabyte."""
    with new("readable_texts") as f:
        f[PATH] = PIXELS
        dataset = f.create_dataset("entry/texts", shape=(4000,), dtype=h5py.string_dtype())
        dataset[0] = "x" * (1 << 20)
        f["entry"].attrs.create("texts", ["y" * 60000] * 60, dtype=h5py.string_dtype())
        offset = dataset.id.get_offset()
    content = bytearray(open("readable_texts.h5", "rb").read())
    content[offset:offset + 16 * 4000] = content[offset:offset + 16] * 4000
    open("readable_texts.h5", "wb").write(content)


def virtual():
    comb = h5py.VirtualLayout(shape=(2, 12, 40), dtype="u2")
    comb[:, :, 0::2] = h5py.VirtualSource("pixels.h5", "data", shape=(2, 12, 20))
    comb[:, :, 1::2] = h5py.VirtualSource("piped.h5", "data", shape=(2, 12, 20))
    with new("pixels") as f:
        f["data"] = PIXELS
    with new("piped") as f:
        f.create_dataset("data", shape=(2, 12, 20), dtype="u2",
                         external=[(os.path.abspath("pipe"), 0, 960)])
    with new("virtual_pipe", libver="latest") as f:
        f.create_virtual_dataset(PATH, comb)
    layout = h5py.VirtualLayout(shape=(2, 12, 20), dtype="u2")
    layout[...] = h5py.VirtualSource("virtual_itself.h5", PATH, shape=(2, 12, 20))
    with new("virtual_itself", libver="latest") as f:
        f.create_virtual_dataset(PATH, layout)
    layout = h5py.VirtualLayout(shape=(9, 99, 99), dtype="u2")
    layout[:] = h5py.VirtualSource("pixels.h5", "data", shape=(9, 99, 99))
    with new("virtual_too_large", libver="latest") as f:
        f.create_virtual_dataset(PATH, layout)


def whole():
    for libver in ("earliest", "latest"):
        with new("whole_" + libver, libver=libver) as f:
            f.create_dataset(PATH, data=PIXELS, chunks=(1, 12, 20), compression="gzip")
            f["entry/instrument/beam/wavelength"] = 1.0
            f["entry/title"] = "a text"
            f["entry"].attrs["NX_class"] = "NXentry"


if __name__ == "__main__":
    os.chdir(sys.argv[1])
    os.mkfifo("pipe")
    for make in (links, shapes, chunks, masks, texts, virtual, whole):
        make()
