# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The TARVIK image viewer in the hands of a script.

    import numpy, tarvik

    tarvik.show(numpy.random.poisson(10, (1024, 1024)))    # a window; again: the same window

    with tarvik.open_main_frame() as window:
        view = window.open_sub_frame()
        view.load_file("/data/crystal_00001.cbf")
        print(view.wait_for_image())
        view.set_paint_list([tarvik.Ellipse(512, 384, 10, 10)])
        click = view.wait_for_click(timeout=60)

The viewer is a process of its own: the program that the variable TARVIK names, or `tarvik` in the
PATH. It ends with Python. help(tarvik.SubFrame) lists what a view can do; an exception says what
went wrong: NoObject when the user has closed the window, DaemonGone when the viewer has ended,
TimeoutError when something did not happen in time.
"""

from .answers import (Click, Contrast, Cursor, Curve, ImageInfo, Peak, Region, RegionNumbers,
                      Viewport)
from .daemon import Daemon
from .errors import CallFailed, DaemonGone, NoImage, NoMethod, NoObject, TarvikError
from .frames import MainFrame, SubFrame
from .queue import MessageQueue, PeerGone
from .session import default_daemon, open_main_frame, show
from .wire import Ellipse, Image, Line, Pixel, Text, WireError

__all__ = ["CallFailed", "Click", "Contrast", "Cursor", "Curve", "Daemon", "DaemonGone", "Ellipse",
           "Image", "ImageInfo", "Line", "MainFrame", "MessageQueue", "NoImage", "NoMethod",
           "NoObject", "Peak", "PeerGone", "Pixel", "Region", "RegionNumbers", "SubFrame",
           "TarvikError", "Text", "Viewport", "WireError", "default_daemon", "open_main_frame",
           "show"]
