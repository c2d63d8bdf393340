// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A frame as the benchmarks of the analysis use it.
#pragma once

#include "imagelib/image/MImage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>

namespace tarvik::bench {

/// Counts of a radial background, reflections of up to 30000, module gaps marked in the mask.
struct AnalysisFrame {
    explicit AnalysisFrame(int side)
        : image(side, side, 0)
        , mask(side, side, 0U)
    {
        std::mt19937 random(1);
        auto* pixel = static_cast<int*>(image.data());
        auto* flag = static_cast<unsigned*>(mask.data());
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x, ++pixel, ++flag) {
                const double r = std::hypot(x - side / 2.0, y - side / 2.0);
                const double mean = 1 + 12 * std::exp(-r / 500);
                const double noise = static_cast<double>(random() % 1000) / 500.0 - 1.0;
                *pixel = static_cast<int>(std::max(0.0, mean + 2 * std::sqrt(mean) * noise));
                if (random() % 5000 == 0)
                    *pixel = static_cast<int>(random() % 30000);
                if (x % 1040 >= 1030 || y % 551 >= 514) {
                    *pixel = -1;
                    *flag = 1;
                }
            }
    }

    morvend::imglib::MImage image;
    morvend::imglib::MImage mask;
};

}  // namespace tarvik::bench
