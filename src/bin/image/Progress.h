// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Shows the progress of a long command.
#pragma once

namespace tarvik::tool {

/// A line on standard error that is rewritten, and cleared at the end. Silent when
/// standard error isn't a terminal.
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
