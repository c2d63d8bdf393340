# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What becomes of tarvik-image when a library crashes under it, or somebody ends it."""

import os
import pathlib
import signal
import subprocess
import time
import unittest

import h5py
import numpy

from toolcase import TOOL, ToolCase, run

# Sanitizers would turn some signals into exit codes.
SIGNALS_END = {"ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":handle_segv=0",
               "TSAN_OPTIONS": os.environ.get("TSAN_OPTIONS", "") + ":handle_segv=0"}


def children(pid):
    text = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text()
    return [int(each) for each in text.split()]


def ended(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] in "ZX"
    except FileNotFoundError:
        return True


class Crash(ToolCase):
    def start(self):
        """A conversion that is at work, and the process that works."""
        for old in self.folder.glob("y_*.cbf"):
            old.unlink()
        with h5py.File(self.folder / "x_master.h5", "w") as f:
            f.create_dataset("entry/data/data", data=numpy.ones((2000, 256, 256), "u2"),
                             chunks=(1, 256, 256), compression="gzip")
        tool = subprocess.Popen([TOOL, "convert", "--all", self.folder / "x_master.h5",
                                 self.folder / "y.cbf"], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True, env=os.environ | SIGNALS_END)
        self.addCleanup(tool.kill)
        self.wait(lambda: (self.folder / "y_00002.cbf").exists())
        worker, = children(tool.pid)
        return tool, worker

    def wait(self, condition):
        end = time.time() + 20
        while not condition():
            self.assertLess(time.time(), end)
            time.sleep(0.001)

    def test_a_crash_is_a_line_with_file_and_place_and_exit_code_1(self):
        for number, name in ((signal.SIGSEGV, "Segmentation fault"), (signal.SIGKILL, "Killed")):
            tool, worker = self.start()
            os.kill(worker, number)
            out, error = tool.communicate(timeout=20)
            self.assertEqual((tool.returncode, out), (1, ""))
            self.assertRegex(error, rf"^tarvik-image: the program ended with signal {number:d} "
                                    rf"\({name}\) while converting image \d+: "
                                    rf"{self.folder}/x_master\.h5\n$")

    def test_signals_that_end_it_on_purpose_do(self):
        tool, worker = self.start()
        tool.terminate()
        _, error = tool.communicate(timeout=20)
        self.assertEqual((tool.returncode, error), (1, "tarvik-image: Stopped on request\n"))
        self.assertTrue(ended(worker))

    def test_its_worker_ends_with_it(self):
        tool, worker = self.start()
        tool.kill()
        tool.wait()
        self.wait(lambda: ended(worker))

    def test_exit_codes_and_texts_pass_through(self):
        self.assertEqual(run("--version").returncode, 0)
        self.assertFails(2, run("info"))
        self.assertFails(1, run("info", self.folder / "none.h5"), "none.h5")


if __name__ == "__main__":
    unittest.main()
