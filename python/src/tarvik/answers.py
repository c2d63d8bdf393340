# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What a view says about itself. Positions and lengths are pixels of the image."""

from __future__ import annotations

import dataclasses
import json
from typing import Any, TypeAlias

import numpy
from numpy.typing import NDArray

Point: TypeAlias = tuple[float, float]


def _number(value: Any) -> float:
    """NaN for what JSON can't say."""
    return float("nan") if value is None else float(value)


def _point(values: Any) -> Point | None:
    return None if values is None else (_number(values[0]), _number(values[1]))


@dataclasses.dataclass(frozen=True)
class ImageInfo:
    """The image in view; the numbers are -1 without one."""

    file: str  # empty without file
    index: int  # its number in the series, whose ends are `first` and `last`
    first: int
    last: int
    width: int
    height: int
    loading: bool  # another one is on its way

    @classmethod
    def parse(cls, text: str) -> ImageInfo:
        return cls(**json.loads(text))


@dataclasses.dataclass(frozen=True)
class Viewport:
    """The part of the image that is in view."""

    offset_x: float
    offset_y: float
    zoom_power: int  # screen pixels for each image pixel, as a power of two from -2 to 6
    visible: tuple[float, float, float, float]  # left, top, width, height

    @classmethod
    def parse(cls, text: str) -> Viewport:
        values = json.loads(text)
        left, top, width, height = (_number(each) for each in values["visible"])
        return cls(_number(values["offset_x"]), _number(values["offset_y"]),
                   int(values["zoom_power"]), (left, top, width, height))


@dataclasses.dataclass(frozen=True)
class Contrast:
    """The counts that are shown in the last and in the first colour of the table."""

    foreground: float
    background: float
    color_mode: str

    @classmethod
    def parse(cls, text: str) -> Contrast:
        values = json.loads(text)
        return cls(_number(values["foreground"]), _number(values["background"]),
                   values["color_mode"])


@dataclasses.dataclass(frozen=True)
class Cursor:
    """The pixel under the cursor, with texts as the panels show them."""

    x: int
    y: int
    intensity: str
    distance: str  # from the beam centre; empty if the header does not say where that is
    resolution: str

    @classmethod
    def parse(cls, text: str) -> Cursor | None:
        values = json.loads(text)
        if not values.pop("inside"):
            return None
        values = {name: "" if value is None else value for name, value in values.items()}
        return cls(int(values.pop("x")), int(values.pop("y")), **values)


@dataclasses.dataclass(frozen=True)
class RegionNumbers:
    """The numbers of a region; 0 where its kind has none, NaN where they are not defined."""

    integral: float
    mean: float
    sigma: float
    length: float  # of a line, or of the section through a circle
    area: float
    minimum: float
    maximum: float
    background_mean: float
    background_sigma: float
    intensity: float  # of the spot in a circle, above the background around it
    intensity_sigma: float
    centroid: Point


@dataclasses.dataclass(frozen=True, eq=False)
class Curve:
    """A curve of a region."""

    x: NDArray[numpy.float64]
    y: NDArray[numpy.float64]
    bad: NDArray[numpy.bool_]  # where masked pixels take part
    x_label: str
    y_label: str

    def __eq__(self, other: object) -> bool:
        return (isinstance(other, Curve)
                and (self.x_label, self.y_label) == (other.x_label, other.y_label)
                and all(numpy.array_equal(mine, its, equal_nan=True) for mine, its in
                        ((self.x, other.x), (self.y, other.y), (self.bad, other.bad))))

    @classmethod
    def make(cls, points: list[list[Any]], labels: list[str]) -> Curve:
        values = numpy.array([[_number(each) for each in (*point, 0, 0)[:3]] for point in points],
                             dtype=numpy.float64).reshape(-1, 3)
        x_label, y_label = (*labels, "", "")[:2]
        return cls(values[:, 0], values[:, 1], values[:, 2] != 0, x_label, y_label)


@dataclasses.dataclass(frozen=True)
class Region:
    """The region of interest: its kind, where it is, its numbers and its curves. Without a region
    the kind is None."""

    kind: str | None  # "line", "box", "circle" or "ring"
    numbers: RegionNumbers
    curve: Curve
    second_curve: Curve  # of a box
    begin: Point | None = None  # of a line; a corner of a box
    end: Point | None = None
    centre: Point | None = None  # of a circle or ring
    radius: float | None = None  # of a circle
    theta: float | None = None  # of the section through it, in radians
    inner_radius: float | None = None  # of a ring
    outer_radius: float | None = None

    @classmethod
    def parse(cls, text: str) -> Region:
        values = json.loads(text)
        numbers = {name: _number(value) for name, value in values["numbers"].items()
                   if name != "centroid"}
        centroid = _point(values["numbers"]["centroid"]) or (0.0, 0.0)
        return cls(values["type"], RegionNumbers(**numbers, centroid=centroid),
                   Curve.make(values["curve"], values["curve_labels"]),
                   Curve.make(values["second_curve"], values["second_curve_labels"]),
                   _point(values.get("begin")), _point(values.get("end")),
                   _point(values.get("centre")), values.get("radius"), values.get("theta"),
                   values.get("inner_radius"), values.get("outer_radius"))


@dataclasses.dataclass(frozen=True)
class Peak:
    """A local maximum."""

    x: int
    y: int
    value: float

    @classmethod
    def parse(cls, text: str) -> list[Peak]:
        return [cls(int(x), int(y), _number(value)) for x, y, value in json.loads(text)["peaks"]]


@dataclasses.dataclass(frozen=True)
class Click:
    """A pixel that the user has clicked on; it may lie outside the image."""

    x: int
    y: int
    button: str  # "left", "right" or "middle"
    keys: frozenset[str]  # held meanwhile: "shift", "control", "alt"

    @classmethod
    def parse(cls, text: str) -> Click:
        values = json.loads(text)
        buttons = {1: "left", 2: "right", 4: "middle"}
        keys = {0x02000000: "shift", 0x04000000: "control", 0x08000000: "alt"}
        return cls(int(values["x"]), int(values["y"]), buttons.get(values["button"], "other"),
                   frozenset(name for bit, name in keys.items() if values["modifiers"] & bit))
