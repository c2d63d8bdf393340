# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The package itself: types, help and what is installed."""

import inspect
import pydoc
import shutil
import subprocess
import sys
import zipfile

from conftest import ROOT

import tarvik


def test_types_are_sound(tmp_path):
    done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(tmp_path),
                           str(ROOT / "python/src/tarvik"), str(ROOT / "python/examples")],
                          capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stdout + done.stderr


def test_a_wheel_is_built_offline(tmp_path):
    shutil.copytree(ROOT / "python", tmp_path / "python")
    subprocess.run([sys.executable, "-m", "build", "--wheel", "--no-isolation", "--outdir",
                    str(tmp_path), str(tmp_path / "python")], check=True, capture_output=True)
    wheel, = tmp_path.glob("*.whl")
    assert wheel.name == "tarvik-3.2.0-py3-none-any.whl"
    names = zipfile.ZipFile(wheel).namelist()
    assert {"tarvik/py.typed", "tarvik/frames.py"} <= set(names)


def test_help_says_what_each_name_is_for():
    text = pydoc.plain(pydoc.render_doc(tarvik))
    assert "tarvik.show(" in text and "with tarvik.open_main_frame()" in text
    for name in tarvik.__all__:
        said = inspect.getdoc(getattr(tarvik, name))
        assert said and not said.startswith(name + "("), name
