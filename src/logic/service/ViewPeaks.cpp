// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/ViewPeaks.h"

namespace {

using morvend::imglib::MImage;

/// None where that fails, which is reported.
ImagePeaks peaksOf(const MImage& image, const MImage& mask)
{
    ImagePeaks peaks;
    try {
        peaks.setImage(image, mask);
    } catch (const std::exception& error) {
        console::warn(std::string("WARNING: ") + error.what() + '\n');
    }
    return peaks;
}

}  // namespace

ViewPeaks::ViewPeaks(ShownImage& shown)
    : _shown(shown)
    , _job([this](const ImagePeaks& peaks) {
        _found = peaks;
        _known = true;
        _pending = false;
        emit computedSignal();
    })
{}

void ViewPeaks::take(const LoaderData& load)
{
    _job.cancel();
    _pending = false;
    _known = load.peaks.has_value();
    _found = load.peaks.value_or(ImagePeaks());
}

void ViewPeaks::search()
{
    if (_known || _pending || !_shown.loaded())
        return;
    _pending = true;
    _job.ask([image = _shown.whole(), mask = _shown.mask] { return peaksOf(image, mask); });
}

const ImagePeaks& ViewPeaks::foundNow()
{
    if (!_known && _shown.loaded()) {
        _found = peaksOf(_shown.whole(), _shown.mask);
        _known = true;
    }
    return _found;
}
