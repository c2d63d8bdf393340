// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Chunks that the filter plug-ins of Debian wrote, and our chunks read by them: our decoder and our
// encoder can't share a mistake.
#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/codec/Lz4.h"
#include "tests/imagelib/codec/TestData.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace morvend::codec {
namespace {

using tarvik::tests::Bytes;
using tarvik::tests::TempFolder;

const std::string Script = TARVIK_SOURCE_DIR "/tests/imagelib/codec/peer_chunks.py";

Bytes readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    Bytes bytes(text.size());
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](char c) { return static_cast<std::byte>(c); });
    return bytes;
}

int python(const std::string& arguments)
{
    return std::system((TARVIK_PYTHON " " + Script + " " + arguments).c_str());
}

TEST(PeerVectors, ChunksOfThePlugInsAreDecoded)
{
    const TempFolder folder;
    ASSERT_EQ(python("write " + folder.path()), 0);
    std::ifstream list(folder / "list.txt");
    int rows = 0;
    // One row: name, element size, number of filters, and for each id, number of values, values.
    for (std::string line; std::getline(list, line); ++rows) {
        std::istringstream row(line);
        std::string name;
        ChunkPipeline pipeline;
        std::size_t filters = 0;
        row >> name >> pipeline.elementSize >> filters;
        pipeline.filters.resize(filters);
        for (ChunkFilter& filter : pipeline.filters) {
            std::size_t values = 0;
            row >> filter.id >> values;
            filter.values.resize(values);
            for (unsigned& value : filter.values)
                row >> value;
        }
        ASSERT_TRUE(row) << line;
        const Bytes expected = readFile(folder / (name + ".raw"));
        Bytes decoded(expected.size());
        pipeline.chunkBytes = expected.size();
        ASSERT_EQ(decodingObstacle(pipeline), "") << line;
        decodeChunk(pipeline, readFile(folder / (name + ".chunk")), 0, decoded);
        EXPECT_TRUE(decoded == expected) << line;
    }
    EXPECT_GE(rows, 40);
}

TEST(PeerVectors, OurChunksAreReadByThePlugIns)
{
    const TempFolder folder;
    std::ofstream list(folder / "ours.txt");
    const auto add = [&](const std::string& name, unsigned filter, std::size_t size,
                         const Bytes& raw, const Bytes& chunk) {
        const auto text = [](const Bytes& bytes) {
            return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        };
        folder.write(name + ".raw", text(raw));
        folder.write(name + ".chunk", text(chunk));
        list << name << ' ' << filter << ' ' << size << '\n';
    };
    for (const std::size_t size : std::initializer_list<std::size_t>{1, 2, 4, 8})
        for (const std::size_t count : std::initializer_list<std::size_t>{5, 136, 5003}) {
            const std::string suffix = std::to_string(size) + "_" + std::to_string(count);
            const Bytes raw =
                tarvik::tests::makeElements(tarvik::tests::Pattern::Gaps, count, size);
            add("bitshuffle" + suffix, BitshuffleFilter, size, raw, bitshuffleEncode(raw, size));
            add("lz4_" + suffix, Lz4Filter, size, raw, lz4Encode(raw));
        }
    list.close();
    EXPECT_EQ(python("check " + folder.path()), 0);
}

}  // namespace
}  // namespace morvend::codec
