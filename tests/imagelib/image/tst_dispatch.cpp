// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Names of pixel types, dispatch over one and two of them, and the exceptions.
#include "imagelib/image/BinaryDispatcher.h"
#include "imagelib/image/MImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <utility>

using namespace morvend;
using datatypes::BinaryDispatcher;
using imglib::MImage;

namespace {

/// An image of a type that MImage itself refuses to make.
struct StrangeImage {
    datatypes::Type kind;
    std::size_t bits;
    datatypes::Type type() const { return kind; }
    std::size_t typeBits() const { return bits; }
};

struct WhichPair {
    template <class L, class R, class Left, class Right>
    std::pair<int, int> operator()(const Left&, const Right&)
    {
        return {index<L>(), index<R>()};
    }
    template <class T, std::size_t I = 0>
    static constexpr int index()
    {
        if constexpr (std::is_same_v<T, std::tuple_element_t<I, datatypes::PixelTypes>>)
            return int(I);
        else
            return index<T, I + 1>();
    }
};

template <class Left, class Right = Left>
using Pairs = BinaryDispatcher<WhichPair, const Left, const Right, std::pair<int, int>>;

std::string failure(const StrangeImage& left, const StrangeImage& right)
{
    try {
        Pairs<StrangeImage>::Go(left, right, WhichPair());
    } catch (const MNotImplementedException& error) {
        return error.what();
    }
    return "no exception";
}

}  // namespace

TEST(Dispatch, FindsEachOfAllPairsOfTypes)
{
    using datatypes::BOOL, datatypes::CHAR, datatypes::FLOAT, datatypes::INT, datatypes::UINT;
    const StrangeImage types[] = {{BOOL, 8},  {CHAR, 8},  {INT, 8},    {INT, 16},
                                  {INT, 32},  {INT, 64},  {UINT, 8},   {UINT, 16},
                                  {UINT, 32}, {UINT, 64}, {FLOAT, 32}, {FLOAT, 64}};
    for (int left = 0; left < 12; ++left)
        for (int right = 0; right < 12; ++right)
            EXPECT_EQ(Pairs<StrangeImage>::Go(types[left], types[right], WhichPair()),
                      std::pair(left, right));
}

TEST(Dispatch, NamesTheTypeOfTheImageWhoseListRanOut)
{
    const StrangeImage good{datatypes::INT, 32};
    EXPECT_EQ(failure({datatypes::FLOAT, 16}, good),
              "Missing implementation for type FLOAT of size 16");
    EXPECT_EQ(failure(good, {datatypes::NONE, 0}),
              "Missing implementation for type NONE of size 0");
    EXPECT_EQ(failure({datatypes::UINT, 24}, {datatypes::BOOL, 16}),
              "Missing implementation for type UINT of size 24");
}

TEST(Dispatch, ATypeWithoutNameIsAnError)
{
    EXPECT_THAT([] { datatypes::typeStr(static_cast<datatypes::Type>(6)); },
                testing::ThrowsMessage<MNotImplementedException>("Unknown data type"));
}

TEST(ConvertPixel, HoldsFloatingValuesAtTheEndsOfIntegers)
{
    using datatypes::convertPixel;
    constexpr double Inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(convertPixel<int>(2.9), 2);
    EXPECT_EQ(convertPixel<int>(-2.9), -2);
    EXPECT_EQ(convertPixel<int>(3e9), 2147483647);
    EXPECT_EQ(convertPixel<int>(-Inf), std::numeric_limits<int>::min());
    EXPECT_EQ(convertPixel<unsigned int>(-0.5), 0u);
    EXPECT_EQ(convertPixel<unsigned int>(-1.0f), 0u);
    EXPECT_EQ(convertPixel<unsigned int>(4294967296.0f), 4294967295u);
    EXPECT_EQ(convertPixel<long long>(9.3e18f), std::numeric_limits<long long>::max());
    EXPECT_EQ(convertPixel<unsigned long long>(1.9e19), ~0ull);
    EXPECT_EQ(convertPixel<unsigned char>(255.7), 255);
    EXPECT_EQ(convertPixel<int>(std::nan("")), 0);
    EXPECT_TRUE(convertPixel<bool>(0.25));
    EXPECT_EQ(convertPixel<unsigned int>(-1), 4294967295u);
    EXPECT_EQ(convertPixel<float>(16777217), 16777216.0f);
}

TEST(Exceptions, AreRethrownAsTheirOwnType)
{
    const auto rethrow = [](const std::exception& error) { imglib::forwardException(error); };
    const MTimeoutException timeout("too late", 2.5);
    try {
        rethrow(timeout);
    } catch (const MTimeoutException& error) {
        EXPECT_EQ(error.elapsed(), 2.5);
        EXPECT_STREQ(error.what(), "too late");
    }
    EXPECT_THROW(rethrow(MNoFileAccessException("x")), MNoFileAccessException);
    EXPECT_THROW(rethrow(imglib::MTerminateException("x")), imglib::MTerminateException);
    EXPECT_THROW(rethrow(imglib::MHttpException("x")), imglib::MHttpException);
    EXPECT_THROW(rethrow(MException("x")), MException);
    EXPECT_THROW(rethrow(std::out_of_range("y")), MRuntimeException);
    EXPECT_THROW(throw MOutOfRangeException("an MException too"), MException);
}
