// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where a long command stands, for somebody who watches.
#pragma once

namespace tarvik::tool {

/// A line on standard error that is written over and over, and wiped at the end. Silent when
/// standard error is no terminal.
class Progress {
public:
    /// `last` is the number of the last image.
    explicit Progress(int last);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void show(int number);

private:
    int _last;
    bool _watched;
};

}  // namespace tarvik::tool
