// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A set of numbers that come in runs.
#pragma once

#include <map>

/// Costs what its runs cost, not its numbers. A value.
class NumberRuns {
public:
    using Number = unsigned long;

    void add(Number number);
    void remove(Number number);
    /// First and last number of each run, by rising numbers.
    const std::map<Number, Number>& runs() const { return _runs; }

private:
    std::map<Number, Number> _runs;
};
