# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Texts, images and drawings over a TARVIK message queue; the viewer does not listen yet."""

from .queue import MessageQueue, PeerGone
from .wire import Ellipse, Image, Line, Pixel, String, WireError

__all__ = ["Ellipse", "Image", "Line", "MessageQueue", "PeerGone", "Pixel", "String", "WireError"]
