// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A two-dimensional image with its header: the value that travels through the whole program.
#pragma once

#include "imagelib/image/CowPtr.h"
#include "imagelib/image/MBasicImage.h"

#include <cstdint>
#include <memory>

namespace morvend::imglib {

template <class Allocator = std::allocator<char>>
class MBasicImageOptionalData;

/// Width and height in pixels, one of the twelve pixel types, pixels row by row with x running
/// fastest and no padding between rows, and a header of optional fields.
///
/// A value type: a copy costs two pointers, pixels and header are copied when a sharer writes.
/// Thread: copies may live on different threads; one object belongs to one thread at a time.
class MImage {
public:
    using BasicImage = image::MBasicImage<>;

    /// The empty image, the mark of "no image loaded".
    MImage();
    /// An image with undefined pixels, for decoders that fill all of them.
    /// @throws MBadParameterException for negative sizes, MNotImplementedException for a pair that
    /// is no pixel type, MRuntimeException when memory is short
    MImage(int width, int height, datatypes::Type type, std::size_t bits);
    /// One row of all the pixels of a buffer, with a header.
    MImage(const BasicImage& pixels, const MBasicImageOptionalData<>& header);
    /// The pixels of a buffer with a geometry; the buffer holds at least width * height of them.
    MImage(int width, int height, const BasicImage& pixels);
    /// An image with all pixels set to one value.
    template <class T>
    MImage(int width, int height, const T& value);
    /// As before, with the size of another image.
    template <class T>
    MImage(const MImage& other, const T& value);
    MImage(const MImage& other);
    MImage(MImage&& other) noexcept;
    MImage& operator=(const MImage& other);
    MImage& operator=(MImage&& other) noexcept;
    ~MImage();

    int width() const { return _width; }
    int height() const { return _height; }
    /// Number of pixels.
    std::size_t size() const { return _pixels.size(); }
    /// Number of bytes of all pixels.
    std::size_t dataSize() const { return size() * (typeBits() / 8); }
    datatypes::Type type() const { return _pixels.type(); }
    std::size_t typeBits() const { return _pixels.typeBits(); }
    bool empty() const { return _pixels.empty(); }

    /// The pixels; never copies. Null for the empty image.
    const void* cdata() const { return _pixels.cdata(); }
    const void* data() const { return _pixels.cdata(); }
    /// The pixels for writing: copied first when they are shared.
    void* data() { return _pixels.data(); }
    /// The pixels as values of T, which must be the pixel type (asserted).
    template <class T>
    const T* pixels() const;

    /// The pixel at (x, y) converted to T, or `fallback` outside the image.
    template <class T>
    T pixel(int x, int y, const T& fallback) const;

    /// A copy with pixels of type T and the same header; shares the pixels when T is their type.
    template <class T>
    MImage asType() const;

    const MBasicImageOptionalData<>& optionalData() const;
    /// The header for writing; shared headers are copied first.
    MBasicImageOptionalData<>& optionalData();
    void setOptionalData(const MBasicImageOptionalData<>& header);

    /// The pixels without geometry and header, shared.
    const BasicImage& imageData() const { return _pixels; }
    /// Identity of the pixel memory, 0 for the empty image; see PixelBuffer::identity.
    std::uint64_t identity() const;

private:
    int _width = 0;
    int _height = 0;
    BasicImage _pixels;
    image::CowPtr<MBasicImageOptionalData<>> _header;
};

/// True if type, size and all pixel bytes are equal. Headers are not compared.
bool samePixels(const MImage& left, const MImage& right);

}  // namespace morvend::imglib

#include "imagelib/image/MBasicImageOptionalData.h"  // completes the header of an image
