// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/PixelPacker.h"

#include <chrono>

using namespace std::chrono_literals;

PixelPacker::PixelPacker(ShownImage& shown)
    : _shown(shown)
{
    _timer.setSingleShot(true);
    QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] { _pack(); });
}

void PixelPacker::setOn(bool on)
{
    _on = on;
    if (!_on)
        return _timer.stop();
    _pack();
}

void PixelPacker::looked()
{
    // Where it is due sooner, that stays.
    if (_on && !_timer.isActive())
        _timer.start(1s);
}

void PixelPacker::_pack()
{
    const auto& image = std::as_const(_shown.image);
    if (!_on || !image.cdata())
        return;
    if (!_shown.packed) {
        if (!_job || _identity != image.identity()) {
            _job = PackingJob::start(image);
            _identity = image.identity();
        }
        const auto result = _job->result();
        if (!result)
            return _timer.start(100ms);
        _shown.packed = *result;
    }
    _shown.dropPixels();
}
