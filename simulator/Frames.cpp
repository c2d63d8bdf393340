// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/Frames.h"

#include "demo/FrameMaker.h"
#include "imagelib/codec/Bitshuffle.h"

#include <algorithm>
#include <cstring>

namespace tarvik::simulator {

using morvend::imglib::MImage;

namespace {

constexpr int DifferentFrames = 8;
constexpr std::uint64_t Seed = 7;

/// A detector of whole modules that covers a size.
demo::Detector detectorFor(const QSize& size)
{
    demo::Detector detector = demo::detectorNamed("4m");
    const auto fit = [](int length, int gap, int& modules, int& module) {
        modules = std::max(1, (length + gap) / (module + gap));
        module = (length + gap + modules - 1) / modules - gap;
    };
    fit(size.width(), detector.gapX, detector.modulesX, detector.moduleWidth);
    fit(size.height(), detector.gapY, detector.modulesY, detector.moduleHeight);
    return detector;
}

MImage cut(const MImage& image, const QSize& size)
{
    MImage result(size.width(), size.height(), 0U);
    auto* to = static_cast<unsigned*>(result.data());
    const unsigned* from = image.pixels<unsigned>();
    const auto width = static_cast<std::size_t>(size.width());
    for (int y = 0; y < size.height(); ++y, to += width, from += image.width())
        std::memcpy(to, from, width * sizeof(unsigned));
    return result;
}

Frames::Array packed(const MImage& image)
{
    const auto bytes = morvend::codec::bitshuffleEncode(
        {static_cast<const std::byte*>(image.cdata()), image.dataSize()}, 4);
    QByteArray stored(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
    return {{{"width", image.width()},
             {"height", image.height()},
             {"type", "uint32"},
             {"compression", "bslz4"},
             {"bytes", stored.size()}},
            stored};
}

}  // namespace

void Frames::_make()
{
    if (!_arrays.empty())
        return;
    const demo::FrameMaker maker(detectorFor(_size), DifferentFrames, Seed);
    _beamX = maker.detector().beamX();
    _beamY = maker.detector().beamY();
    for (int i = 0; i < DifferentFrames; ++i) {
        const MImage made = maker.make(i);
        if (i == 0)
            _mask = packed(cut(*made.optionalData().pixel_mask(), _size));
        _images.push_back(cut(made, _size));
        _arrays.push_back(packed(_images.back()));
    }
}

const Frames::Array& Frames::frame(int number)
{
    _make();
    return _arrays[static_cast<std::size_t>(number) % _arrays.size()];
}

const Frames::Array& Frames::mask()
{
    _make();
    return _mask;
}

MImage Frames::pixels(int number)
{
    _make();
    return _images[static_cast<std::size_t>(number) % _images.size()];
}

double Frames::beamX()
{
    _make();
    return _beamX;
}

double Frames::beamY()
{
    _make();
    return _beamY;
}

}  // namespace tarvik::simulator
