// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image that a movie waits for.
#pragma once

#include "imagelib/io/series/FileStamp.h"

#include <chrono>

/// At the end of a series that grows an image that can't be read is as a rule one that its writer
/// has not finished: it is asked for again in silence, until its file has stayed as it is for
/// longer than writers pause. Thread: one at a time.
class AwaitedImage {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::seconds patience{5};

    /// Nothing after an image can be shown. @param number  the next one @param stamp  of its file
    /// @returns whether it is to be said now: once, when the patience has come to an end
    bool isOverdue(int number, const morvend::imglib::FileStamp& stamp, Time now);
    /// Has it been asked for in vain?
    bool is(int number) const { return _number == number; }
    /// An image has come.
    void clear() { _number = -1; }

private:
    int _number = -1;
    morvend::imglib::FileStamp _stamp;
    Time _since;
    bool _said = false;
};
