# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Arrays as the images of the viewer.

Arrays have two dimensions, rows first, and values of bool, int8 to int64, uint8 to uint64, float32
or float64; float16 is widened. The values of a header, all optional:

    beam_center_x, beam_center_y           pixels, from the left upper corner of the first one
    detector_distance, sensor_thickness    metres
    x_pixel_size, y_pixel_size             metres
    wavelength                             angstroms
    threshold_energy                       electronvolts
    rotation_angle, rotation_angle_step    degrees
    count_time, frame_time                 seconds
    filter_transmission                    part of the light that comes through
    beam_flux                              photons a second
    saturation_value                       counts from which on a pixel is saturated
    data_collection_date, description, detector_number, imageDescription, rawHeader    texts
"""

from __future__ import annotations

from collections.abc import Mapping
from typing import Any, TypeAlias

import numpy
from numpy.typing import ArrayLike

from . import wire

Header: TypeAlias = float | int | str | bytes
FIELDS = wire.FLOAT_FIELDS | wire.INT_FIELDS | wire.TEXT_FIELDS


def make_image(array: ArrayLike, header: Mapping[str, Header] | None = None,
               mask: ArrayLike | None = None) -> wire.Image:
    """The image of an array. Raises ValueError or TypeError for what is none."""
    if mask is None and isinstance(array, numpy.ma.MaskedArray):
        mask = array.mask
    values = _pixels(array)
    fields: dict[str, Any] = dict(header or {})
    for name in fields:
        if name not in FIELDS:
            raise ValueError(f"{name!r} is no name of a header value; these are: "
                             + ", ".join(sorted(FIELDS)))
    if mask is not None:
        flags = numpy.asarray(mask)
        if not flags.ndim:  # of a masked array without masked values
            flags = numpy.full(values.shape, flags)
        if flags.shape != values.shape:
            raise ValueError(f"a mask of the shape {flags.shape} for an image of {values.shape}")
        if flags.dtype.kind != "u":
            flags = (flags != 0).astype(numpy.uint8)
        fields["pixel_mask"] = wire.Image.from_array(flags)
    return wire.Image.from_array(values, fields)


def _pixels(array: ArrayLike) -> numpy.typing.NDArray[Any]:
    values = numpy.asarray(array)
    if values.ndim != 2:
        raise ValueError(f"an image has two dimensions, not {values.ndim}")
    if not values.size:
        raise ValueError("an image without pixels")
    if values.dtype == numpy.float16:
        return values.astype(numpy.float32)
    if values.dtype.kind not in "biuf" or values.dtype.itemsize > 8:
        raise TypeError(f"no image can be made of {values.dtype}")
    return values


def header_values(image: wire.Image) -> dict[str, float | int | str]:
    """The header of an image that came from the viewer, without its mask."""
    return {name: value.decode(errors="replace") if isinstance(value, bytes) else value
            for name, value in image.header.items() if not isinstance(value, wire.Image)}
