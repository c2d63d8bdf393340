// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where steps through a series lead.
#pragma once

#include "logic/loading/LeftOut.h"

#include <optional>

namespace morvend::imglib {
class MImageSeries;
}

/// Goes over the numbers that a series lacks, and not beyond its ends. Looks at most once whether
/// the series has changed: when a step would leave it, or when a file of it has gone.
/// Thread: that of the series.
class Steps {
public:
    explicit Steps(morvend::imglib::MImageSeries& series)
        : _series(series)
    {}

    /// The number that a step of n, not 0, leads to: the nearest of the series there or beyond, its
    /// end at the most; `from` when that is the end.
    int to(int from, int n);
    /// The next number in the direction of the last step, since an image can't be read; none at the
    /// end.
    std::optional<int> beyond(int number, const std::string& reason);

    bool forward() const { return _forward; }
    const LeftOut& leftOut() const { return _leftOut; }

private:
    void _lookOnce();
    bool _hasNoFile(int number) const;

    morvend::imglib::MImageSeries& _series;
    LeftOut _leftOut;
    bool _forward = true;
    bool _looked = false;
};
