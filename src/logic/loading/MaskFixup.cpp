// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Replacing masks that are missing or of the wrong size.
#include "logic/loading/MaskFixup.h"

#include "imagelib/image/GapValues.h"
#include "imagelib/image/PixelTypes.h"
#include "logic/analysis/statistics/ImageStatistics.h"
#include "logic/support/Console.h"

#include <limits>
#include <mutex>
#include <utility>
#include <vector>

using morvend::imglib::GapRule;
using morvend::imglib::MImage;

namespace {

bool sameSize(const MImage& left, const MImage& right)
{
    return left.width() == right.width() && left.height() == right.height();
}

/// The masks of one kind that are in use in the process, so that hundreds of views share one.
/// Thread: any.
class SharedMasks {
public:
    using Mask = std::shared_ptr<const MImage>;

    /// The mask that `isWanted`, or else what `make` returns.
    template <class IsWanted, class Make>
    Mask find(IsWanted&& isWanted, Make&& make)
    {
        const std::lock_guard lock(_mutex);
        std::erase_if(_masks, [](const auto& each) { return each.expired(); });
        for (const auto& each : _masks)
            if (Mask mask = each.lock(); mask && isWanted(*mask))
                return mask;
        auto made = std::make_shared<const MImage>(make());
        _masks.push_back(made);
        return made;
    }

private:
    std::mutex _mutex;
    std::vector<std::weak_ptr<const MImage>> _masks;
};

SharedMasks::Mask sharedGoodPixels(const MImage& image)
{
    static auto& masks = *new SharedMasks;  // never destroyed: abandoned threads may still use it
    return masks.find([&](const MImage& mask) { return sameSize(mask, image); },
                      [&] { return MImage(image, 0U); });
}

SharedMasks::Mask sharedGaps(MImage gaps)
{
    static auto& masks = *new SharedMasks;
    return masks.find([&](const MImage& mask) { return samePixels(mask, gaps); },
                      [&] { return std::move(gaps); });
}

/// True if there may be a mark among the good pixels.
bool mayHoldMarks(const MImage& image, const ImageStatistics& statistics)
{
    const auto upTo = [&](double value) { return statistics.histogram.value(value); };
    return morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        using Rule = GapRule<T>;
        if constexpr (Rule::Negatives) {
            const double negative =
                std::is_integral_v<T> ? -1.0
                                      : -static_cast<double>(std::numeric_limits<T>::denorm_min());
            if (upTo(negative) != 0)
                return true;
        }
        if constexpr (Rule::Top && (sizeof(T) == 8 || !std::is_integral_v<T>))
            return statistics.maximum >= static_cast<double>(Rule::FirstTop);
        else if constexpr (Rule::Top)
            return upTo(Rule::FirstTop - 1.0) != upTo(Rule::Largest);
        else
            return false;
    });
}

}  // namespace

MImage MaskFixup::operator()(MImage& image)
{
    MImage mask = image.optionalData().pixel_mask().get_value_or(MImage());
    if (!mask.empty() && sameSize(mask, image)) {
        _given = MImage();
        return mask;
    }
    if (!mask.empty())
        console::warn("WARNING: Size of pixel mask does not match size of image\n");
    if (_given.empty() || !sameSize(_given, image))
        _giveGoodPixels(image);
    image.optionalData().set_pixel_mask(_given);
    return _given;
}

void MaskFixup::_giveGoodPixels(const MImage& image)
{
    if (!_goodPixels || !sameSize(*_goodPixels, image))
        _goodPixels = sharedGoodPixels(image);
    _given = *_goodPixels;
}

bool MaskFixup::_fits(const MImage& image, const ImageStatistics& statistics) const
{
    const bool marked = !_goodPixels || _given.identity() != _goodPixels->identity();
    return !mayHoldMarks(image, statistics) &&
           (!marked || morvend::imglib::marksAreIn(_given, image));
}

bool MaskFixup::replaces(MImage& image, const ImageStatistics& statistics)
{
    if (_given.empty() || _fits(image, statistics))
        return false;
    const MImage before = _given;
    _giveByPixels(image);
    return _given.identity() != before.identity();
}

MImage MaskFixup::certain(MImage& image)
{
    MImage mask = (*this)(image);
    if (_given.empty())
        return mask;
    _giveByPixels(image);
    return _given;
}

void MaskFixup::_giveByPixels(MImage& image)
{
    if (MImage gaps = morvend::imglib::gapMask(image); gaps.empty()) {
        _giveGoodPixels(image);
    } else {
        if (!_gaps || !samePixels(*_gaps, gaps))
            _gaps = sharedGaps(std::move(gaps));
        _given = *_gaps;
    }
    image.optionalData().set_pixel_mask(_given);
}
