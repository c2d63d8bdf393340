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

Bytes joinedByDefinition(const Bytes& planes)
{
    const std::size_t count = planes.size();
    Bytes bytes(count);
    for (std::size_t element = 0; element < count; ++element)
        for (std::size_t bit = 0; bit < 8; ++bit)
            if (std::to_integer<unsigned>(planes[bit * count / 8 + element / 8]) >> element % 8 & 1)
                bytes[element] |= static_cast<std::byte>(1U << bit);
    return bytes;
}

TEST_P(EachTarget, JoinsPlanesByTheDefinitionAndSplitIsTheInverse)
{
    for (const std::size_t count : std::initializer_list<std::size_t>{8, 16, 64, 120, 256, 264, 512,
                                                                      520, 2048, 2048 + 72, 4096}) {
        for (const Pattern pattern : {Pattern::Noise, Pattern::Sparse, Pattern::Gaps}) {
            Bytes planes = makeElements(pattern, count, 1);
            if (pattern == Pattern::Gaps)  // equal planes take a road of their own
                for (std::size_t i = count / 8; i < count; ++i)
                    planes[i] = planes[i - count / 8];
            Bytes joined(count);
            joinPlanes()(planes.data(), count, joined.data());
            EXPECT_EQ(joined, joinedByDefinition(planes)) << count << ' ' << name(pattern);
            Bytes split(count);
            splitPlanes(joined.data(), count, split.data());
            EXPECT_EQ(split, planes) << count << ' ' << name(pattern);
        }
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
