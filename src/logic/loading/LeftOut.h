// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The images that a step went over, and the words for them.
#pragma once

#include <optional>
#include <string>

/// Collects what can't be shown on the way of a step. A value; numbers are those of the series.
class LeftOut {
public:
    /// There are no images of these numbers, both included.
    void missing(int from, int to);
    /// The image is there but can't be read. @param reason  kept of the first one
    void unreadable(int number, const std::string& reason);
    bool empty() const { return !_missing && !_unreadable; }

    /// Such as "images 3 to 7 are missing; image 8 can't be read: ..."; empty without any.
    std::string text() const;

private:
    struct Range {
        int low;
        int high;
        long long count;
    };
    static void _add(std::optional<Range>& range, int low, int high);
    static std::string _name(const Range& range);

    std::optional<Range> _missing;
    std::optional<Range> _unreadable;
    std::string _reason;
};
