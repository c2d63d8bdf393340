// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Thumbnails as lists of numbers.
#include "bin/image/ThumbnailReport.h"

#include "bin/image/ChosenImage.h"
#include "bin/image/JsonText.h"
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "logic/loading/Thumbnail.h"

#include <ostream>

namespace tarvik::tool {

using morvend::imglib::MImage;

namespace {

/// All pixels, row by row.
std::string jsonOf(const MImage& image)
{
    std::string text;
    morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        const T* pixels = image.pixels<T>();
        for (std::size_t i = 0; i < image.size(); ++i)
            text += (i ? ", " : "") + ImageNumber::ofPixel(pixels[i]).json();
    });
    return '[' + text + ']';
}

}  // namespace

void ThumbnailReport::run(const Arguments& arguments, std::ostream& out)
{
    const ChosenImage chosen(arguments);
    const MImage mask = chosen.mask();
    ImageStatistics statistics;
    ComputeStatistics(&statistics).computeNumbers(chosen.image, mask);
    const MImage thumbnail = thumbnail::ofImage(chosen.image, statistics.hasNegatives);
    const std::string type = morvend::datatypes::typeStr(thumbnail.type());
    if (!arguments.json) {
        out << "Size                  " << thumbnail.width() << " x " << thumbnail.height()
            << " pixels, " << type << " of " << thumbnail.typeBits() << " bits\n";
        return;
    }
    JsonObject object;
    object.add("width", tool::jsonOf(thumbnail.width()));
    object.add("height", tool::jsonOf(thumbnail.height()));
    object.add("type", quoted(type));
    object.add("bits", tool::jsonOf(static_cast<int>(thumbnail.typeBits())));
    object.add("pixels", thumbnail.empty() ? "[]" : jsonOf(thumbnail));
    object.add("mask", thumbnail.empty() ? "[]" : jsonOf(thumbnail::ofMask(mask)));
    out << object.text() << '\n';
}

}  // namespace tarvik::tool
