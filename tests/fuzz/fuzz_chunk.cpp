// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A stored chunk after its filters: LZ4, bitshuffle of each packing, byte shuffle and deflate, one
// or two of them. Every instruction set and number of threads gives the same.
#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/image/MException.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/Targets.h"

#include <optional>
#include <string>

using namespace morvend;
using namespace tarvik::fuzz;

namespace {

using Bytes = std::vector<std::byte>;

codec::ChunkFilter filterOf(Input& input)
{
    constexpr unsigned Ids[] = {codec::Lz4Filter, codec::BitshuffleFilter, codec::ShuffleFilter,
                                codec::DeflateFilter};
    codec::ChunkFilter filter{Ids[input.byte() & 3], {}};
    if (filter.id == codec::BitshuffleFilter)
        filter.values = {0, 3, input.byte(), input.word(), input.byte()};
    else if (filter.id == codec::ShuffleFilter)
        filter.values = {input.byte()};
    return filter;
}

/// The chunk, or nothing with the reason.
std::optional<Bytes> decode(const codec::ChunkPipeline& pipeline, const Bytes& stored,
                            std::uint32_t mask, unsigned threads, std::string& reason)
{
    Bytes decoded(pipeline.chunkBytes, std::byte(0xa5));
    try {
        codec::decodeChunk(pipeline, stored, mask, decoded, threads);
        return decoded;
    } catch (const MException& error) {
        reason = error.what();
        return std::nullopt;
    }
}

void encodeAndDecode(const Bytes& data, std::size_t elementSize, std::size_t block)
{
    Bytes back(data.size());
    codec::lz4Decode(codec::lz4Encode(data, block + 1), back);
    demand(back == data, "LZ4 there and back");
    const Bytes whole(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(
                                                       data.size() / elementSize * elementSize));
    for (const auto packing : {codec::BlockPacking::None, codec::BlockPacking::Lz4}) {
        const Bytes stored =
            codec::bitshuffleEncode(whole, elementSize, packing, block % 1024 / 8 * 8);
        onEveryTarget([&] {
            back.assign(whole.size(), std::byte(0));
            codec::bitshuffleDecode(stored, elementSize, packing, block % 1024 / 8 * 8, back);
            demand(back == whole, "bitshuffle there and back");
        });
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const unsigned choice = input.byte();
    codec::ChunkPipeline pipeline;
    pipeline.elementSize = std::size_t(1) << (choice & 3);
    pipeline.chunkBytes = input.word();
    const std::uint32_t mask = choice >> 6;
    pipeline.filters.push_back(filterOf(input));
    if (choice & 4)
        pipeline.filters.push_back(filterOf(input));
    const Bytes stored = input.rest();
    std::string reason;
    const auto decoded = decode(pipeline, stored, mask, 1, reason);
    demand(decoded || !reason.empty(), "a failure has a reason");
    onEveryTarget([&] {
        std::string again;
        demand(decode(pipeline, stored, mask, 1, again) == decoded && again == reason,
               "every instruction set gives the same");
    });
    std::string again;
    if (choice & 8)
        demand(decode(pipeline, stored, mask, 3, again) == decoded && again == reason,
               "every number of threads gives the same");
    if (choice & 16)
        encodeAndDecode(stored, pipeline.elementSize, pipeline.chunkBytes);
    return 0;
}
