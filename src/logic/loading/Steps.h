// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where steps through a series lead.
#pragma once

#include "logic/loading/LeftOut.h"

#include <optional>
#include <string>

namespace morvend {
class MException;
namespace imglib {
class MImageSeries;
}
}  // namespace morvend

/// Goes over the numbers that a series lacks, and not beyond its ends. Looks at most once whether
/// the series has changed: when a step would leave it, or when a file of it has gone.
/// Thread: that of the series.
class Steps {
public:
    /// Images in a row that are tried in vain before a search ends: a file may claim any number.
    static constexpr int mostFailures = 1000;
    /// Those of them that may cost a reader process each.
    static constexpr int mostCrashes = 3;

    /// Why an image can't be shown.
    struct Failure {
        Failure() = default;
        explicit Failure(const morvend::MException& error);

        std::string reason;
        bool crashed = false;  ///< the process that was to read it
    };

    explicit Steps(morvend::imglib::MImageSeries& series)
        : _series(series)
    {}

    /// The number that a step of n, not 0, leads to: the nearest of the series there or beyond, its
    /// end at the most; `from` when that is the end.
    int to(int from, int n);
    /// The number to try next in the direction of the last step, since an image can't be shown;
    /// none at the end of the series and when too many have failed.
    std::optional<int> beyond(int number, const Failure& failure);
    /// Has beyond() ended before the end of the series?
    bool gaveUp() const { return _failures >= mostFailures || _crashes >= mostCrashes; }

    /// The direction of the last step.
    bool forward() const { return _forward; }
    const LeftOut& leftOut() const { return _leftOut; }

private:
    /// Looks for new images, the first time it is called.
    void _lookOnce();
    /// Has the file of an image gone?
    bool _hasNoFile(int number) const;

    morvend::imglib::MImageSeries& _series;
    LeftOut _leftOut;
    bool _forward = true;
    bool _looked = false;
    int _failures = 0;
    int _crashes = 0;
};
