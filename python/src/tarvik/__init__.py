# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Talks to the TARVIK image viewer: texts, images and drawings over its message queue."""

from .queue import MessageQueue, PeerGone
from .wire import Ellipse, Image, Line, Pixel, String, WireError

__all__ = ["Ellipse", "Image", "Line", "MessageQueue", "PeerGone", "Pixel", "String", "WireError"]
