// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixel type in which an HDF5 data set is shown, and the way from its bytes to it.
#pragma once

#include "imagelib/image/Type.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <cstddef>
#include <span>

namespace morvend::imglib::hdf5 {

/// How the elements of a data set are stored and which of our pixel types holds them: integers of
/// 8 to 64 bits and floating numbers of 32 and 64 as they are, in either byte order; floating
/// numbers of 16 bits become 32, odd sizes the next larger type; enumerations (also booleans)
/// and bit fields are the integers that they are stored as.
class PixelFormat {
public:
    /// @throws MNotImplementedException when the elements aren't numbers
    PixelFormat(hid_t fileType, const std::string& path);

    datatypes::Type type() const { return _type; }
    std::size_t bits() const { return _bits; }
    /// Bytes of an element in the file and of a pixel.
    std::size_t storedBytes() const { return _stored; }
    std::size_t pixelBytes() const { return _bits / 8; }
    /// The type of the stored elements. Reading through the library asks for this one too, so that
    /// there is one conversion.
    hid_t fileType() const { return _file.id(); }
    /// The type of the pixels.
    hid_t memoryType() const { return _memory.id(); }
    /// True if the stored bytes are the pixels, except for their order.
    bool inPlace() const { return _way == Way::Copy || _way == Way::Swap; }

    /// Turns stored bytes into pixels. `stored` and `pixels` hold the same number of elements; they
    /// may be the same memory if inPlace().
    /// @throws MRuntimeException when memory is short
    void convert(std::span<const std::byte> stored, std::byte* pixels) const;

    bool sameAs(const PixelFormat& other) const
    {
        return _type == other._type && _bits == other._bits;
    }

private:
    enum class Way { Copy, Swap, Half, SwappedHalf, Library };
    Way _chooseWay() const;

    datatypes::Type _type = datatypes::NONE;
    std::size_t _bits = 0;
    std::size_t _stored = 0;
    Way _way = Way::Copy;
    Datatype _file;
    Datatype _element;  // for enumerations and bit fields their integer type
    Datatype _memory;
};

}  // namespace morvend::imglib::hdf5
