// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/MaximaMaker.h"

#include <utility>

using morvend::imglib::BlockMaxima;

MaximaMaker::MaximaMaker(ShownImage& shown, std::function<void()> changed)
    : _shown(shown)
    , _changed(std::move(changed))
    , _job([this](const Maxima& maxima) {
        _shown.maxima = maxima;
        _changed();
    })
{}

void MaximaMaker::setMinification(Minification minification)
{
    _minification = minification;
    newImage();
    if (!_shown.maxima)
        _changed();
}

void MaximaMaker::newImage()
{
    _job.cancel();  // that was for another image
    if (_minification == Minification::Nearest)
        _shown.maxima.reset();
    else if (_shown.loaded() && !_shown.maxima)
        _make();
}

void MaximaMaker::_make()
{
    _job.ask([image = _shown.whole(), mask = _shown.mask] {
        return std::make_shared<const BlockMaxima>(BlockMaxima::of(image, &mask));
    });
}
