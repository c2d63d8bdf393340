# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What becomes of tarvik-image when a library crashes under it, or somebody ends it."""

import os
import pathlib
import re
import signal
import subprocess
import time

import fabio
import h5py

from toolcase import TOOL, ToolCase

# Sanitizers would turn some signals into exit codes.
SIGNALS_END = {"ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":handle_segv=0",
               "TSAN_OPTIONS": os.environ.get("TSAN_OPTIONS", "") + ":handle_segv=0"}


def ended(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] in "ZX"
    except FileNotFoundError:
        return True


class Crash(ToolCase):
    def write_series(self):
        with h5py.File(self.folder / "x_master.h5", "w") as f:
            # No chunk is written: all pixels have the value that stands for missing ones.
            f.create_dataset("entry/data/data", (5000, 256, 256), "u2", chunks=(1, 256, 256),
                             fillvalue=1)

    def start(self, output="y.cbf"):
        """A conversion that is at work, the process that works, and the folder of the results."""
        self.write_series()
        results = pathlib.Path(self.folder / f"results {time.monotonic_ns()}")
        results.mkdir()
        tool = subprocess.Popen([TOOL, "convert", "--all", self.folder / "x_master.h5",
                                 results / output], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True, env=os.environ | SIGNALS_END)
        self.addCleanup(tool.communicate)
        self.addCleanup(tool.kill)
        self.wait(lambda: list(results.iterdir()))
        children = pathlib.Path(f"/proc/{tool.pid}/task/{tool.pid}/children").read_text()
        worker, = map(int, children.split())
        return tool, worker, results

    def wait(self, condition):
        end = time.time() + 120
        while not condition():
            self.assertLess(time.time(), end)
            time.sleep(0.001)

    def test_a_crash_is_a_line_with_file_and_place_and_exit_code_1(self):
        for number, name in ((signal.SIGSEGV, "Segmentation fault"), (signal.SIGKILL, "Killed")):
            tool, worker, _ = self.start()
            os.kill(worker, number)
            out, error = tool.communicate(timeout=120)
            self.assertEqual((tool.returncode, out), (1, ""))
            self.assertRegex(error, rf"^tarvik-image: the program ended with signal {number:d} "
                                    rf"\({name}\) while converting image \d+: "
                                    rf"{self.folder}/x_master\.h5\n$")

    def test_a_signal_that_ends_it_on_purpose_does_so_between_two_images(self):
        for output in ("o.tif", "o_master.h5"):
            tool, worker, results = self.start(output)
            tool.terminate()
            _, error = tool.communicate(timeout=120)
            self.assertEqual((tool.returncode, error), (1, "tarvik-image: Stopped on request\n"))
            self.assertTrue(ended(worker))
            for path in results.iterdir():
                self.assertRegex(path.name, r"^o_\d{5}\.tif$")
                self.assertEqual(fabio.open(str(path)).data.shape, (256, 256))

    def test_a_region_over_a_series_says_how_far_it_came(self):
        self.write_series()
        # The lines of all images are more than a pipe takes: it can't end before it is read.
        tool = subprocess.Popen([TOOL, "roi", "--series", "--box", "1,1,9,9",
                                 self.folder / "x_master.h5"], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True)
        self.addCleanup(tool.communicate)
        self.addCleanup(tool.kill)
        lines = [tool.stdout.readline()]
        tool.terminate()
        lines += tool.stdout.read().splitlines()
        error = tool.stderr.read()
        tool.wait()
        done = re.fullmatch(r"tarvik-image: Stopped on request after (\d+) of 5000 images\n", error)
        self.assertTrue(done, error)
        self.assertEqual((tool.returncode, lines[-1]),
                         (1, f"# Incomplete: {done[1]} of 5000 images"))
        self.assertEqual(sum(not line.startswith("#") for line in lines if line), int(done[1]))

    def test_its_worker_ends_with_it(self):
        tool, worker, _ = self.start()
        tool.kill()
        tool.wait()
        self.wait(lambda: ended(worker))
