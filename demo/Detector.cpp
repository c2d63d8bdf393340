// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sizes of the demo detectors and the making of their masks.
#include "demo/Detector.h"

#include "demo/Random.h"

namespace tarvik::demo {

using morvend::imglib::MImage;

Detector detectorNamed(const std::string& name)
{
    if (name == "small")
        return {name, 2, 2, 128, 96, 4, 8, 400e-6, 0.15};
    if (name == "1m")
        return {name, 2, 4, 512, 256, 8, 16, 100e-6, 0.12};
    if (name == "4m")
        return {name, 4, 8, 512, 256, 8, 16, 100e-6, 0.2};
    if (name == "16m")
        return {name, 8, 16, 512, 256, 8, 16, 100e-6, 0.4};
    throw morvend::MBadParameterException("unknown size: " + name);
}

Defects makeDefects(const Detector& detector, std::uint64_t seed)
{
    constexpr std::uint64_t Stream = 0xdefec7;
    Defects defects{MImage(detector.width(), detector.height(), 0U), {}};
    auto* const mask = static_cast<unsigned*>(defects.mask.data());
    const auto width = static_cast<std::size_t>(detector.width());
    for (std::size_t i = 0; i < defects.mask.size(); ++i) {
        const int x = static_cast<int>(i % width), y = static_cast<int>(i / width);
        if (x % (detector.moduleWidth + detector.gapX) >= detector.moduleWidth ||
            y % (detector.moduleHeight + detector.gapY) >= detector.moduleHeight)
            mask[i] = Gap;
    }
    Random random(seed, Stream);
    const auto size = static_cast<std::uint32_t>(defects.mask.size());
    const auto place = [&] {
        std::uint32_t pixel = random.below(size);
        while (mask[pixel] != 0)
            pixel = random.below(size);
        return pixel;
    };
    for (std::uint32_t i = 0; i < 4 + size / 40000; ++i)
        mask[place()] = Dead;
    for (std::uint32_t i = 0; i < 4 + size / 80000; ++i)
        mask[place()] = Noisy;
    for (int i = 0; i < 3; ++i)
        defects.unnoticedHot.push_back(place());
    return defects;
}

}  // namespace tarvik::demo
