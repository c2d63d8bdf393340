// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The frames of the demo series, pixel by pixel.
#pragma once

#include "demo/Crystal.h"
#include "demo/Detector.h"
#include "demo/Random.h"

#include <cstdint>
#include <vector>

namespace tarvik::demo {

/// Makes frames of one series. The same seed gives the same frames on any machine, in any order.
/// Thread: any number at once.
class FrameMaker {
public:
    FrameMaker(const Detector& detector, int frames, std::uint64_t seed);

    int frames() const { return _frames; }
    const Detector& detector() const { return _detector; }
    /// Frame `frame`, from 0, as a detector sends it: unsigned int with 2^32-1 in gaps, 2^32-2 in
    /// dead pixels, and a header with the pixel mask.
    morvend::imglib::MImage make(int frame) const;
    /// The same frame as formats without a mask hold it: int with -1 in gaps, -2 in pixels that the
    /// mask calls defective, and no mask in the header.
    morvend::imglib::MImage flagged(const morvend::imglib::MImage& frame) const;

private:
    void _addBackground(unsigned* pixels, int frame) const;
    void _addReflection(unsigned* pixels, const Reflection& reflection, int frame) const;
    void _applyDefects(unsigned* pixels, int frame) const;

    Detector _detector;
    int _frames;
    std::uint64_t _seed;
    Defects _defects;
    std::vector<Reflection> _reflections;
    PoissonTable _poisson;
    std::vector<std::uint16_t> _background;  // index into _poisson by distance from the beam
};

}  // namespace tarvik::demo
