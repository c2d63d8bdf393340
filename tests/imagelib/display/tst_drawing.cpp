// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rectangles, drawing lists and rounding.
#include "imagelib/display/MRect.h"
#include "imagelib/display/Round.h"
#include "tests/support/Described.h"

#include <gtest/gtest.h>

namespace {

using namespace tarvik::tests;

TEST(Rect, EndsBeyondItsLastPixel)
{
    const MRect rect(100, -20, 150, 400);
    EXPECT_EQ(rect.right(), 250);
    EXPECT_EQ(rect.bottom(), 380);
    EXPECT_EQ(rect, MRect(100, -20, 150, 400));
    EXPECT_TRUE(rect != MRect());
    EXPECT_FALSE(MRect() != MRect());
    EXPECT_TRUE(MRect(1, 0, 0, 0) != MRect());
}

MDrawingList<> oneOfEach()
{
    MDrawingList<> list{std::allocator<char>()};
    list.pushBack(MDrawingPixel(1, 2, 3, 4, 5, 6));
    list.pushBack(MDrawingLine(1, 2, 3, 4, 255, 0, 0, 128));
    list.pushBack(MDrawingString(1, 2, "a", 9, 8, 7));
    list.pushBack(MDrawingEllipse(1, 2, 3, 4, 5, 0, 0, 255));
    return list;
}

const char* const oneOfEachText = "0 3 4 5 6 1 2\n1 255 0 0 128 1 2 3 4\n"
                                  "2 9 8 7 255 1 2 a\n3 0 0 255 255 1 2 3 4 5\n";

TEST(DrawingList, IsAValueThatKeepsOrderClassAndValuesOfItsItems)
{
    MDrawingList<> list = oneOfEach();
    MDrawingList<> copy = list;
    static_cast<MDrawingPixel&>(copy[0]) = MDrawingPixel(7, 0, 0, 0, 0, 0);
    copy.pushBack(copy[1]);
    EXPECT_EQ(described(list), oneOfEachText);
    EXPECT_EQ(described(copy), "0 0 0 0 0 7 0\n1 255 0 0 128 1 2 3 4\n2 9 8 7 255 1 2 a\n"
                               "3 0 0 255 255 1 2 3 4 5\n1 255 0 0 128 1 2 3 4\n");

    list = *&list;
    EXPECT_EQ(described(list), oneOfEachText);
    copy = list;
    MDrawingList<> other;
    other.swap(copy);
    EXPECT_EQ(copy.size(), 0U);
    const MDrawingList<> moved = std::move(other);
    EXPECT_EQ(described(moved), oneOfEachText);
    list.clear();
    EXPECT_EQ(list.size(), 0U);
    list.pushBack(MDrawingPixel(1, 1));
    EXPECT_EQ(list.size(), 1U);
}

TEST(Round, HalvesGoAwayFromZero)
{
    EXPECT_EQ(morvend::imglib::round(2.5), 3);
    EXPECT_EQ(morvend::imglib::round(-0.5), -1);
}

}  // namespace
