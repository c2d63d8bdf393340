// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the working set to the ordered list.
#include "logic/analysis/peaks/ImagePeaks.h"

#include "logic/analysis/peaks/ComputePeaks.h"

using morvend::imglib::MImage;

void ImagePeaks::setImage(const MImage& image, const MImage& mask)
{
    const ComputePeaks::PeakSet found = ComputePeaks().compute(image, mask);
    _pixels.clear();
    _pixels.reserve(MostPeaks);
    _pixels.assign(found.rbegin(), found.rend());
}

ImagePeaks::Pixel ImagePeaks::operator[](int i) const
{
    if (i < 0 || i >= numberOfPeaks())
        return {};
    return _pixels[static_cast<std::size_t>(i)];
}
