// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Walks over blocks without trusting their lengths, on one or several threads.
#include "imagelib/codec/BlockStream.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <atomic>
#include <limits>

#include <tbb/blocked_range.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace morvend::codec {

namespace {

constexpr std::size_t LengthBytes = 4;
constexpr std::size_t BlocksOfTask = 64;

std::uint64_t bigEndian(std::span<const std::byte> bytes)
{
    std::uint64_t value = 0;
    for (const std::byte byte : bytes)
        value = value << 8 | std::to_integer<std::uint64_t>(byte);
    return value;
}

using Decode = std::function<void(const StoredBlock&)>;

void decodeBlocks(BlockStream& stream, const Decode& decode,
                  std::size_t most = std::numeric_limits<std::size_t>::max())
{
    for (; most > 0 && !stream.atEnd(); --most)
        decode(stream.next());
}

/// Walks `stream` to its end, or to the block whose length is wrong; returns the positions at which
/// tasks begin.
std::vector<BlockStream> splitIntoTasks(BlockStream& stream)
{
    std::vector<BlockStream> tasks;
    try {
        for (std::size_t i = 0; !stream.atEnd(); ++i) {
            if (i % BlocksOfTask == 0)
                tasks.push_back(stream);
            stream.next();
        }
    } catch (const MRuntimeException&) {
        // The task that holds this block comes to it again, unless an earlier block fails first.
    }
    return tasks;
}

}  // namespace

std::string StoredBlock::failure(const char* what) const
{
    return "block " + std::to_string(index) + " of the chunk " + what;
}

BlockStream::BlockStream(std::span<const std::byte> stored, std::size_t decodedBytes,
                         std::size_t unit, std::size_t defaultBlock)
    : _decodedBytes(decodedBytes)
    , _end(decodedBytes - decodedBytes % unit)
{
    if (stored.size() < HeadBytes)
        throw MRuntimeException("the chunk has " + std::to_string(stored.size()) +
                                " bytes, fewer than its head");
    const std::uint64_t announced = bigEndian(stored.first(8));
    if (announced != decodedBytes)
        throw MRuntimeException("the chunk announces " + std::to_string(announced) +
                                " instead of " + std::to_string(decodedBytes) + " bytes");
    const auto block = static_cast<std::size_t>(bigEndian(stored.subspan(8, 4)));
    _blockBytes = block == 0 ? defaultBlock : block;
    if (_blockBytes == 0 || _blockBytes % unit != 0)
        throw MRuntimeException("the chunk has blocks of " + std::to_string(block) +
                                " bytes, no multiple of " + std::to_string(unit));
    _blockBytes = std::min(_blockBytes, _end);
    _stored = stored.subspan(HeadBytes);
}

StoredBlock BlockStream::next()
{
    StoredBlock block{_index, {}, 0, _at, std::min(_blockBytes, _end - _at)};
    if (_stored.size() < LengthBytes)
        throw MRuntimeException(block.failure("is missing"));
    const auto length = static_cast<std::size_t>(bigEndian(_stored.first(LengthBytes)));
    _stored = _stored.subspan(LengthBytes);
    if (length > _stored.size())
        throw MRuntimeException(block.failure("ends after ") + std::to_string(_stored.size()) +
                                " of " + std::to_string(length) + " bytes");
    block.stored = _stored.first(length);
    _stored = _stored.subspan(length);
    block.readable = _stored.size();
    _at += block.bytes;
    ++_index;
    return block;
}

std::span<const std::byte> BlockStream::rest() const
{
    const std::size_t bytes = _decodedBytes - _end;
    if (_stored.size() < bytes)
        throw MRuntimeException("the last " + std::to_string(bytes) +
                                " bytes of the chunk are missing");
    return _stored.first(bytes);
}

BlockStream forEachBlock(BlockStream stream, unsigned threads, const Decode& decode)
{
    if (threads <= 1) {
        decodeBlocks(stream, decode);
        return stream;
    }
    const std::vector<BlockStream> tasks = splitIntoTasks(stream);
    std::atomic<std::size_t> failed{tasks.size()};
    const auto run = [&](const tbb::blocked_range<std::size_t>& range) {
        for (std::size_t task = range.begin(); task != range.end(); ++task) {
            try {
                BlockStream blocks = tasks[task];
                decodeBlocks(blocks, decode, BlocksOfTask);
            } catch (const MException&) {
                std::size_t before = failed.load();
                while (task < before && !failed.compare_exchange_weak(before, task)) {
                }
            }
        }
    };
    const int most = tbb::info::default_concurrency();
    tbb::task_arena arena(std::min(static_cast<int>(std::min(threads, 1024U)), most));
    arena.execute(
        [&] { tbb::parallel_for(tbb::blocked_range<std::size_t>(0, tasks.size()), run); });
    // Once more on one thread: reports the first failure in order, not in time.
    if (failed < tasks.size()) {
        BlockStream blocks = tasks[failed];
        decodeBlocks(blocks, decode, BlocksOfTask);
    }
    return stream;
}

void appendBigEndian(std::vector<std::byte>& to, std::uint64_t value, std::size_t bytes)
{
    while (bytes-- > 0)
        to.push_back(static_cast<std::byte>(value >> (8 * bytes) & 0xff));
}

}  // namespace morvend::codec
