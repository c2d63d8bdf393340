// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Finds the targets of steps through a series.
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

/// Finds the image number that a step leads to, over gaps in the series and no further than its
/// ends. Looks for new images at most once: if a step would leave the series, or if one of its
/// files is gone.
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
        bool crashed = false;  ///< the reading process crashed
    };

    explicit Steps(morvend::imglib::MImageSeries& series)
        : _series(series)
    {}

    /// The number that a step of n images, not 0, leads to. In a gap it is the next number of the
    /// series in that direction; beyond the end it is the end. `from` if there is no such number.
    int to(int from, int n);
    /// Reports an image that can't be shown. @returns the number to try next in the direction of
    /// the last step; nothing at the end of the series and after too many failures
    std::optional<int> beyond(int number, const Failure& failure);
    /// True if beyond() ended before the end of the series.
    bool gaveUp() const { return _failures >= mostFailures || _crashes >= mostCrashes; }

    /// The direction of the last step.
    bool forward() const { return _forward; }
    const LeftOut& leftOut() const { return _leftOut; }

private:
    /// Looks for new images, the first time it is called.
    void _lookOnce();
    /// True if the file of an image has gone.
    bool _hasNoFile(int number) const;

    morvend::imglib::MImageSeries& _series;
    LeftOut _leftOut;
    bool _forward = true;
    bool _looked = false;
    int _failures = 0;
    int _crashes = 0;
};
