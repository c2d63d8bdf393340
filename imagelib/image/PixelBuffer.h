// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Shared pixel memory: pooled, aligned, reference-counted blocks, and leased views of foreign
// memory.
#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace morvend::image {

class PixelBuffer;
using PixelBufferPtr = boost::intrusive_ptr<PixelBuffer>;

/// Another source of memory for images.
class PixelSource {
public:
    virtual ~PixelSource() = default;
    /// Writable memory as from PixelBuffer::adopt, or null to leave the request to the pool.
    virtual PixelBufferPtr allocate(std::size_t bytes) = 0;

    /// While it lives, new images of the thread that made it take their pixels from `source`, so
    /// that a decoder writes straight into shared memory. Scopes may be nested.
    class Scope {
    public:
        explicit Scope(PixelSource& source);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        PixelSource* _before;
    };
};

/// One block of pixel memory. Begins at a multiple of 64 bytes; at least 64 readable and, unless
/// leased, writable bytes follow its end, so that vector loops need no tail.
///
/// Large blocks come from a pool of reused, 2 MiB-aligned buffers on huge pages: the first touch of
/// fresh 4 KiB pages costs more than decoding an image into them.
/// Thread: any; the pool and the count are thread-safe, access to the bytes is up to the caller.
class PixelBuffer {
public:
    /// A block of `bytes` with undefined content.
    /// @throws MRuntimeException when memory is short
    static PixelBufferPtr allocate(std::size_t bytes);

    /// As allocate(), for the pixels of a new image: asks the thread's PixelSource first.
    static PixelBufferPtr allocateImage(std::size_t bytes);

    /// A read-only view of memory that belongs to somebody else; `release` is called once, from
    /// whatever thread drops the last reference. `data` must be a multiple of 64 and readable for
    /// 64 bytes past its end.
    static PixelBufferPtr lease(const void* data, std::size_t bytes, std::function<void()> release);

    /// As lease(), for memory that the sole owner of the block may write until it is frozen.
    static PixelBufferPtr adopt(void* data, std::size_t bytes, std::function<void()> release);
    /// Makes an adopted block read-only for good, since somebody outside looks at it. The caller
    /// holds a reference; other holders may live on other threads.
    void freeze() { _readOnly.store(true, std::memory_order_relaxed); }

    const std::byte* cdata() const { return _data; }
    /// Writable bytes; only for the sole owner of a block that is not leased.
    std::byte* data() { return _data; }
    std::size_t size() const { return _size; }
    /// Called by the sole owner: others may freeze the block at any time.
    bool readOnly() const { return _readOnly.load(std::memory_order_relaxed); }

    /// Number of this content, unique in the process and never 0: two images of equal identity
    /// show the same pixels, so that work on an unchanged mask is done once.
    std::uint64_t identity() const { return _identity; }
    /// Gives the block a new identity. Called before its bytes are changed.
    void renew();

    /// True if no other reference exists; the caller may then write.
    bool unique() const { return _references.load(std::memory_order_acquire) == 1; }

    /// Frees the blocks that wait in the pool for reuse.
    static void trimPool();
    /// Bytes that wait in the pool.
    static std::size_t pooledBytes();

    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;

private:
    PixelBuffer() = default;
    ~PixelBuffer();
    friend void intrusive_ptr_add_ref(PixelBuffer* buffer) noexcept;
    friend void intrusive_ptr_release(PixelBuffer* buffer) noexcept;

    std::atomic<std::size_t> _references{0};
    std::byte* _data = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;  // of a pooled block; 0 for a lease
    bool _foreign = false;      // leased or adopted
    std::atomic<bool> _readOnly{false};
    std::uint64_t _identity = 0;
    std::function<void()> _release;
};

void intrusive_ptr_add_ref(PixelBuffer* buffer) noexcept;
void intrusive_ptr_release(PixelBuffer* buffer) noexcept;

}  // namespace morvend::image
