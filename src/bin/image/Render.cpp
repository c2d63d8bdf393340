// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours an image as the viewer does and packs it as PNG.
#include "bin/image/Render.h"

#include "bin/image/ChosenImage.h"
#include "bin/image/ImageNumber.h"
#include "bin/image/SourceGuard.h"
#include "imagelib/display/BlockMaxima.h"
#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MColorTable.h"
#include "imagelib/display/MContrast.h"
#include "imagelib/image/GapValues.h"
#include "imagelib/io/formats/base/AtomicFile.h"
#include "logic/analysis/statistics/PartRange.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>
#include <limits>
#include <utility>

namespace tarvik::tool {

using namespace morvend;
using namespace morvend::imglib;

namespace {

const MColorTable& tableOf(const std::string& name)
{
    const std::pair<const char*, const MColorTable*> tables[] = {
        {"HDR", MColorTable::hdr()},   {"GS", MColorTable::grey()},
        {"H", MColorTable::heat()},    {"RB", MColorTable::rainbow()},
        {"V", MColorTable::viridis()}, {"C", MColorTable::cividis()}};
    for (const auto& [shortName, table] : tables)
        if (name == shortName || name == table->identifier())
            return *table;
    throw UsageError("There is no colour table " + name);
}

struct Levels {
    double background = 0;
    double foreground = 0;
};

Levels levelsOf(const MImage& image, const MImage* mask, const Arguments& arguments)
{
    Levels levels;
    const bool wanted = !arguments.background || !arguments.foreground;
    if (wanted && arguments.contrast) {
        const auto range =
            contrastLevelsOfPart(image, mask ? *mask : MImage(image, 0U),
                                 {0, 0, image.width(), image.height()}, *arguments.contrast);
        if (!range)
            throw MBadParameterException("No pixel is left for a contrast: " + arguments.file);
        levels = {range->background, range->foreground};
    } else if (wanted) {
        MContrast(6.0, 10000)(levels.foreground, levels.background, image, mask);
    }
    levels.background = arguments.background.value_or(levels.background);
    levels.foreground = arguments.foreground.value_or(levels.foreground);
    if (!(levels.background < levels.foreground))
        throw MBadParameterException("The foreground " + ImageNumber(levels.foreground).text() +
                                     " is not above the background " +
                                     ImageNumber(levels.background).text() + ": " + arguments.file);
    return levels;
}

Picture scaled(const MImage& colours, const Scale& scale)
{
    const auto sizeOf = [&scale](int size) {
        return (std::int64_t(size) * scale.up + scale.down - 1) / scale.down;
    };
    const std::int64_t width = sizeOf(colours.width());
    const std::int64_t height = sizeOf(colours.height());
    constexpr std::int64_t Most = std::numeric_limits<int>::max();
    if (width > Most || height > Most || width * height > Most / 4)
        throw MBadParameterException("The picture would have " + std::to_string(width) + " x " +
                                     std::to_string(height) + " pixels, which is too large");
    Picture picture{static_cast<int>(width), static_cast<int>(height), {}};
    picture.pixels.reserve(static_cast<std::size_t>(width * height));
    const auto* source = colours.pixels<unsigned int>();
    // As in a view: the pixel under the centre, of four the second one.
    const auto place = [&scale](std::int64_t pixel, int size) {
        const int before = scale.down > 1 ? scale.down / 2 - 1 : 0;
        return std::min<std::int64_t>(pixel * scale.down / scale.up + before, size - 1);
    };
    for (std::int64_t y = 0; y < height; ++y) {
        const auto* row = source + place(y, colours.height()) * colours.width();
        for (std::int64_t x = 0; x < width; ++x)
            picture.pixels.push_back(row[place(x, colours.width())]);
    }
    return picture;
}

}  // namespace

Picture Render::paint(const MImage& image, const Arguments& arguments)
{
    constexpr double LogarithmicRange = 10000;
    const MColorTable& table = tableOf(arguments.table);
    const auto& header = image.optionalData();
    const MImage ownMask = maskOrGaps(image);
    const MImage* mask = ownMask.empty() ? nullptr : &ownMask;
    const Levels levels = levelsOf(image, mask, arguments);
    Scale scale = arguments.scale;
    MImage shown = image;
    MImage shownMask;
    if (arguments.largest && scale.down > 1) {
        shown = blockMaxima(image, mask, scale.down);
        shownMask = *std::as_const(shown).optionalData().pixel_mask();
        mask = &shownMask;
        scale.down = 1;
    }
    MImage colours;
    MColorMap::rgb(colours, shown, levels.foreground, levels.background,
                   levels.foreground * LogarithmicRange, table, "ARGB", mask, nullptr,
                   header.saturation_value().value_or(std::numeric_limits<int>::max()), true,
                   header.saturation_value().has_value());
    return scaled(colours, scale);
}

void Render::run(const Arguments& arguments)
{
    const ChosenImage chosen(arguments);
    const Picture picture = paint(chosen.image, arguments);
    SourceGuard(arguments.file, chosen.series).check(arguments.output);

    // All pixels are opaque: without the alpha channel the file is smaller.
    const QImage image(reinterpret_cast<const uchar*>(picture.pixels.data()), picture.width,
                       picture.height, picture.width * 4, QImage::Format_RGB32);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    if (!image.save(&png, "PNG"))
        throw MRuntimeException("The picture cannot be packed: " + arguments.output);
    AtomicFile file(arguments.output);
    file.write(png.data().constData(), static_cast<std::size_t>(png.data().size()));
    file.commit();
}

}  // namespace tarvik::tool
