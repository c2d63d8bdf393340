// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the histogram of a view shows of its contrast.
#pragma once

#include "gui/panels/HistogramScale.h"

namespace panels {

/// A contrast over the bins of an image. Counts only where something has changed that is counted,
/// so that a drag over a fixed span costs nothing.
class HistogramModel {
public:
    /// Takes a contrast over.
    /// @param minimum,maximum  of the image
    /// @param unit  see intensityUnit()
    void adopt(const ContrastData& contrast, double minimum, double maximum, double unit,
               const CountUpTo& countUpTo);
    void setLogarithmic(bool logX, bool logY);

    const ContrastData& contrast() const { return _contrast; }
    const Span& span() const { return _span; }
    const Bins& bins() const { return _bins; }
    const HistogramScale& scale() const { return _scale; }
    const QString& summary() const { return _summary; }
    /// Pixels of the levels.
    int foreground() const { return _scale.pixelOf(_contrast.foreground); }
    int background() const { return _scale.pixelOf(_contrast.background); }

private:
    ContrastData _contrast;
    Span _span;
    Bins _bins;
    HistogramScale _scale;
    QString _summary;
    bool _counted = false;
};

}  // namespace panels
