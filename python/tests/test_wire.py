# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Frames kept in tests/data/wire, and what must not be taken for one."""

import pathlib
import struct
import unittest

from tarvik import wire

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "tests" / "data" / "wire"


def frame(name):
    return (FOLDER / name).read_bytes()


class KeptFrames(unittest.TestCase):
    def test_every_message_decodes_and_encodes_to_the_same_bytes(self):
        names = sorted(each.name for each in FOLDER.glob("*.frame"))
        self.assertGreaterEqual(len(names), 6)
        for name in names:
            with self.subTest(name):
                kind, content = wire.decode(frame(name))
                if kind == wire.HELLO:
                    again = wire.encode_hello(content[1], content[0])
                elif kind != wire.FORGET:
                    number = wire.decode_head(frame(name))[4]
                    again = b"".join(wire.encode(content, number))
                else:
                    continue
                self.assertEqual(again, frame(name))

    def test_image_has_its_pixels_header_mask_and_tree(self):
        _, image = wire.decode(frame("image.frame"))
        self.assertEqual((image.width, image.height, image.type, image.bits), (7, 5, 4, 32))
        self.assertEqual(list(image.view()), list(range(-17, 18)))
        self.assertEqual(len(image.header), 21)
        self.assertEqual(image.header["beam_center_x"], -0.1875)
        self.assertEqual(image.header["description"], b"description \xc3\xa4\n\0 end")
        mask = image.header["pixel_mask"]
        self.assertEqual((mask.type, mask.bits, list(mask.view())[:5]), (3, 16, [0, 0, 0, 31, 0]))
        self.assertEqual(image.tree["/entry/a"], (1.5, {"units": b"mm"}))
        self.assertEqual(image.tree["/entry/c"], ([1, -2, 3], {}))
        self.assertEqual(image.tree["/entry/e"], ([b"", b"two"], {}))
        self.assertEqual(image.tree["/entry"], (None, {"NX_class": b"NXentry"}))

    def test_drawing_list(self):
        _, items = wire.decode(frame("list.frame"))
        self.assertEqual(items[0], wire.Pixel(1.5, -2, (1, 2, 3, 4)))
        self.assertEqual(items[1], wire.Line(1, 2, 3, 4.25))
        self.assertEqual(items[2], wire.Text(9, 8, b"peak \xc3\xa4", (9, 8, 7, 6)))
        self.assertEqual(items[3], wire.Ellipse(1, 2, 3, 4, 0.5))


class DamagedFrames(unittest.TestCase):
    def test_cut_anywhere_is_an_error(self):
        for name in ("text.frame", "image.frame", "list.frame", "hello.frame"):
            whole = frame(name)
            for size in range(len(whole)):
                with self.assertRaises(wire.WireError):
                    wire.decode(whole[:size])

    def test_any_changed_byte_is_an_error_or_another_message(self):
        whole = frame("image.frame")
        for at in range(len(whole)):
            changed = whole[:at] + (0, 0x7F, 0xFF)[at % 3].to_bytes(1, "little") + whole[at + 1:]
            try:
                wire.decode(changed)
            except wire.WireError:
                pass

    def test_what_cannot_be_carried_is_refused(self):
        mask = wire.Image(1, 1, 3, 8, b"\0", {"pixel_mask": wire.Image(1, 1, 3, 8, b"\0")})
        for message in (b"x" * ((64 << 20) + 1), wire.Image(1, 1, 3, 8, b"\0",
                                                            {"pixel_mask": mask}), [1]):
            with self.assertRaises(wire.WireError):
                wire.encode(message, 0)

    def test_lying_sizes(self):
        for width, height in ((-1, 5), (5, -1), (2**31 - 1, 2**31 - 1), (70, 60)):
            whole = bytearray(frame("image.frame"))
            struct.pack_into("<ii", whole, wire.HEAD.size, width, height)
            with self.assertRaises(wire.WireError):
                wire.decode(whole)


if __name__ == "__main__":
    unittest.main()
