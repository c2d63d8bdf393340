// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Chunks that the filter plug-ins of Debian wrote, and our chunks read by them: our decoder and our
// encoder can't share a mistake.
#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/codec/Lz4.h"
#include "tests/imagelib/codec/TestData.h"
#include "tests/support/SourcePath.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace morvend::codec {
namespace {

using namespace tarvik::tests;

const std::string Script = tarvik::tests::sourcePath("/tests/imagelib/codec/peer_chunks.py");

Bytes readFile(const std::string& path)
{
    Bytes bytes(std::filesystem::file_size(path));
    std::ifstream(path, std::ios::binary)
        .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

TEST(PeerVectors, PlugInsReadOurChunksAndWeReadTheirs)
{
    const TempFolder folder;
    std::string ours;
    const auto add = [&](const std::string& name, unsigned filter, std::size_t size,
                         const Bytes& raw, const Bytes& chunk) {
        const auto text = [](const Bytes& bytes) {
            return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        };
        folder.write(name + ".raw", text(raw));
        folder.write(name + ".chunk", text(chunk));
        ours += name + ' ' + std::to_string(filter) + ' ' + std::to_string(size) + '\n';
    };
    for (const unsigned size : {1U, 2U, 4U, 8U})
        for (const unsigned count : {5U, 136U, 5003U}) {
            const std::string suffix = std::to_string(size) + "_" + std::to_string(count);
            const Bytes raw = makeElements(Pattern::Gaps, count, size);
            add("bitshuffle" + suffix, BitshuffleFilter, size, raw, bitshuffleEncode(raw, size));
            add("lz4_" + suffix, Lz4Filter, size, raw, lz4Encode(raw));
        }
    folder.write("ours.txt", ours);
    ASSERT_EQ(std::system((TARVIK_PYTHON " " + Script + ' ' + folder.path()).c_str()), 0);

    std::ifstream list(folder / "theirs.txt");
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

}  // namespace
}  // namespace morvend::codec
