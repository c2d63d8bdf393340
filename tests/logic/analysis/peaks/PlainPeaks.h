// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The peak search as a plain loop, to compare the product with.
#pragma once

#include "imagelib/image/MaskBits.h"
#include "logic/analysis/peaks/ComputePeaks.h"

#include <vector>

namespace reference {

/// The definition, pixel by pixel.
template <class L, class R>
std::vector<ImagePeaks::Pixel> plainPeaks(const morvend::imglib::MImage& image,
                                          const morvend::imglib::MImage& mask)
{
    const L* p = image.pixels<L>();
    const R* m = mask.pixels<R>();
    const long n = long(image.size()), w = image.width();
    std::multiset<ImagePeaks::Pixel, ComputePeaks::Less> set;
    for (long i = 0; i < n; ++i) {
        bool candidate = maskrule::good(m[i]);
        if (set.size() >= 1000 && !(double(p[i]) > set.begin()->value))
            continue;
        for (const long k : {i - w - 1, i - w, i - w + 1, i - 1})
            candidate = candidate && !(k >= 0 && p[k] >= p[i]);
        for (const long k : {i + 1, i + w - 1, i + w, i + w + 1})
            candidate = candidate && !(k < n && p[k] > p[i]);
        if (candidate)
            set.insert({int(i % w), int(i / w), double(p[i])});
        if (set.size() > 1000)
            set.erase(set.begin());
    }
    return {set.rbegin(), set.rend()};
}

}  // namespace reference
