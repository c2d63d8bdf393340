// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sigma clipping, the walk over labelled pixels, and lattice distances.
#include "logic/analysis/roi/LineReflections.h"

#include "logic/analysis/roi/ConnectedComponentLabelling.h"
#include "logic/analysis/roi/RegionSums.h"
#include <cmath>
#include <sstream>

using morvend::imglib::MImage;

namespace roi {

namespace {

constexpr int Margin = 10;
constexpr int ClippingPasses = 3;

double pixelDistance(const ListPixel& a, const ListPixel& b)
{
    return std::hypot(double(a.x) - b.x, double(a.y) - b.y);
}

/// Only components that the line crosses are searched: the box of a diagonal line is as large as
/// the image.
void labelList(std::vector<ListPixel>& list, const PixelBox& box,
               const std::function<bool(int, int)>& above)
{
    ConnectedComponentLabelling components(box.width(), box.height());
    const auto field = [&](int x, int y) { return above(box.left + x, box.top + y); };
    std::vector<ListPixel*> candidates;
    for (ListPixel& pixel : list) {
        pixel.label = 0;
        // Outside the image nothing is above the threshold.
        if (pixel.x >= box.left && pixel.x < box.right && pixel.y >= box.top &&
            pixel.y < box.bottom && above(pixel.x, pixel.y))
            candidates.push_back(&pixel);
    }
    int label = 0;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (!components.fill(field, candidates[i]->x - box.left, candidates[i]->y - box.top))
            continue;
        ++label;
        for (std::size_t j = i; j < candidates.size(); ++j)
            if (candidates[j]->label == 0 &&
                components.visited(candidates[j]->x - box.left, candidates[j]->y - box.top))
                candidates[j]->label = label;
    }
}

/// One pixel for each label on the line, in the order along it.
std::vector<ListPixel> strongestOfEachLabel(std::vector<ListPixel> list)
{
    std::vector<ListPixel> reflections;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].label < 1)
            continue;
        ListPixel best = list[i];
        for (std::size_t j = i + 1; j < list.size(); ++j) {
            if (list[j].label != list[i].label)
                continue;
            list[j].label = 0;
            // Compared with the integer part of the best value: in a float image a slightly weaker
            // pixel farther on takes over.
            if (list[j].value > std::trunc(best.value))
                best = list[j];
        }
        reflections.push_back(best);
    }
    return reflections;
}

std::string distanceText(const MImage& image, const ListPixel& a, const ListPixel& b)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(3);
    const double spacing = latticeDistance(image, a.x, a.y, b.x, b.y);
    if (spacing >= 0)
        text << spacing << " \u212B";
    else
        text << pixelDistance(a, b) << " px";
    return text.str();
}

}  // namespace

double reflectionThreshold(const std::vector<ListPixel>& list, double mean, double sigma)
{
    for (int pass = 0; pass < ClippingPasses; ++pass) {
        const double low = mean - 3 * sigma;
        const double high = mean + 3 * sigma;
        WeightedSums within;
        for (const ListPixel& pixel : list)
            if (!(pixel.value > high || pixel.value < low))
                within.add(pixel.value, 1);
        if (within.weight == 0)
            break;
        within.store(mean, sigma);
    }
    return mean + 3 * sigma;
}

PixelBox reflectionBox(int beginX, int beginY, int endX, int endY, const MImage& image)
{
    return {std::max(std::min(beginX, endX) - Margin, 0),
            std::max(std::min(beginY, endY) - Margin, 0),
            std::min(std::max(beginX, endX) + Margin, image.width()),
            std::min(std::max(beginY, endY) + Margin, image.height())};
}

void findReflections(RoiStatistics& result, std::vector<ListPixel> list, const PixelBox& box,
                     const std::function<bool(int x, int y)>& above, const MImage& image)
{
    if (list.empty())
        return;
    labelList(list, box, above);
    const std::vector<ListPixel> reflections = strongestOfEachLabel(list);
    for (std::size_t i = 0; i < reflections.size(); ++i) {
        const ListPixel& here = reflections[i];
        result.reflectionPositions.push_back(pixelDistance(here, list.front()));
        if (i + 1 == reflections.size())
            break;
        result.reflectionPixels.push_back({here.x, here.y});
        result.lineSpotsString.push_back(distanceText(image, here, reflections[i + 1]));
    }
}

}  // namespace roi

double latticeDistance(const MImage& image, double x1, double y1, double x2, double y2)
{
    const auto& header = image.optionalData();
    if (!header.beam_center_x() || !header.beam_center_y() || !header.detector_distance() ||
        !header.x_pixel_size() || !header.y_pixel_size() || !header.wavelength())
        return -1;
    const double centreX = *header.beam_center_x();
    const double centreY = *header.beam_center_y();
    const double sizeX = *header.x_pixel_size();
    const double sizeY = *header.y_pixel_size();
    const double distance = *header.detector_distance();
    const double a = (x1 - centreX) * sizeX;
    const double b = (y1 - centreY) * sizeY;
    const double c = (x2 - centreX) * sizeX;
    const double e = (y2 - centreY) * sizeY;
    const double d2 = distance * distance;
    const double cosine =
        (a * c + b * e + d2) / std::sqrt((a * a + b * b + d2) * (c * c + e * e + d2));
    const double root = std::sqrt(std::max(2 * (1 - cosine), 0.0));
    if (root == 0)
        return -1;
    return *header.wavelength() / root;
}
