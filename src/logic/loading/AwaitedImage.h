// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image that a movie waits for.
#pragma once

#include "imagelib/io/formats/base/FileStamp.h"

#include <chrono>

/// At the end of a series that grows, an image that can't be read is usually one that its writer
/// has not finished. A movie asks for it again silently, until its file has not changed for
/// longer than writers pause. Thread: one at a time.
class AwaitedImage {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::seconds patience{5};

    /// Notes that the next image can't be read. @param stamp  of its file
    /// @returns true once, when its file has not changed for the time of `patience`: only then
    /// is it reported to the user
    bool isOverdue(int number, const morvend::imglib::FileStamp& stamp, Time now);
    /// True if this is the awaited image.
    bool is(int number) const { return _number == number; }
    /// Notes that an image has arrived.
    void clear() { _number = -1; }

private:
    int _number = -1;
    morvend::imglib::FileStamp _stamp;
    Time _since;
    bool _said = false;
};
