// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MColorMap: checks of the parameters, and the walk row by row through a rectangle.
#include "imagelib/display/MColorMap.h"

#include "imagelib/display/ColorMapper.h"
#include "imagelib/display/LegendScale.h"
#include "imagelib/display/MColorTable.h"
#include "imagelib/display/MRect.h"
#include "imagelib/image/MImage.h"

#include <algorithm>

namespace morvend::imglib {

namespace {

bool isRgba(const std::string& format)
{
    if (format == "ARGB")
        return false;
    if (format == "RGBA")
        return true;
    throw MBadParameterException("Unknown colour format \"" + format + "\"");
}

std::string sizeText(int width, int height)
{
    return std::to_string(width) + " x " + std::to_string(height);
}

void checkMask(const MImage& mask, const MImage& image)
{
    if (mask.width() != image.width() || mask.height() != image.height())
        throw MBadParameterException("A mask of " + sizeText(mask.width(), mask.height()) +
                                     " pixels does not fit an image of " +
                                     sizeText(image.width(), image.height()));
}

void checkRect(const MRect& rect, const MImage& image)
{
    // Without sums, which could leave the range of int.
    if (rect.left() < 0 || rect.top() < 0 || rect.width() < 0 || rect.height() < 0 ||
        rect.width() > image.width() || rect.height() > image.height() ||
        rect.left() > image.width() - rect.width() || rect.top() > image.height() - rect.height())
        throw MBadParameterException("A part of " + sizeText(rect.width(), rect.height()) +
                                     " pixels at (" + std::to_string(rect.left()) + ", " +
                                     std::to_string(rect.top()) + ") leaves an image of " +
                                     sizeText(image.width(), image.height()));
}

}  // namespace

void MColorMap::rgb(MImage& result, const MImage& image, double foreground, double background,
                    double logForeground, const MColorTable& table, const std::string& format,
                    const MImage* mask, MRect* rect, int countCutoff, bool highlightDefective,
                    bool highlightSaturated)
{
    if (mask && mask->empty())
        mask = nullptr;
    if (mask)
        checkMask(*mask, image);
    const MRect part = rect ? *rect : MRect(0, 0, image.width(), image.height());
    checkRect(part, image);
    const ColorSettings settings{
        foreground,     background,  logForeground,      &table,
        isRgba(format), countCutoff, highlightDefective, highlightSaturated};

    // The result may be the image or the mask itself. Otherwise its memory is released first, so
    // that the new colours reuse it while it is warm.
    if (&result != &image && &result != mask)
        result = MImage();
    MImage colors(part.width(), part.height(), datatypes::UINT, 32);
    if (!colors.empty()) {
        const ColorMapper mapper(settings, image.type());
        const auto imageWidth = static_cast<std::size_t>(image.width());
        const bool wholeRows = part.width() == image.width();
        const std::size_t runs = wholeRows ? 1 : static_cast<std::size_t>(part.height());
        const std::size_t length = colors.size() / runs;
        auto* out = static_cast<std::uint32_t*>(colors.data());
        for (std::size_t i = 0; i < runs; ++i) {
            const std::size_t first = (static_cast<std::size_t>(part.top()) + i) * imageWidth +
                                      static_cast<std::size_t>(part.left());
            mapper.run({out + i * length, length}, image, mask, first);
        }
    }
    result = std::move(colors);
}

void MColorMap::legend(MImage& result, std::map<int, double>& ticks, double foreground,
                       double background, double logForeground, const MColorTable& table,
                       const std::string& format)
{
    if (result.typeBits() != 32 || result.type() == datatypes::FLOAT)
        throw MBadParameterException("A colour bar needs an image of 32-bit integers");
    const ColorRule<float> rule(ColorSettings{foreground, background, logForeground, &table,
                                              isRgba(format), 0, false, false});
    const LegendScale scale(foreground, background, logForeground, table.logDataSize() != 0,
                            result.height());
    ticks = scale.ticks();

    const auto entry = [](double part, std::size_t size) {
        return std::min(static_cast<std::size_t>(part * static_cast<double>(size)), size - 1);
    };
    const auto width = static_cast<std::size_t>(result.width());
    auto* out = static_cast<std::uint32_t*>(result.data());
    for (int row = 0; row < result.height(); ++row, out += width) {
        const double place = (result.height() - row - 0.5) / result.height();
        const double share = scale.linearShare();
        const std::size_t index =
            place < share
                ? entry(place / share, table.linDataSize())
                : table.linDataSize() + entry((place - share) / (1.0 - share), table.logDataSize());
        std::fill_n(out, width, rule.colors[index]);
    }
}

}  // namespace morvend::imglib
