// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Failures of many images in few lines.
#pragma once

#include <string>
#include <vector>

/// Gathers the failures of a walk through a series. Those whose texts differ only in numbers, such
/// as those of a thousand missing files, are of one kind. Thread: one at a time.
class FailureSummary {
public:
    /// The same for all failures of a kind.
    static std::string kindOf(const std::string& reason);

    /// @returns whether it is the first of its kind
    bool add(long long number, const std::string& reason);
    /// One line for each kind, in the order in which they came: the reason of the only image or,
    /// for several, their number and the reason of the first.
    std::vector<std::string> lines() const;
    void clear() { _kinds.clear(); }

private:
    struct Kind {
        std::string kind;
        std::string reason;
        long long count = 0;
        long long first = 0;
        long long last = 0;
    };
    std::vector<Kind> _kinds;
};
