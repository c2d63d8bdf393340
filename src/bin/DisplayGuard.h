// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reports a start without a display.
#pragma once

/// While one exists, a toolkit that can't reach a display ends the process with one sentence on
/// standard error and exit code 1, instead of aborting. Make it before the application object
/// and release it after that is made. What the toolkit printed in between is printed at the
/// release. Thread: GUI; one at a time.
class DisplayGuard {
public:
    DisplayGuard();
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard&) = delete;
    DisplayGuard& operator=(const DisplayGuard&) = delete;

    void release();
};
