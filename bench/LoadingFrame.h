// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of a detector of 4 and of 16 megapixels, as the benchmarks of loading use them.
#pragma once

#include "imagelib/image/MImage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>

namespace tarvik::bench {

/// Poisson counts that fall from the beam centre outwards, reflections, gaps between modules and
/// some defective pixels, as a mask marks them.
template <class T>
struct LoadingFrame {
    LoadingFrame(int megapixels, unsigned seed)
        : image(megapixels == 4 ? 2070 : 4148, megapixels == 4 ? 2167 : 4362, T(0))
        , mask(image, 0U)
    {
        std::mt19937 random(seed);
        auto* pixel = static_cast<T*>(image.data());
        auto* mark = static_cast<unsigned*>(mask.data());
        const double cx = image.width() / 2.0;
        const double cy = image.height() / 2.0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x, ++pixel, ++mark) {
                if (x % 1040 >= 1030 || y % 551 >= 514) {
                    *pixel = static_cast<T>(-1);  // all bits set where there is no sign
                    *mark = 1;
                    continue;
                }
                double left = std::exp(-0.2 - 3.0 * std::exp(-std::hypot(x - cx, y - cy) / 500));
                for (double product = 1; (product *= double(random()) * 0x1p-32) > left;)
                    ++*pixel;
                if (random() % 20'000 == 0)
                    *pixel = static_cast<T>(random() % 30'000);
            }
        // The same for each seed: a series has one mask.
        std::minstd_rand defects(7);
        mark = static_cast<unsigned*>(mask.data());
        for (std::size_t i = 0; i < mask.size() / 5000; ++i)
            mark[defects() % mask.size()] |= 8;
    }

    morvend::imglib::MImage image;
    morvend::imglib::MImage mask;
};

}  // namespace tarvik::bench
