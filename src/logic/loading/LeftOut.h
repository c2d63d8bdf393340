// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The images that a step skipped, and the words for them.
#pragma once

#include <optional>
#include <string>

/// Collects what a step skips because it can't be shown. Numbers are image numbers of the
/// series. A value.
class LeftOut {
public:
    /// Notes that these numbers, both included, have no images.
    void missing(int from, int to);
    /// Notes an image that exists but can't be read. @param reason  only the first one is kept
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
    /// Widens a range by more numbers.
    static void _add(std::optional<Range>& range, int low, int high);
    /// Such as "images 3 to 7 ".
    static std::string _name(const Range& range);

    std::optional<Range> _missing;
    std::optional<Range> _unreadable;
    std::string _reason;
};
