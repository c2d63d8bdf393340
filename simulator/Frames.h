// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The frames that a simulated series goes through again and again, compressed once.
#pragma once

#include "imagelib/image/MImage.h"

#include <QByteArray>
#include <QJsonObject>
#include <QSize>

#include <vector>

namespace tarvik::simulator {

/// Frames of a rotating crystal as the demo series have them, cut to any size. Made by the first
/// use, which takes a while. Thread: one at a time.
class Frames {
public:
    explicit Frames(const QSize& size)
        : _size(size)
    {}

    /// An array as the protocol has it: the members of its description, and the bytes.
    struct Array {
        QJsonObject description;
        QByteArray bytes;
    };
    const Array& frame(int number);
    const Array& mask();
    /// The pixels of a frame, for comparison.
    morvend::imglib::MImage pixels(int number);
    double beamX();
    double beamY();

private:
    void _make();

    QSize _size;
    std::vector<morvend::imglib::MImage> _images;
    std::vector<Array> _arrays;
    Array _mask;
    double _beamX = 0, _beamY = 0;
};

}  // namespace tarvik::simulator
