// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Names of pixel types, dispatch over one and two of them, and the exceptions.
#include "imagelib/image/BinaryDispatcher.h"
#include "imagelib/image/ErrorPlace.h"
#include "imagelib/image/MImage.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <typeinfo>
#include <utility>

using namespace morvend;
using datatypes::BinaryDispatcher;

namespace {

/// An image of a type that MImage itself refuses to make.
struct StrangeImage {
    datatypes::Type kind;
    std::size_t bits;
    datatypes::Type type() const { return kind; }
    std::size_t typeBits() const { return bits; }
};

/// The places of two types in the list of all.
struct WhichPair {
    template <class L, class R, class Left, class Right>
    std::pair<std::size_t, std::size_t> operator()(const Left&, const Right&)
    {
        return {index<L>, index<R>};
    }
    template <class T, std::size_t I = 0>
    static constexpr std::size_t find()
    {
        if constexpr (std::is_same_v<T, std::tuple_element_t<I, datatypes::PixelTypes>>)
            return I;
        else
            return find<T, I + 1>();
    }
    template <class T>
    static constexpr std::size_t index = find<T>();
};

using Pairs = BinaryDispatcher<WhichPair, const StrangeImage, const StrangeImage,
                               std::pair<std::size_t, std::size_t>>;

}  // namespace

TEST(Dispatch, FindsEachOfAllPairsOfTypes)
{
    using enum datatypes::Type;
    const StrangeImage types[] = {{BOOL, 8},  {CHAR, 8},  {INT, 8},    {INT, 16},
                                  {INT, 32},  {INT, 64},  {UINT, 8},   {UINT, 16},
                                  {UINT, 32}, {UINT, 64}, {FLOAT, 32}, {FLOAT, 64}};
    for (std::size_t left = 0; left < 12; ++left)
        for (std::size_t right = 0; right < 12; ++right)
            EXPECT_EQ(Pairs::Go(types[left], types[right], WhichPair()), std::pair(left, right));
}

TEST(Dispatch, NamesTheTypeOfTheImageWhoseListRanOut)
{
    const StrangeImage good{datatypes::INT, 32}, half{datatypes::FLOAT, 16},
        none{datatypes::NONE, 0};
    const auto refused = [](const StrangeImage& left, const StrangeImage& right, const char* type) {
        EXPECT_THAT([&] { Pairs::Go(left, right, WhichPair()); },
                    testing::ThrowsMessage<MNotImplementedException>(
                        std::string("Missing implementation for type ") + type));
    };
    refused(half, good, "FLOAT of size 16");
    refused(good, none, "NONE of size 0");
    refused(half, none, "FLOAT of size 16");
    EXPECT_THAT([] { datatypes::typeStr(static_cast<datatypes::Type>(6)); },
                testing::ThrowsMessage<MNotImplementedException>("Unknown data type"));
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
    EXPECT_THROW(rethrow(MReaderGoneException("x")), MReaderGoneException);
    EXPECT_THROW(rethrow(std::out_of_range("y")), MRuntimeException);
}

TEST(Exceptions, GetThePlaceThatTheyCannotKnow)
{
    const auto textOf = [](const auto& error) {
        try {
            imglib::withPlace([] { return std::string("/data/x"); }, [&] { throw error; });
        } catch (const MRuntimeException& failure) {
            return std::string(typeid(failure) == typeid(MRuntimeException) ? failure.what() : "");
        }
        return std::string();
    };
    EXPECT_EQ(textOf(MMemoryException("no room")), "no room: /data/x");
    EXPECT_EQ(textOf(std::bad_alloc()), "Not enough memory: /data/x");
    EXPECT_EQ(textOf(std::length_error("too long")), "too long: /data/x");
    EXPECT_EQ(textOf(MRuntimeException("bad: /data/y")), "bad: /data/y");
}
