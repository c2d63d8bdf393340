// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Choice of the pixel type; the library converts odd types.
#include "imagelib/io/formats/hdf5/library/PixelFormat.h"

#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/PixelBuffer.h"
#include "imagelib/io/formats/base/HalfFloats.h"
#include "imagelib/io/formats/base/RawPixels.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace morvend::imglib::hdf5 {

static_assert(std::endian::native == std::endian::little, "pixels are kept in little-endian order");

namespace {

hid_t nativeType(datatypes::Type type, std::size_t bits)
{
    if (type == datatypes::FLOAT)
        return bits == 32 ? H5T_NATIVE_FLOAT : H5T_NATIVE_DOUBLE;
    const bool isSigned = type == datatypes::INT;
    switch (bits) {
    case 8:
        return isSigned ? H5T_NATIVE_INT8 : H5T_NATIVE_UINT8;
    case 16:
        return isSigned ? H5T_NATIVE_INT16 : H5T_NATIVE_UINT16;
    case 32:
        return isSigned ? H5T_NATIVE_INT32 : H5T_NATIVE_UINT32;
    default:
        return isSigned ? H5T_NATIVE_INT64 : H5T_NATIVE_UINT64;
    }
}

bool isHalf(hid_t type)
{
    std::size_t sign = 0, exponent = 0, exponentBits = 0, fraction = 0, fractionBits = 0;
    return H5Tget_size(type) == 2 &&
           H5Tget_fields(type, &sign, &exponent, &exponentBits, &fraction, &fractionBits) >= 0 &&
           exponentBits == 5 && fractionBits == 10 && sign == 15 && H5Tget_ebias(type) == 15;
}

/// The integer type of an enumeration or a bit field; any other type as it is.
Datatype elementOf(hid_t type)
{
    if (H5Tget_class(type) == H5T_ENUM)
        return Datatype(H5Tget_super(type));
    if (H5Tget_class(type) != H5T_BITFIELD)
        return Datatype(H5Tcopy(type));
    const std::size_t size = H5Tget_size(type);
    if (size > 8 || !std::has_single_bit(size))
        return {};
    Datatype element(H5Tcopy(nativeType(datatypes::UINT, 8 * size)));
    H5Tset_order(element.id(), H5Tget_order(type));
    return element;
}

}  // namespace

PixelFormat::PixelFormat(hid_t fileType, const std::string& path)
    : _file(H5Tcopy(fileType), "a data type can't be read", path)
    , _element(elementOf(fileType))
{
    const H5T_class_t kind = H5Tget_class(_element.id());
    _stored = H5Tget_size(_element.id());
    if ((kind != H5T_INTEGER && kind != H5T_FLOAT) || _stored == 0 || _stored > 16 ||
        (kind == H5T_INTEGER && _stored > 8))
        throw MNotImplementedException("HDF5: the image data are no numbers that can be shown: " +
                                       path);
    if (kind == H5T_FLOAT) {
        _type = datatypes::FLOAT;
        _bits = _stored <= 4 ? 32 : 64;
    } else {
        _type = H5Tget_sign(_element.id()) == H5T_SGN_NONE ? datatypes::UINT : datatypes::INT;
        _bits = 8 * std::bit_ceil(_stored);
    }
    _memory = Datatype(H5Tcopy(nativeType(_type, _bits)));
    _way = _chooseWay();
}

PixelFormat::Way PixelFormat::_chooseWay() const
{
    const Datatype reversed(H5Tcopy(_memory.id()));
    H5Tset_order(reversed.id(), H5T_ORDER_BE);
    if (H5Tequal(_element.id(), _memory.id()) > 0)
        return Way::Copy;
    if (H5Tequal(_element.id(), reversed.id()) > 0)
        return _stored == 1 ? Way::Copy : Way::Swap;
    if (isHalf(_element.id()))
        return H5Tget_order(_element.id()) == H5T_ORDER_BE ? Way::SwappedHalf : Way::Half;
    return Way::Library;
}

void PixelFormat::convert(std::span<const std::byte> stored, std::byte* pixels) const
{
    const std::size_t count = stored.size() / _stored;
    switch (_way) {
    case Way::Copy:
        if (stored.data() != pixels)
            std::memcpy(pixels, stored.data(), stored.size());
        break;
    case Way::Swap:
        if (stored.data() != pixels)
            std::memcpy(pixels, stored.data(), stored.size());
        swapByteOrder({pixels, stored.size()}, _stored);
        break;
    case Way::Half:
    case Way::SwappedHalf:
        widenHalfFloats(stored, _way == Way::SwappedHalf, pixels);
        break;
    case Way::Library: {
        // The library converts in place, in memory that holds the larger of the two types.
        const image::PixelBufferPtr scratch =
            image::PixelBuffer::allocate(count * std::max(_stored, pixelBytes()));
        std::memcpy(scratch->data(), stored.data(), stored.size());
        check(H5Tconvert(_element.id(), _memory.id(), count, scratch->data(), nullptr, H5P_DEFAULT),
              "pixels can't be converted", "");
        std::memcpy(pixels, scratch->data(), count * pixelBytes());
        break;
    }
    }
}

}  // namespace morvend::imglib::hdf5
