// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A flat typed pixel buffer without geometry.
#pragma once

#include "imagelib/image/PixelBuffer.h"
#include "imagelib/image/PixelTypes.h"

#include <cstring>
#include <memory>
#include <utility>

namespace morvend::image {

/// Pixels of one type, shared by reference count and copied on write. The allocator parameter is
/// part of the interface; memory always comes from PixelBuffer.
/// Thread: a value; copies may go to other threads.
template <class Allocator = std::allocator<char>>
class MBasicImage {
public:
    MBasicImage() = default;
    MBasicImage(const MBasicImage&) = default;
    /// The other one is empty afterwards.
    MBasicImage(MBasicImage&& other) noexcept
        : _type(std::exchange(other._type, datatypes::NONE))
        , _bits(std::exchange(other._bits, 0))
        , _size(std::exchange(other._size, 0))
        , _buffer(std::move(other._buffer))
    {}
    MBasicImage& operator=(MBasicImage other) noexcept
    {
        std::swap(_type, other._type);
        std::swap(_bits, other._bits);
        std::swap(_size, other._size);
        _buffer.swap(other._buffer);
        return *this;
    }
    ~MBasicImage() = default;

    /// `size` elements of the given pixel type with undefined content.
    /// @throws MNotImplementedException for a pair that is no pixel type, MRuntimeException when
    /// memory is short
    MBasicImage(const Allocator&, datatypes::Type type, std::size_t bits, std::size_t size)
        : _type(type)
        , _bits(bits)
        , _size(size)
    {
        if (!datatypes::isPixelType(type, bits))
            throw MNotImplementedException(datatypes::missingImplementation(type, bits));
        if (size > std::size_t(-1) / 16)
            throw MMemoryException("Not enough memory for " + std::to_string(size) + " pixels");
        _buffer = PixelBuffer::allocateImage(size * (bits / 8));
    }

    /// A copy of `size` values.
    template <class T>
    MBasicImage(const T* values, std::size_t size, const Allocator& allocator = Allocator())
        : MBasicImage(allocator, datatypes::typeOf<T>, datatypes::bitsOf<T>, size)
    {
        if (size)
            std::memcpy(_buffer->data(), values, size * sizeof(T));
    }

    /// Shares a buffer that holds at least `size` elements.
    MBasicImage(PixelBufferPtr buffer, datatypes::Type type, std::size_t bits, std::size_t size)
        : _type(type)
        , _bits(bits)
        , _size(size)
        , _buffer(std::move(buffer))
    {}

    datatypes::Type type() const { return _type; }
    std::size_t typeBits() const { return _bits; }
    /// Number of elements.
    std::size_t size() const { return _size; }
    bool empty() const { return _size == 0; }
    void clear() { *this = MBasicImage(); }

    /// The elements; null when there is no buffer. Never copies.
    const void* cdata() const { return _buffer ? _buffer->cdata() : nullptr; }
    const void* data() const { return cdata(); }
    /// The elements for writing: copied first when they are shared.
    void* data()
    {
        if (!_buffer)
            return nullptr;
        if (!_buffer->unique() || _buffer->readOnly()) {
            PixelBufferPtr mine = PixelBuffer::allocate(_buffer->size());
            std::memcpy(mine->data(), _buffer->cdata(), _buffer->size());
            _buffer = std::move(mine);
        } else {
            _buffer->renew();
        }
        return _buffer->data();
    }

    const PixelBufferPtr& buffer() const { return _buffer; }

private:
    datatypes::Type _type = datatypes::NONE;
    std::size_t _bits = 0;
    std::size_t _size = 0;
    PixelBufferPtr _buffer;
};

}  // namespace morvend::image
