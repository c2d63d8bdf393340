// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every kernel that this processor runs gives what the definitions say, bit by bit.
#include "imagelib/codec/Shuffle.h"
#include "imagelib/codec/ShuffleKernels.h"
#include "tests/imagelib/codec/TestData.h"
#include "tests/support/EveryTarget.h"

namespace morvend::codec {
namespace {

using namespace tarvik::tests;
using Sizes = std::initializer_list<std::size_t>;

Bytes unshuffledByDefinition(const Bytes& planes, std::size_t size)
{
    const std::size_t count = planes.size() / size;
    Bytes elements(planes.size());
    for (std::size_t element = 0; element < count; ++element)
        for (std::size_t bit = 0; bit < 8 * size; ++bit) {
            const std::byte plane = planes[bit * count / 8 + element / 8];
            if (std::to_integer<unsigned>(plane) >> element % 8 & 1)
                elements[element * size + bit / 8] |= static_cast<std::byte>(1U << bit % 8);
        }
    return elements;
}

TEST(BitPlanes, UnshufflesBitsByTheDefinitionAndShuffleIsTheInverse)
{
    forEveryTarget([] {
        for (const std::size_t size : Sizes{1, 2, 3, 4, 8, 12})
            for (const std::size_t count :
                 Sizes{0, 8, 16, 64, 120, 256, 264, 512, 520, 2048, 2048 + 72, 4096 + 256 + 8})
                for (const Pattern pattern : Patterns) {
                    // Sparse elements and gaps have equal planes, which take roads of their own.
                    const Bytes elements = makeElements(pattern, count, size);
                    Bytes planes(elements.size());
                    shuffleBits(elements.data(), count, size, planes.data());
                    EXPECT_TRUE(unshuffledByDefinition(planes, size) == elements);
                    Bytes result(elements.size());
                    bitUnshuffler()(planes.data(), count, size, result.data());
                    EXPECT_TRUE(result == elements) << size << ' ' << count << ' ' << int(pattern);
                }
    });
}

TEST(BitPlanes, UnshufflesBytesByTheDefinition)
{
    forEveryTarget([] {
        for (const std::size_t size : Sizes{1, 2, 3, 4, 5, 8, 12, 16}) {
            for (const std::size_t bytes : Sizes{0, 1, 7, 64, 255, 256, 1000, 4096, 5003}) {
                const Bytes shuffled = makeElements(Pattern::Noise, bytes, 1);
                const std::size_t count = bytes / size;
                Bytes expected = shuffled;
                for (std::size_t i = 0; i < count * size; ++i)
                    expected[i] = shuffled[i % size * count + i / size];
                Bytes elements(bytes);
                byteUnshuffle(shuffled, size, elements);
                EXPECT_EQ(elements, expected) << size << ' ' << bytes;
                Bytes again(bytes);
                byteShuffle(elements, size, again);
                EXPECT_EQ(again, shuffled) << size << ' ' << bytes;
            }
        }
    });
}

}  // namespace
}  // namespace morvend::codec
