// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From mask pixels to bits, and the masks that are kept.
#include "logic/analysis/statistics/GoodPixels.h"

#include "imagelib/image/MException.h"
#include "imagelib/image/MaskBits.h"
#include "imagelib/image/PixelTypes.h"

#include <list>
#include <mutex>
#include <new>
#include <string>

using morvend::imglib::MImage;
using GoodPixelsPtr = std::shared_ptr<const GoodPixels>;

namespace {

constexpr std::size_t MostMasks = 4;
constexpr std::size_t MostPixels = std::size_t(1) << 28;  // of a mask that is kept: 32 MiB of bits

/// The most recently used masks, the latest first.
class RecentMasks {
public:
    static RecentMasks& instance()
    {
        static RecentMasks masks;
        return masks;
    }

    GoodPixelsPtr find(const MImage& mask)
    {
        const std::lock_guard lock(_mutex);
        for (auto each = _masks.begin(); each != _masks.end(); ++each)
            if (*each == Entry(mask, nullptr)) {
                _masks.splice(_masks.begin(), _masks, each);
                return each->pixels;
            }
        return nullptr;
    }

    void keep(const MImage& mask, const GoodPixelsPtr& pixels)
    {
        const std::lock_guard lock(_mutex);
        _masks.emplace_front(mask, pixels);
        if (_masks.size() > MostMasks)
            _masks.pop_back();
    }

private:
    struct Entry {
        Entry(const MImage& mask, GoodPixelsPtr itsPixels)
            : identity(mask.identity())
            , type(mask.type())
            , bits(mask.typeBits())
            , size(mask.size())
            , pixels(std::move(itsPixels))
        {}
        // Images of other types and sizes may show the same memory.
        bool operator==(const Entry& other) const
        {
            return identity == other.identity && type == other.type && bits == other.bits &&
                   size == other.size;
        }
        std::uint64_t identity;
        morvend::datatypes::Type type;
        std::size_t bits, size;
        GoodPixelsPtr pixels;
    };

    std::mutex _mutex;
    std::list<Entry> _masks;
};

}  // namespace

template <class M>
GoodPixels::GoodPixels(const M* marks, std::size_t size)
    : _words(size / WordBits + 2)
    , _size(size)
{
    for (std::size_t begin = 0; begin < size; begin += WordBits, marks += WordBits) {
        std::uint64_t& word = _words[begin / WordBits];
        if (size - begin >= WordBits) {
            // Nearly all words are good as a whole; this loop is vectorised.
            unsigned int any = 0;
            for (std::size_t i = 0; i < WordBits; ++i)
                any |= maskrule::bits(marks[i]);
            if ((any & maskrule::Excluding) == 0) {
                word = ~std::uint64_t(0);
                continue;
            }
        }
        for (std::size_t i = 0; i < std::min(WordBits, size - begin); ++i) {
            word |= std::uint64_t(maskrule::good(marks[i])) << i;
            _defective += maskrule::defective(marks[i]);
        }
    }
    _good = static_cast<unsigned int>(count(0, size));
}

GoodPixelsPtr GoodPixels::of(const MImage& mask)
{
    GoodPixelsPtr pixels = RecentMasks::instance().find(mask);
    if (pixels)
        return pixels;
    try {
        pixels = morvend::datatypes::dispatchPixelType(
            mask.type(), mask.typeBits(), [&]<class M>() -> GoodPixelsPtr {
                return std::make_shared<GoodPixels>(mask.pixels<M>(), mask.size());
            });
    } catch (const std::bad_alloc&) {
        throw morvend::MRuntimeException("Not enough memory for a mask of " +
                                         std::to_string(mask.size()) + " pixels");
    }
    if (mask.size() <= MostPixels)
        RecentMasks::instance().keep(mask, pixels);
    return pixels;
}
