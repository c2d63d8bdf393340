// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a region gives in one image of a series.
#pragma once

#include <limits>

/// The numbers of a region in one image, as RoiStatistics has them. A value.
struct SeriesPoint {
    enum class State {
        Good,
        Masked,  ///< no pixel of the region is good: there are no numbers
        Failed   ///< the image can't be read: there are no numbers
    };
    enum class Quantity { Mean, Sum, Maximum, Intensity };

    int number = -1;
    State state = State::Failed;
    double mean = 0;
    double sum = 0;
    double maximum = 0;
    /// Of a circle alone: the sum above the background, with its error.
    double intensity = 0;
    double intensitySigma = 0;

    bool good() const { return state == State::Good; }
    /// NaN without numbers.
    double value(Quantity quantity) const
    {
        if (!good())
            return std::numeric_limits<double>::quiet_NaN();
        switch (quantity) {
        case Quantity::Mean:
            return mean;
        case Quantity::Sum:
            return sum;
        case Quantity::Maximum:
            return maximum;
        case Quantity::Intensity:
            break;
        }
        return intensity;
    }
};
