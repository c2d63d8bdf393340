// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Masks read as images, turned, joined and folded.
#include "imagelib/io/formats/hdf5/MaskReader.h"

#include "imagelib/image/MException.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

namespace {

constexpr int MostMasks = 16;
constexpr unsigned Tested = 0x1f;
constexpr unsigned Folded = 0xffe0;
constexpr unsigned Defective = 0x10;

MImage turned(const MImage& mask)
{
    MImage result(mask.height(), mask.width(), datatypes::UINT, 32);
    auto* to = static_cast<unsigned*>(result.data());
    const unsigned* from = mask.pixels<unsigned>();
    const auto width = static_cast<std::size_t>(mask.width());
    const auto height = static_cast<std::size_t>(mask.height());
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            to[x * height + y] = from[y * width + x];
    return result;
}

/// The masks of all modules, below each other.
MImage stacked(const FrameSet& set, FrameSets& sets)
{
    const FrameShape& shape = set.shape();
    MImage result(shape.width(), static_cast<int>(shape.frames) * shape.height(), datatypes::UINT,
                  32);
    auto* to = static_cast<unsigned*>(result.data());
    for (std::size_t i = 0; i < set.frames(); ++i) {
        const MImage module = set.read(i, sets).asType<unsigned>();
        to = std::copy_n(module.pixels<unsigned>(), module.size(), to);
    }
    return result;
}

/// One mask in the shape of the image; empty when there is none that fits.
MImage readOne(FrameSets& sets, const std::string& file, const std::string& path, int width,
               int height)
{
    try {
        if (!sets.files().find(sets.files().file(file), path))
            return {};
        const FrameSetPtr set = sets.at({file, path});
        const FrameShape& shape = set->shape();
        const bool fits = shape.width() == width && shape.height() == height;
        const bool lies = shape.width() == height && shape.height() == width;
        if (!fits && shape.rank == 3 && shape.width() == width &&
            shape.frames == static_cast<hsize_t>(height) / shape.rows &&
            shape.frames * shape.rows == static_cast<hsize_t>(height))
            return stacked(*set, sets);
        if (!fits && !lies)
            return {};
        const MImage mask = set->read(0, sets).asType<unsigned>();
        return fits ? mask : turned(mask);
    } catch (const MException&) {
        return {};  // an image without its mask is worth more than none
    }
}

}  // namespace

MImage readMask(FrameSets& sets, const std::string& file, const std::vector<std::string>& paths,
                int width, int height)
{
    MImage mask;
    for (const std::string& path : paths) {
        mask = readOne(sets, file, path, width, height);
        for (int number = 2; number <= MostMasks && !mask.empty(); ++number) {
            const MImage more =
                readOne(sets, file, path + "_" + std::to_string(number), width, height);
            if (more.empty())
                break;
            auto* bits = static_cast<unsigned*>(mask.data());
            std::transform(bits, bits + mask.size(), more.pixels<unsigned>(), bits,
                           [](unsigned left, unsigned right) { return left | right; });
        }
        if (!mask.empty())
            break;
    }
    if (!mask.empty()) {
        auto* bits = static_cast<unsigned*>(mask.data());
        std::transform(bits, bits + mask.size(), bits, [](unsigned value) {
            const bool fold = (value & Tested) == 0 && (value & Folded) != 0;
            return value | (fold ? Defective : 0);
        });
    }
    return mask;
}

}  // namespace morvend::imglib::hdf5
