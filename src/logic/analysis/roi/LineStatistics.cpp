// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The line, written once over all pixel types.
#include "logic/analysis/roi/RegionFunctor.h"

#include "imagelib/image/BinaryDispatcher.h"
#include "logic/analysis/roi/LineProfile.h"
#include "logic/analysis/roi/LineReflections.h"

#include <cmath>
#include <cstdlib>

using morvend::imglib::MImage;
using namespace roi;

namespace {

/// The pixels that are searched for reflections: all of a straight line, but none if it was
/// drawn towards smaller coordinates; the good ones of an oblique line.
std::vector<ListPixel> reflectionList(const StatisticsData& line,
                                      const std::vector<LineSample>& samples)
{
    std::vector<ListPixel> list;
    const bool all = straight(line);
    if (all && (line.beginX > line.endX || line.beginY > line.endY))
        return list;
    for (const LineSample& sample : samples)
        if (all || sample.good)
            list.push_back({sample.x, sample.y, sample.value, 0});
    return list;
}

}  // namespace

template <>
template <class L, class R>
RoiStatistics ComputeLineStatistics::operator()(const MImage& image, const MImage& mask) const
{
    const StatisticsData& line = *_selection;
    RoiStatistics result;
    if (line.beginX == line.endX && line.beginY == line.endY)
        return result;
    const PixelReader<L, R> reader(image, mask);
    std::vector<LineSample> samples;
    if (straight(line)) {
        samples = readStraight(reader, pixelsUnder(line));
        result.length = static_cast<double>(samples.size() - 1);
        result.curve = straightCurve(samples, result.length);
        sumStraight(result, samples);
    } else {
        const double dx = double(line.endX) - line.beginX;
        const double slope = (double(line.endY) - line.beginY) / dx;
        samples = readOblique(reader, pixelsUnder(line));
        result.length = std::abs(dx) * std::sqrt(slope * slope + 1);
        result.curve = obliqueCurve(samples);
        sumOblique(result, samples);
    }
    const std::vector<ListPixel> list = reflectionList(line, samples);
    const double threshold = reflectionThreshold(list, result.mean, result.sigma);
    const PixelBox box = reflectionBox(line.beginX, line.beginY, line.endX, line.endY, image);
    const auto above = [&](int x, int y) {
        return reader.unmarked(x, y) && static_cast<double>(reader.value(x, y)) > threshold;
    };
    findReflections(result, list, box, above, image);
    return result;
}

template <>
RoiStatistics ComputeLineStatistics::compute(const MImage& image, const MImage& mask) const
{
    return morvend::datatypes::BinaryDispatcher<const ComputeLineStatistics&, const MImage,
                                                const MImage, RoiStatistics>::Go(image, mask,
                                                                                 *this);
}
