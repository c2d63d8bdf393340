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

ObliqueLine obliqueLine(const StatisticsData& line)
{
    const double dx = double(line.endX) - line.beginX;
    const double dy = double(line.endY) - line.beginY;
    // Unlike the anchor of the crossings, the end points have no half pixel added to y.
    const PixVal<double> first{line.beginX + 0.5, line.beginX + 0.5, double(line.beginY)};
    const PixVal<double> last{line.endX + 0.5, line.endX + 0.5, double(line.endY)};
    return {first,       last,      line.beginX + 0.5, line.beginY + 0.5, dy / dx,
            line.beginX, line.endX, line.beginY,       line.endY};
}

bool straight(const StatisticsData& line)
{
    return line.beginX == line.endX || line.beginY == line.endY;
}

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
        samples =
            readStraight(reader, straightPixels(line.beginX, line.beginY, line.endX, line.endY));
        result.length = static_cast<double>(samples.size() - 1);
        result.curve = straightCurve(samples, result.length);
        sumStraight(result, samples);
    } else {
        const ObliqueLine geometry = obliqueLine(line);
        samples = readOblique(reader, crossedPixels(geometry));
        result.length = std::abs(double(line.endX) - line.beginX) *
                        std::sqrt(geometry.slope * geometry.slope + 1);
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
