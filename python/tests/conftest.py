# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""A viewer for the tests, with settings of its own. They need a display and, in the variable
TARVIK, the program; the variable is set by ctest."""

import faulthandler
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python" / "src"))
sys.dont_write_bytecode = True

import pytest  # noqa: E402

import tarvik  # noqa: E402

GUARD = 120  # seconds after which a test hangs


@pytest.fixture(scope="session", autouse=True)
def _own_settings():
    folder = tempfile.mkdtemp(prefix="tarvik-")
    os.environ["XDG_CONFIG_HOME"] = folder
    os.environ["PYTHONPATH"] = str(ROOT / "python" / "src")
    yield
    shutil.rmtree(folder, ignore_errors=True)


@pytest.fixture(scope="module")
def daemon(_own_settings):
    with tarvik.Daemon() as viewer:
        yield viewer


@pytest.fixture
def window(daemon):
    with tarvik.open_main_frame(800, 600, daemon=daemon) as frame:
        yield frame


@pytest.fixture
def view(window):
    return window.open_sub_frame()


@pytest.fixture(autouse=True)
def _watchdog():
    """Prints where all threads are, those of viewers too, and ends the run if a test hangs."""
    faulthandler.dump_traceback_later(GUARD * 2, exit=True)
    yield
    faulthandler.cancel_dump_traceback_later()


def stacks(pid):
    """Where the threads of a process are, for the reader of a failed test."""
    if shutil.which("gdb"):
        return subprocess.run(["gdb", "-p", str(pid), "-batch", "-ex", "thread apply all bt 12"],
                              capture_output=True, text=True, check=False).stdout
    tasks = pathlib.Path(f"/proc/{pid}/task").iterdir()
    return "\n".join(f"{each.name} {(each / 'comm').read_text().strip()} in "
                     f"{(each / 'wchan').read_text()}" for each in tasks)


def wait_for(condition, what):
    """Waits for something that comes soon, but on a busy machine not at once."""
    end = time.monotonic() + GUARD
    while not (value := condition()):
        assert time.monotonic() < end, f"waited in vain for {what}"
        time.sleep(0.01)
    return value
