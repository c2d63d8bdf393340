// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Interpolation in L*a*b* (CIE 15:2004; sRGB as in IEC 61966-2-1).
#include "imagelib/display/tables/ColorRamp.h"

#include "imagelib/image/Assert.h"

#include <algorithm>
#include <cmath>

namespace morvend::imglib {

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

constexpr Matrix xyzFromLinear{{{0.4123907992659595, 0.357584339383878, 0.1804807884018343},
                                {0.21263900587151027, 0.715168678767756, 0.07219231536073371},
                                {0.01933081871559182, 0.11919477979462598, 0.9505321522496607}}};
constexpr Matrix linearFromXyz{{{3.2409699419045226, -1.537383177570094, -0.4986107602930034},
                                {-0.9692436362808796, 1.8759675015077202, 0.04155505740717559},
                                {0.05563007969699366, -0.20397695888897652, 1.0569715142428786}}};
constexpr Lab white{0.9504559270516716, 1.0, 1.0890577507598784};
constexpr double kappa = 24389.0 / 27.0;

Lab product(const Matrix& matrix, const Lab& vector)
{
    Lab result{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            result[row] += matrix[row][column] * vector[column];
    return result;
}

double distance(const Lab& left, const Lab& right)
{
    return std::hypot(left[0] - right[0], left[1] - right[1], left[2] - right[2]);
}

/// A point of the smooth curve through the anchors (Catmull-Rom), from 0 to anchors.size() - 1.
Lab curve(const std::vector<Lab>& anchors, double position)
{
    const std::size_t last = anchors.size() - 1;
    const std::size_t i = std::min(static_cast<std::size_t>(position), last - 1);
    const double t = position - static_cast<double>(i);
    const Lab& p1 = anchors[i];
    const Lab& p2 = anchors[i + 1];
    const Lab& p0 = i > 0 ? anchors[i - 1] : p1;
    const Lab& p3 = i + 2 <= last ? anchors[i + 2] : p2;
    Lab result{};
    for (std::size_t axis = 0; axis < 3; ++axis)
        result[axis] = 0.5 * (2 * p1[axis] + t * (p2[axis] - p0[axis]) +
                              t * t * (2 * p0[axis] - 5 * p1[axis] + 4 * p2[axis] - p3[axis]) +
                              t * t * t * (3 * p1[axis] - p0[axis] - 3 * p2[axis] + p3[axis]));
    return result;
}

}  // namespace

Lab labFromRgb(Rgb color)
{
    Lab linear{};
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const double value = static_cast<double>((color >> (16 - 8 * channel)) & 255) / 255.0;
        linear[channel] = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    }
    const Lab xyz = product(xyzFromLinear, linear);
    std::array<double, 3> f{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double ratio = xyz[axis] / white[axis];
        f[axis] = ratio > 216.0 / 24389.0 ? std::cbrt(ratio) : (kappa * ratio + 16.0) / 116.0;
    }
    return {116.0 * f[1] - 16.0, 500.0 * (f[0] - f[1]), 200.0 * (f[1] - f[2])};
}

Rgb rgbFromLab(const Lab& lab)
{
    const double fy = (lab[0] + 16.0) / 116.0;
    const std::array<double, 3> f{fy + lab[1] / 500.0, fy, fy - lab[2] / 200.0};
    Lab xyz{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double cube = f[axis] * f[axis] * f[axis];
        const double ratio = cube > 216.0 / 24389.0 ? cube : (116.0 * f[axis] - 16.0) / kappa;
        xyz[axis] = ratio * white[axis];
    }
    Rgb color = 0;
    for (const double linear : product(linearFromXyz, xyz)) {
        const double held = std::clamp(linear, 0.0, 1.0);
        const double value =
            held <= 0.0031308 ? 12.92 * held : 1.055 * std::pow(held, 1.0 / 2.4) - 0.055;
        color = color << 8 | static_cast<Rgb>(std::lround(255.0 * value));
    }
    return color;
}

std::vector<unsigned char> bgraEntries(std::span<const Rgb> colors)
{
    std::vector<unsigned char> entries;
    entries.reserve(4 * colors.size());
    for (const Rgb color : colors) {
        for (const unsigned shift : {0U, 8U, 16U})
            entries.push_back(static_cast<unsigned char>(color >> shift & 255));
        entries.push_back(255);
    }
    return entries;
}

std::vector<unsigned char> colorRamp(const std::vector<Rgb>& anchors, std::size_t size)
{
    assert(anchors.size() >= 2 && size >= 2);
    std::vector<Lab> points(anchors.size());
    std::transform(anchors.begin(), anchors.end(), points.begin(), labFromRgb);

    // The length along the curve in fine steps, then the points that divide it equally.
    const std::size_t steps = 256 * (anchors.size() - 1);
    const auto place = [&](double step) { return curve(points, step / 256.0); };
    std::vector<double> way(steps + 1, 0.0);
    for (std::size_t i = 1; i <= steps; ++i)
        way[i] = way[i - 1] +
                 distance(place(static_cast<double>(i)), place(static_cast<double>(i) - 1.0));

    std::vector<Rgb> entries;
    entries.reserve(size);
    std::size_t step = 0;
    for (std::size_t entry = 0; entry < size; ++entry) {
        const double target =
            way[steps] * static_cast<double>(entry) / static_cast<double>(size - 1);
        while (step + 1 < steps && way[step + 1] < target)
            ++step;
        const double part = (target - way[step]) / (way[step + 1] - way[step]);
        entries.push_back(
            rgbFromLab(place(static_cast<double>(step) + std::clamp(part, 0.0, 1.0))));
    }
    return bgraEntries(entries);
}

}  // namespace morvend::imglib
