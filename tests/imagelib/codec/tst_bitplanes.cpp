// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every kernel that this processor runs gives what the definitions say, bit by bit.
#include "imagelib/codec/BitPlanes.h"
#include "imagelib/codec/Shuffle.h"
#include "tests/imagelib/codec/TestData.h"

#include <gtest/gtest.h>

#define HWY_DISABLED_TARGETS 0
#include <hwy/highway.h>

namespace morvend::codec {
namespace {

using tarvik::tests::Bytes;
using tarvik::tests::makeElements;
using tarvik::tests::Pattern;

/// The Highway targets of this processor, one at a time; the last round lets all of them be.
class EachTarget : public testing::TestWithParam<std::int64_t> {
protected:
    void SetUp() override
    {
        hwy::SetSupportedTargetsForTest(GetParam());
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
    void TearDown() override
    {
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

std::vector<std::int64_t> targets()
{
    std::vector<std::int64_t> all{0};
    for (std::int64_t rest = hwy::SupportedTargets(); rest != 0; rest &= rest - 1)
        all.push_back(rest & -rest);
    return all;
}

INSTANTIATE_TEST_SUITE_P(Targets, EachTarget, testing::ValuesIn(targets()), [](const auto& row) {
    return row.param ? std::string(hwy::TargetName(row.param)) : std::string("Automatic");
});

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

TEST_P(EachTarget, UnshufflesBitsByTheDefinitionAndShuffleIsTheInverse)
{
    for (const std::size_t size : std::initializer_list<std::size_t>{1, 2, 3, 4, 8, 12})
        for (const std::size_t count : std::initializer_list<std::size_t>{
                 0, 8, 16, 64, 120, 256, 264, 512, 520, 2048, 2048 + 72, 4096 + 256 + 8})
            for (const Pattern pattern : {Pattern::Noise, Pattern::Sparse, Pattern::Gaps}) {
                // Sparse elements and gaps have equal planes, which take roads of their own.
                const Bytes elements = makeElements(pattern, count, size);
                Bytes planes(elements.size());
                shuffleBits(elements.data(), count, size, planes.data());
                EXPECT_TRUE(unshuffledByDefinition(planes, size) == elements);
                Bytes result(elements.size());
                bitUnshuffler()(planes.data(), count, size, result.data());
                EXPECT_TRUE(result == elements) << size << ' ' << count << ' ' << name(pattern);
            }
}

TEST_P(EachTarget, UnshufflesBytesByTheDefinition)
{
    for (const std::size_t size : std::initializer_list<std::size_t>{1, 2, 3, 4, 5, 8, 12, 16}) {
        for (const std::size_t bytes :
             std::initializer_list<std::size_t>{0, 1, 7, 64, 255, 256, 1000, 4096, 5003}) {
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
}

}  // namespace
}  // namespace morvend::codec
