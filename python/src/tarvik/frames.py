# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""The windows and views of a viewer."""

from __future__ import annotations

import os
from collections.abc import Iterable, Mapping
from typing import Any, TypeVar

import numpy
from numpy.typing import ArrayLike, NDArray

from . import wire
from .answers import Click, Contrast, Cursor, ImageInfo, Peak, Region, Viewport
from .daemon import Argument, Daemon, Reply
from .errors import CallFailed, NoImage, NoObject
from .images import Header, header_values, make_image

Self = TypeVar("Self", bound="_Frame")


class _Frame:
    """Something with a number in the viewer."""

    def __init__(self, daemon: Daemon, number: int) -> None:
        self._daemon = daemon
        self._number = number

    def __eq__(self, other: object) -> bool:
        return (isinstance(other, _Frame) and self._number == other._number
                and self._daemon is other._daemon)

    def __hash__(self) -> int:
        return hash((id(self._daemon), self._number))

    def __repr__(self) -> str:
        return f"<tarvik.{type(self).__name__} {self._number}>"

    def __enter__(self: Self) -> Self:
        return self

    def __exit__(self, *_: object) -> None:
        if self._daemon.alive:
            self.close()

    def _call(self, command: str, *arguments: Argument, **options: Any) -> Reply:
        return self._daemon.call(self._number, command, *arguments, **options)

    def _wait(self, command: str, timeout: float | None) -> str:
        """A call that waits in the viewer, without end for None."""
        if timeout is None:
            return self._call(command, waits=None).text
        return self._call(command, max(0, min(round(timeout * 1000), 2**31 - 1)),
                          waits=timeout).text

    @property
    def daemon(self) -> Daemon:
        """The viewer that it belongs to."""
        return self._daemon

    @property
    def closed(self) -> bool:
        """Has somebody closed it, or the viewer ended?"""
        if not self._daemon.alive:
            return True
        try:
            self._wait("waitForClose", 0)
        except TimeoutError:
            return False
        return True

    def close(self) -> None:
        """Closes it; nothing happens if that is done already."""
        try:
            self._call("close")
        except (NoObject, CallFailed):
            pass

    def wait_for_close(self, timeout: float | None = None) -> None:
        """Waits until the user or close() closes it. Raises TimeoutError."""
        self._wait("waitForClose", timeout)


class MainFrame(_Frame):
    """A window, which holds views side by side. At the end of a `with` block it closes."""

    def open_sub_frame(self, hide_tool_buttons: bool = False) -> SubFrame:
        """Opens a view; without tool buttons it can't be closed by the user."""
        reply = self._call("openSubFrame", bool(hide_tool_buttons))
        return SubFrame(self._daemon, int(reply.text))

    def sub_frames(self) -> list[SubFrame]:
        """Its views, those that the user has opened too, in order of creation."""
        return [SubFrame(self._daemon, int(line))
                for line in self._call("subFrames").text.split()]

    def show_tool_bar(self) -> None:
        self._call("showToolBar")

    def hide_tool_bar(self) -> None:
        """Leaves the views alone in the window, without keyboard shortcuts."""
        self._call("hideToolBar")

    def enable_keyboard_shortcuts(self) -> None:
        self._call("enableKeyboardShortcuts")

    def disable_keyboard_shortcuts(self) -> None:
        self._call("disableKeyboardShortcuts")

    def enable_close(self) -> None:
        self._call("enableClose")

    def disable_close(self) -> None:
        """The user can't close the window any more; close() can."""
        self._call("disableClose")

    def synchronize_viewport(self, on: bool = True) -> None:
        """Views of images of one size show the same part of them."""
        self._call("synchronizeViewport", bool(on))

    def synchronize_contrast(self, on: bool = True) -> None:
        """Views of images of one size have the same contrast and colours."""
        self._call("synchronizeContrast", bool(on))

    def synchronize_statistics(self, on: bool = True) -> None:
        """Views of images of one size have the same region of interest."""
        self._call("synchronizeStatistics", bool(on))


class SubFrame(_Frame):
    """A view of one image. At the end of a `with` block it closes.

    Positions are pixels of the image; (0, 0) is the left upper corner of the first one.
    """

    # What it shows.

    def load_image(self, array: ArrayLike, header: Mapping[str, Header] | None = None,
                   mask: ArrayLike | None = None) -> None:
        """Shows a two-dimensional array. It is copied; the call returns when the viewer has it,
        and wait_for_image() when it is in view. The viewer keeps the last 25, for steps back.

            header  values by name, such as {"wavelength": 1.0, "beam_center_x": 512.5}, in metres,
                    seconds, degrees, angstroms, electronvolts and pixels; help(tarvik.images)
                    lists them
            mask    not 0 for each pixel without a value; a masked array brings its own
        """
        self._call("loadImage", attachment=make_image(array, header, mask))

    def load_file(self, path: str | os.PathLike[str]) -> None:
        """Opens a file, with the series that it belongs to. wait_for_image() waits for it."""
        self._call("loadFile", os.path.abspath(path))

    def go_to(self, number: int) -> None:
        """Shows another image of the series. wait_for_image() waits for it."""
        self._call("goTo", int(number))

    def wait_for_image(self, timeout: float | None = 60.0) -> ImageInfo:
        """Waits until no image is being loaded, and says what is in view. Raises CallFailed if
        the last one could not be loaded, NoImage, or TimeoutError."""
        return ImageInfo.parse(self._wait("waitForImage", timeout))

    def set_title(self, title: str) -> None:
        """A title that new images leave alone."""
        self._call("setTitle", title)

    def unset_title(self) -> None:
        """New images set the title again."""
        self._call("unsetTitle")

    # How it shows it.

    def set_viewport(self, offset_x: float, offset_y: float, zoom_power: int) -> None:
        """The place of the image and its zoom: 2 to that power, from -2 to 6."""
        self._call("setViewport", float(offset_x), float(offset_y), int(zoom_power))

    def set_offset_x(self, offset_x: float) -> None:
        """The horizontal place alone, as set_viewport()."""
        self._call("setOffsetX", float(offset_x))

    def set_offset_y(self, offset_y: float) -> None:
        """The vertical place alone, as set_viewport()."""
        self._call("setOffsetY", float(offset_y))

    def set_zoom_power(self, zoom_power: int) -> None:
        """The zoom alone, as set_viewport()."""
        self._call("setZoomPower", int(zoom_power))

    def set_contrast(self, foreground: float, background: float) -> None:
        """The counts for the last and the first colour of the table."""
        self._call("setContrast", float(foreground), float(background))

    def set_foreground(self, foreground: float) -> None:
        """The counts for the last colour alone."""
        self._call("setForeground", float(foreground))

    def set_background(self, background: float) -> None:
        """The counts for the first colour alone."""
        self._call("setBackground", float(background))

    def set_color_mode(self, color_mode: str) -> None:
        """"HDR", "GS", "H", "RB", "V", "C", or the whole name of a colour table."""
        self._call("setColorMode", color_mode)

    def show_resolution_rings(self) -> None:
        """Draws rings of equal resolution, where the header gives the geometry."""
        self._call("showResolutionRings")

    def hide_resolution_rings(self) -> None:
        self._call("hideResolutionRings")

    # What is drawn over it.

    def set_paint_list(self, items: Iterable[wire.Primitive]) -> None:
        """Draws Pixel, Line, Text and Ellipse over the image, in place of what was there."""
        self._call("setPaintList", attachment=list(items))

    def add_to_paint_list(self, items: Iterable[wire.Primitive]) -> None:
        """Draws more, over what is there."""
        self._call("addToPaintList", attachment=list(items))

    def clear_paint_list(self) -> None:
        """Removes all that was drawn."""
        self._call("clearPaintList")

    # Its frame.

    def show_tool_buttons(self) -> None:
        self._call("showToolButtons")

    def hide_tool_buttons(self) -> None:
        """Leaves the title alone in the title bar."""
        self._call("hideToolButtons")

    def set_active_color(self, red: int, green: int, blue: int) -> None:
        """The title bar of the active view; 0 to 255."""
        self._call("setActiveColor", int(red), int(green), int(blue))

    def set_non_active_color(self, red: int, green: int, blue: int) -> None:
        """The title bars of the other views."""
        self._call("setNonActiveColor", int(red), int(green), int(blue))

    # What can be learnt of it.

    def info(self) -> ImageInfo:
        """Which image is in view."""
        return ImageInfo.parse(self._call("viewInfo").text)

    def image(self) -> NDArray[Any]:
        """The image in view, read-only, in memory shared with the viewer."""
        return self._image("image").array()

    def mask(self) -> NDArray[Any]:
        """Its mask: 0 for each pixel that has a value."""
        return self._image("mask").array()

    def header(self) -> dict[str, float | int | str]:
        """The values of its header, with the corrections made in the viewer."""
        return header_values(self._image("image"))

    def picture(self) -> NDArray[numpy.uint8]:
        """What the view looks like, with all that is drawn over the image: rows of pixels of
        red, green, blue and alpha."""
        pixels = self._image("picture").array()
        channels = pixels.astype("<u4").view(numpy.uint8).reshape(*pixels.shape, 4)
        return numpy.ascontiguousarray(channels[:, :, [2, 1, 0, 3]])

    def _image(self, command: str) -> wire.Image:
        image = self._call(command, brings_image=True).image
        if image is None or not image.size:
            raise NoImage("the view shows no image yet")
        return image

    def viewport(self) -> Viewport:
        """The part of the image that is in view."""
        return Viewport.parse(self._call("viewport").text)

    def contrast(self) -> Contrast:
        """The counts of the first and the last colour, and the table."""
        return Contrast.parse(self._call("contrast").text)

    def cursor(self) -> Cursor | None:
        """The pixel under the cursor, None if it is elsewhere."""
        return Cursor.parse(self._call("cursor").text)

    def region(self) -> Region:
        """The region of interest with its numbers and curves, once they are computed."""
        return Region.parse(self._call("region").text)

    def peaks(self) -> list[Peak]:
        """The local maxima of the image, 1000 at most, the strongest first."""
        return Peak.parse(self._call("peaks").text)

    # What the user does.

    def wait_for_click(self, timeout: float | None = None) -> Click:
        """Waits for the next click into the view. Raises TimeoutError, or NoObject if the view is
        closed meanwhile."""
        return Click.parse(self._wait("waitForClick", timeout))

    def wait_for_region(self, timeout: float | None = None) -> Region:
        """Waits until the user has drawn or moved a region: its kind is chosen under Tools, in
        Statistics, Region of Interest; a drag with the right button draws it. Raises as
        wait_for_click()."""
        return Region.parse(self._wait("waitForRegion", timeout))
