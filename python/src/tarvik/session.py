# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The viewer that calls use which name none."""

from __future__ import annotations

import threading
from collections.abc import Mapping

from numpy.typing import ArrayLike

from .daemon import Daemon
from .errors import DaemonGone, NoObject
from .frames import MainFrame, SubFrame
from .images import Header

_lock = threading.RLock()
_daemon: Daemon | None = None
_shown: dict[str, SubFrame] = {}


def default_daemon() -> Daemon:
    """The viewer of this process; started by the first call, and again after its end."""
    global _daemon
    with _lock:
        if _daemon is None or not _daemon.alive:
            _daemon = Daemon()
        return _daemon


def open_main_frame(width: int = 1200, height: int = 800, *, glsl: bool = True,
                    hide_tool_bar: bool = False, disable_close: bool = False,
                    daemon: Daemon | None = None) -> MainFrame:
    """Opens a window of that size, in screen pixels.

        glsl           False lets the processor colour the images
        hide_tool_bar  leaves the views alone in the window
        disable_close  the user can't close the window
        daemon         a viewer of your own; otherwise there is one for the whole process
    """
    viewer = daemon or default_daemon()
    reply = viewer.call(0, "openMainFrame", int(width), int(height), bool(glsl),
                        bool(hide_tool_bar), bool(disable_close))
    return MainFrame(viewer, int(reply.text))


def show(array: ArrayLike, name: str = "", *, header: Mapping[str, Header] | None = None,
         mask: ArrayLike | None = None) -> SubFrame:
    """Shows an array in a window, for notebooks: the next call shows the next array in the same
    window, unless the user has closed it.

        name    arrays of different names have windows of their own, which bear it as title
        header  see SubFrame.load_image(), and so for `mask`

    Returns the view. The windows close when Python ends.
    """
    with _lock:
        view = _shown.get(name)
        if view is not None:
            try:
                view.load_image(array, header, mask)
                return view
            except (NoObject, DaemonGone):
                del _shown[name]
        frame = open_main_frame()
        try:
            view = frame.open_sub_frame()
            if name:
                view.set_title(name)
            view.load_image(array, header, mask)
        except BaseException:
            frame.close()
            raise
        _shown[name] = view
        return view
