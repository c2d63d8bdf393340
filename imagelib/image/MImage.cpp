// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MImage: geometry, access to pixels and header.
#include "imagelib/image/MImage.h"

#include "imagelib/image/Assert.h"

#include <algorithm>
#include <cstring>

namespace morvend::imglib {

using datatypes::convertPixel;
using datatypes::dispatchPixelType;

namespace {

std::size_t checkedPixels(int width, int height)
{
    if (width < 0 || height < 0)
        throw MBadParameterException("An image can't have " + std::to_string(width) + " x " +
                                     std::to_string(height) + " pixels");
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

}  // namespace

MImage::MImage() = default;
MImage::MImage(const MImage&) = default;
MImage::MImage(MImage&& other) noexcept
    : _width(std::exchange(other._width, 0))
    , _height(std::exchange(other._height, 0))
    , _pixels(std::exchange(other._pixels, {}))
    , _header(std::move(other._header))
{}
MImage& MImage::operator=(const MImage&) = default;
MImage& MImage::operator=(MImage&& other) noexcept
{
    MImage taken(std::move(other));
    std::swap(_width, taken._width);
    std::swap(_height, taken._height);
    std::swap(_pixels, taken._pixels);
    std::swap(_header, taken._header);
    return *this;
}
MImage::~MImage() = default;

MImage::MImage(int width, int height, datatypes::Type type, std::size_t bits)
    : _width(width)
    , _height(height)
    , _pixels(std::allocator<char>(), type, bits, checkedPixels(width, height))
{}

MImage::MImage(const BasicImage& pixels, const MBasicImageOptionalData<>& header)
    : _pixels(pixels)
{
    if (pixels.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw MBadParameterException("A row can't have " + std::to_string(pixels.size()) +
                                     " pixels");
    _width = static_cast<int>(pixels.size());
    _height = pixels.empty() ? 0 : 1;
    setOptionalData(header);
}

MImage::MImage(int width, int height, const BasicImage& pixels)
    : _width(width)
    , _height(height)
{
    const std::size_t size = checkedPixels(width, height);
    if (size > pixels.size())
        throw MBadParameterException("A buffer of " + std::to_string(pixels.size()) +
                                     " pixels can't hold " + std::to_string(width) + " x " +
                                     std::to_string(height));
    _pixels = BasicImage(pixels.buffer(), pixels.type(), pixels.typeBits(), size);
}

const MBasicImageOptionalData<>& MImage::optionalData() const { return _header.read(); }

MBasicImageOptionalData<>& MImage::optionalData() { return _header.write(); }

void MImage::setOptionalData(const MBasicImageOptionalData<>& header)
{
    // The argument may be the header of this very image, or one held by its mask.
    MBasicImageOptionalData<> copy(header);
    _header.write() = std::move(copy);
}

std::uint64_t MImage::identity() const
{
    return _pixels.buffer() ? _pixels.buffer()->identity() : 0;
}

template <class T>
MImage::MImage(int width, int height, const T& value)
    : MImage(width, height, datatypes::typeOf<T>, datatypes::bitsOf<T>)
{
    std::fill_n(static_cast<T*>(data()), size(), value);
}

template <class T>
MImage::MImage(const MImage& other, const T& value)
    : MImage(other.width(), other.height(), value)
{}

template <class T>
const T* MImage::pixels() const
{
    assert(empty() || (type() == datatypes::typeOf<T> && typeBits() == datatypes::bitsOf<T>));
    return static_cast<const T*>(cdata());
}

template <class T>
T MImage::pixel(int x, int y, const T& fallback) const
{
    if (x < 0 || y < 0 || x >= _width || y >= _height || empty())
        return fallback;
    const std::size_t index = static_cast<std::size_t>(y) * static_cast<std::size_t>(_width) +
                              static_cast<std::size_t>(x);
    return dispatchPixelType(type(), typeBits(), [&]<class From>() {
        return convertPixel<T>(static_cast<const From*>(cdata())[index]);
    });
}

template <class T>
MImage MImage::asType() const
{
    if (empty() || (type() == datatypes::typeOf<T> && typeBits() == datatypes::bitsOf<T>))
        return *this;
    MImage result(_width, _height, datatypes::typeOf<T>, datatypes::bitsOf<T>);
    auto* to = static_cast<T*>(result.data());
    dispatchPixelType(type(), typeBits(), [&]<class From>() {
        const auto* from = static_cast<const From*>(cdata());
        std::transform(from, from + size(), to, [](From value) { return convertPixel<T>(value); });
    });
    result._header = _header;
    return result;
}

bool samePixels(const MImage& left, const MImage& right)
{
    return left.width() == right.width() && left.height() == right.height() &&
           left.type() == right.type() && left.typeBits() == right.typeBits() &&
           (left.cdata() == right.cdata() ||
            std::memcmp(left.cdata(), right.cdata(), left.dataSize()) == 0);
}

#define TARVIK_INSTANTIATE(T)                                                                      \
    template MImage::MImage(int, int, const T&);                                                   \
    template MImage::MImage(const MImage&, const T&);                                              \
    template const T* MImage::pixels<T>() const;                                                   \
    template T MImage::pixel<T>(int, int, const T&) const;                                         \
    template MImage MImage::asType<T>() const;

TARVIK_INSTANTIATE(bool)
TARVIK_INSTANTIATE(char)
TARVIK_INSTANTIATE(signed char)
TARVIK_INSTANTIATE(short)
TARVIK_INSTANTIATE(int)
TARVIK_INSTANTIATE(long long)
TARVIK_INSTANTIATE(unsigned char)
TARVIK_INSTANTIATE(unsigned short)
TARVIK_INSTANTIATE(unsigned int)
TARVIK_INSTANTIATE(unsigned long long)
TARVIK_INSTANTIATE(float)
TARVIK_INSTANTIATE(double)
#undef TARVIK_INSTANTIATE

}  // namespace morvend::imglib
