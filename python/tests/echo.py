# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Sends back each message that comes over the queue named on the command line.

    echo.py NAME [ENDS]

It ends after that many messages. One end of the tests of the C++ queue.
"""

import sys

from tarvik import MessageQueue

with MessageQueue(sys.argv[1]) as queue:
    for _ in range(int(sys.argv[2])):
        queue.send(queue.receive(timeout=120))
    queue.receive(timeout=120)  # the last word says that all has arrived
