# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""What can go wrong. A wait that takes too long is Python's own TimeoutError."""


class TarvikError(Exception):
    """Any of the failures below."""


class DaemonGone(TarvikError):
    """The viewer has ended, could not start, or has ended the connection."""


class NoObject(TarvikError):
    """The window or view is closed."""


class NoMethod(TarvikError):
    """The viewer knows no such call; it may be older than this package."""


class NoImage(TarvikError):
    """The view shows no image yet."""


class CallFailed(TarvikError):
    """The viewer could not do what was asked for; the text says why."""
