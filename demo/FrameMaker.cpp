// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Background, ring, reflections, defects.
#include "demo/FrameMaker.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tarvik::demo {

using morvend::imglib::MImage;

namespace {

constexpr double RadiusSteps = 4;      // of the background for each pixel of radius
constexpr double RingSpacing = 3.67;   // Angstrom
constexpr double RingWidth = 150e-6;   // m
constexpr double SpotRadius = 300e-6;  // m
constexpr double FrameTime = 0.1;      // s
constexpr std::uint64_t BackgroundStream = 1, ReflectionStream = 2, HotStream = 3;

/// Radius of the powder ring on the detector in metres.
double ringRadius(const Detector& detector)
{
    const double s = Wavelength / (2 * RingSpacing);  // sine of theta
    return detector.distance * 2 * s * std::sqrt(1 - s * s) / (1 - 2 * s * s);
}

double meanAt(double radius, const Detector& detector)
{
    const double air = radius / (0.12 * detector.distance);
    const double ring = (radius - ringRadius(detector)) / RingWidth;
    const double solvent = (radius - 0.3 * detector.distance) / (0.12 * detector.distance);
    // The beam stop blocks the direct beam and what is near it.
    const double stop = radius < 0.02 * detector.distance ? 0.02 : 1.0;
    return stop * (0.1 + 4 / (1 + air * air) + 1.2 / (1 + solvent * solvent) +
                   3 / (1 + ring * ring * ring * ring));
}

std::string dateOf(int frame)
{
    const int tenths = frame % 600, minute = frame / 600 % 60;
    char text[40];
    std::snprintf(text, sizeof text, "2026-01-15T12:%02d:%02d.%d", minute, tenths / 10,
                  tenths % 10);
    return text;
}

}  // namespace

FrameMaker::FrameMaker(const Detector& detector, int frames, std::uint64_t seed)
    : _detector(detector)
    , _frames(frames)
    , _seed(seed)
    , _defects(makeDefects(detector, seed))
    , _reflections(reflections(detector, frames, seed))
{
    const double most = detector.width() + detector.height();
    for (int i = 0; i < most * RadiusSteps; ++i)
        _background.push_back(static_cast<std::uint16_t>(
            PoissonTable::indexOf(meanAt(i / RadiusSteps * detector.pixelSize, detector))));
}

MImage FrameMaker::make(int frame) const
{
    MImage image(_detector.width(), _detector.height(), morvend::datatypes::UINT, 32);
    auto* const pixels = static_cast<unsigned*>(image.data());
    _addBackground(pixels, frame);
    for (const Reflection& reflection : _reflections)
        _addReflection(pixels, reflection, frame);
    _applyDefects(pixels, frame);

    auto& header = image.optionalData();
    header.set_beam_center_x(static_cast<float>(_detector.beamX()));
    header.set_beam_center_y(static_cast<float>(_detector.beamY()));
    header.set_detector_distance(static_cast<float>(_detector.distance));
    header.set_wavelength(static_cast<float>(Wavelength));
    header.set_x_pixel_size(static_cast<float>(_detector.pixelSize));
    header.set_y_pixel_size(static_cast<float>(_detector.pixelSize));
    header.set_rotation_angle(static_cast<float>(StartAngle + frame * AngleStep));
    header.set_rotation_angle_step(static_cast<float>(AngleStep));
    header.set_filter_transmission(1.0F);
    header.set_saturation_value(CountCutoff);
    header.set_sensor_thickness(450e-6F);
    header.set_threshold_energy(6199.0F);
    header.set_count_time(static_cast<float>(FrameTime - 0.001));
    header.set_frame_time(static_cast<float>(FrameTime));
    header.set_beam_flux(1e11F);
    header.set_data_collection_date(dateOf(frame));
    header.set_description("Demo detector " + _detector.name);
    header.set_detector_number(std::string("DEMO-0001"));
    header.set_pixel_mask(_defects.mask);
    return image;
}

MImage FrameMaker::flagged(const MImage& frame) const
{
    MImage image(frame.width(), frame.height(), morvend::datatypes::INT, 32);
    image.setOptionalData(frame.optionalData());
    image.optionalData().set_pixel_mask(boost::none);
    auto* const to = static_cast<int*>(image.data());
    const auto* const from = frame.pixels<unsigned>();
    const auto* const mask = _defects.mask.pixels<unsigned>();
    for (std::size_t i = 0; i < frame.size(); ++i)
        to[i] = mask[i] == 0 ? static_cast<int>(from[i]) : mask[i] & Gap ? -1 : -2;
    return image;
}

void FrameMaker::_addBackground(unsigned* pixels, int frame) const
{
    const auto width = static_cast<std::size_t>(_detector.width());
    for (int y = 0; y < _detector.height(); ++y) {
        const std::uint64_t row =
            static_cast<std::uint64_t>(frame) << 32 | static_cast<unsigned>(y);
        Random random(_seed, BackgroundStream, row);
        const double dy = y - _detector.beamY();
        unsigned* const line = pixels + static_cast<std::size_t>(y) * width;
        std::uint64_t bits = 0;
        for (std::size_t x = 0; x < width; ++x) {
            bits = x % 2 ? bits >> 32 : random.next();  // one number for two pixels
            const double dx = static_cast<double>(x) - _detector.beamX();
            const double radius = std::sqrt(dx * dx + dy * dy);
            line[x] = _poisson.count(_background[static_cast<std::size_t>(radius * RadiusSteps)],
                                     static_cast<std::uint32_t>(bits));
        }
    }
}

void FrameMaker::_addReflection(unsigned* pixels, const Reflection& reflection, int frame) const
{
    const double photons = reflection.intensity * partIn(frame, reflection.frame);
    if (photons < 1)
        return;
    const double radius = std::max(1.2, SpotRadius / _detector.pixelSize);
    // (1 - d^2/R^2)^2 has the volume pi R^2 / 3.
    const double peak = photons / (3.14159265358979 * radius * radius / 3);
    const int reach = static_cast<int>(radius) + 1;
    const int cx = static_cast<int>(reflection.x), cy = static_cast<int>(reflection.y);
    const auto place = static_cast<std::uint64_t>(cy) << 32 | static_cast<unsigned>(cx);
    Random random(_seed + static_cast<std::uint64_t>(frame), ReflectionStream, place);
    for (int y = std::max(0, cy - reach); y <= std::min(_detector.height() - 1, cy + reach); ++y)
        for (int x = std::max(0, cx - reach); x <= std::min(_detector.width() - 1, cx + reach);
             ++x) {
            const double dx = x + 0.5 - reflection.x, dy = y + 0.5 - reflection.y;
            const double left = 1 - (dx * dx + dy * dy) / (radius * radius);
            if (left <= 0)
                continue;
            unsigned& pixel =
                pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(_detector.width()) +
                       static_cast<std::size_t>(x)];
            pixel = std::min(pixel + largeCount(peak * left * left, random),
                             static_cast<unsigned>(CountCutoff));
        }
}

void FrameMaker::_applyDefects(unsigned* pixels, int frame) const
{
    Random random(_seed, HotStream, static_cast<std::uint64_t>(frame));
    for (const std::size_t hot : _defects.unnoticedHot)
        pixels[hot] = 5000 + random.below(3000);
    const auto* const mask = _defects.mask.pixels<unsigned>();
    for (std::size_t i = 0; i < _defects.mask.size(); ++i) {
        if (mask[i] & Gap)
            pixels[i] = 0xffffffff;
        else if (mask[i] & Dead)
            pixels[i] = 0xfffffffe;
        else if (mask[i] & Noisy)
            pixels[i] = random.below(CountCutoff);
    }
}

}  // namespace tarvik::demo
