# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Two Python ends of a queue."""

import os
import threading
import unittest

from tarvik import Image, MessageQueue, PeerGone, Pixel, queue


class TwoEnds(unittest.TestCase):
    def setUp(self):
        name = f"python_{os.getpid()}_{self.id()}"
        self.left, self.right = MessageQueue(name), MessageQueue(name)
        other = threading.Thread(target=self.right.connect, args=(10,))
        other.start()
        self.left.connect(10)
        other.join()

    def tearDown(self):
        self.left.close()
        self.right.close()

    def test_messages_keep_their_order(self):
        large = Image(1024, 512, 4, 32, bytes(range(256)) * 8192, {"wavelength": 1.5})
        for message in ("text", b"\0bytes", large, [Pixel(1, 2)], "end"):
            self.left.send(message)
        self.assertEqual(self.right.receive(10), b"text")
        self.assertEqual(self.right.receive(10), b"\0bytes")
        image = self.right.receive(10)
        self.assertEqual((image.width, image.height, image.header), (1024, 512, large.header))
        self.assertEqual(bytes(image.view().cast("B")), large.pixels)
        self.assertEqual(self.right.receive(10), [Pixel(1, 2)])
        self.assertEqual(self.right.receive(10), b"end")
        with self.assertRaises(TimeoutError):
            self.right.receive(0.01)

    def test_end_of_the_peer_is_learnt_behind_its_messages(self):
        self.left.send("last words")
        self.left.close()
        self.assertEqual(self.right.receive(10), b"last words")
        with self.assertRaises(PeerGone):
            self.right.receive(10)

    def test_no_time_is_a_time_out(self):
        with MessageQueue(f"python_{os.getpid()}_alone") as alone:
            for call in (alone.connect, alone.receive):
                with self.assertRaises(TimeoutError):
                    call(0)
        with self.assertRaises(TimeoutError):
            self.left.receive(0)

    def test_long_names_have_addresses_of_their_own(self):
        self.assertLessEqual(len(queue.address("n" * 5000)), 108)
        self.assertNotEqual(queue.address("n" * 5000), queue.address("n" * 5001))


if __name__ == "__main__":
    unittest.main()
