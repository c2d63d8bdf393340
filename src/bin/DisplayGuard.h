// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What becomes of a start without a display.
#pragma once

/// While one stands, a toolkit that can't reach a display ends the process with one sentence on
/// standard error and exit code 1, where by itself it aborts. Make it before the application object
/// and release it after that was made. What the toolkit said in between comes out at its release.
/// Thread: GUI; one at a time.
class DisplayGuard {
public:
    DisplayGuard();
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard&) = delete;
    DisplayGuard& operator=(const DisplayGuard&) = delete;

    void release();
};
