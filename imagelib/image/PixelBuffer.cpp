// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pool of PixelBuffer.
#include "imagelib/image/PixelBuffer.h"

#include "imagelib/image/MException.h"

#include <cstdlib>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace morvend::image {

namespace {

constexpr std::size_t Alignment = 64;
constexpr std::size_t Padding = 64;
constexpr std::size_t HugePage = std::size_t(2) << 20;
constexpr std::size_t SmallestPooled = std::size_t(256) << 10;
constexpr std::size_t MostBytes = std::size_t(1) << 38;  // beyond any machine: a false size
constexpr std::size_t MostPooled = std::size_t(512) << 20;
/// An unused block is freed after this many others have come back.
constexpr std::size_t MostPassedOver = 32;

#if defined(__SANITIZE_ADDRESS__)
#define TARVIK_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARVIK_ADDRESS_SANITIZER
#endif
#endif
#if defined(TARVIK_ADDRESS_SANITIZER)
constexpr bool Pooling = false;  // so that the address sanitizer sees each block's true bounds
#else
constexpr bool Pooling = true;
#endif

thread_local PixelSource* threadSource = nullptr;

struct Block {
    std::byte* data = nullptr;
    std::size_t capacity = 0;
    std::size_t number = 0;  // in the order of their return to the pool
};

/// The blocks that wait for reuse, the last one given back at the end.
class Pool {
public:
    static Pool& instance()
    {
        // Never destroyed: images in static objects may outlive any order of destruction.
        static Pool& pool = *new Pool;
        return pool;
    }

    Block take(std::size_t bytes)
    {
        const std::lock_guard lock(_mutex);
        for (auto block = _blocks.rbegin(); block != _blocks.rend(); ++block) {
            if (block->capacity < bytes || block->capacity > bytes + bytes / 4 + HugePage)
                continue;
            const Block found = *block;
            _blocks.erase(std::next(block).base());
            _bytes -= found.capacity;
            return found;
        }
        return {};
    }

    void give(Block block)
    {
        std::vector<Block> surplus;
        {
            const std::lock_guard lock(_mutex);
            block.number = ++_returns;
            _blocks.push_back(block);
            _bytes += block.capacity;
            while (!_blocks.empty() &&
                   (_bytes > MostPooled || _blocks.front().number + MostPassedOver < _returns)) {
                surplus.push_back(_blocks.front());
                _bytes -= _blocks.front().capacity;
                _blocks.erase(_blocks.begin());
            }
        }
        for (const Block& each : surplus)
            std::free(each.data);
    }

    void trim()
    {
        std::vector<Block> blocks;
        {
            const std::lock_guard lock(_mutex);
            blocks.swap(_blocks);
            _bytes = 0;
        }
        for (const Block& each : blocks)
            std::free(each.data);
    }

    std::size_t bytes()
    {
        const std::lock_guard lock(_mutex);
        return _bytes;
    }

private:
    std::mutex _mutex;
    std::vector<Block> _blocks;
    std::size_t _bytes = 0;
    std::size_t _returns = 0;
};

std::size_t roundUp(std::size_t bytes, std::size_t unit)
{
    return (bytes + unit - 1) / unit * unit;
}

Block fresh(std::size_t bytes)
{
    const bool large = Pooling && bytes >= SmallestPooled;
    const std::size_t unit = large ? HugePage : Alignment;
    const std::size_t capacity = roundUp(bytes, unit);
    auto* data = static_cast<std::byte*>(std::aligned_alloc(unit, capacity));
    if (data && large)
        ::madvise(data, capacity, MADV_HUGEPAGE);  // only advice: failure costs speed alone
    return {data, capacity};
}

std::uint64_t nextIdentity()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

}  // namespace

PixelBufferPtr PixelBuffer::allocate(std::size_t bytes)
{
    // The object is made first, so that no block is lost when memory is short.
    PixelBufferPtr buffer(new PixelBuffer);
    Block block;
    if (bytes <= MostBytes) {
        const std::size_t padded = bytes + Padding;
        if (Pooling && padded >= SmallestPooled)
            block = Pool::instance().take(padded);
        if (!block.data)
            block = fresh(padded);
    }
    if (!block.data)
        throw MMemoryException("Not enough memory for an image of " + std::to_string(bytes) +
                               " bytes");
    buffer->_data = block.data;
    buffer->_capacity = block.capacity;
    buffer->_size = bytes;
    buffer->_identity = nextIdentity();
    return buffer;
}

PixelBufferPtr PixelBuffer::lease(const void* data, std::size_t bytes,
                                  std::function<void()> release)
{
    PixelBufferPtr buffer(new PixelBuffer);
    buffer->_data = static_cast<std::byte*>(const_cast<void*>(data));
    buffer->_size = bytes;
    buffer->_foreign = true;
    buffer->_readOnly = true;
    buffer->_release = std::move(release);
    buffer->_identity = nextIdentity();
    return buffer;
}

PixelBufferPtr PixelBuffer::adopt(void* data, std::size_t bytes, std::function<void()> release)
{
    PixelBufferPtr buffer = lease(data, bytes, std::move(release));
    buffer->_readOnly = false;
    return buffer;
}

PixelBufferPtr PixelBuffer::allocateImage(std::size_t bytes)
{
    PixelBufferPtr buffer = threadSource ? threadSource->allocate(bytes) : nullptr;
    return buffer ? buffer : allocate(bytes);
}

PixelSource::Scope::Scope(PixelSource& source)
    : _before(std::exchange(threadSource, &source))
{}

PixelSource::Scope::~Scope() { threadSource = _before; }

void PixelBuffer::renew() { _identity = nextIdentity(); }

void PixelBuffer::trimPool() { Pool::instance().trim(); }

std::size_t PixelBuffer::pooledBytes() { return Pool::instance().bytes(); }

PixelBuffer::~PixelBuffer()
{
    if (_foreign) {
        if (_release)
            _release();
    } else if (Pooling && _capacity >= SmallestPooled) {
        Pool::instance().give({_data, _capacity});
    } else {
        std::free(_data);
    }
}

void intrusive_ptr_add_ref(PixelBuffer* buffer) noexcept
{
    buffer->_references.fetch_add(1, std::memory_order_relaxed);
}

void intrusive_ptr_release(PixelBuffer* buffer) noexcept
{
    if (buffer->_references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete buffer;
}

}  // namespace morvend::image
