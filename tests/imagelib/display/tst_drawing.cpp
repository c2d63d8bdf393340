// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rectangles, drawing lists and rounding.
#include "imagelib/display/MDrawingList.h"
#include "imagelib/display/MRect.h"
#include "imagelib/display/Round.h"

#include <gtest/gtest.h>

namespace {

using namespace morvend::imglib;

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

/// One item as text, read through the base class as the view does.
std::string describe(const MDrawingPrimitive& item)
{
    const std::string color = " #" + std::to_string(item.red()) + "," +
                              std::to_string(item.green()) + "," + std::to_string(item.blue()) +
                              "," + std::to_string(item.alpha());
    switch (item.type()) {
    case 0: {
        const auto& pixel = static_cast<const MDrawingPixel&>(item);
        return "pixel " + std::to_string(pixel.x() + 10 * pixel.y()) + color;
    }
    case 1: {
        const auto& line = static_cast<const MDrawingLine&>(item);
        return "line " +
               std::to_string(line.xBegin() + 10 * line.yBegin() + 100 * line.xEnd() +
                              1000 * line.yEnd()) +
               color;
    }
    case 2: {
        const auto& text = static_cast<const MDrawingString&>(item);
        return "text " + text.text() + std::to_string(text.x() + 10 * text.y()) + color;
    }
    case 3: {
        const auto& e = static_cast<const MDrawingEllipse&>(item);
        return "ellipse " +
               std::to_string(e.x() + 10 * e.y() + 100 * e.rx() + 1000 * e.ry() +
                              10000 * e.rotation()) +
               color;
    }
    default:
        return "unknown";
    }
}

std::string describe(const MDrawingList<>& list)
{
    std::string text;
    for (std::size_t i = 0; i < list.size(); ++i)
        text += describe(list[i]) + "\n";
    return text;
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

const char* const oneOfEachText = "pixel 21.000000 #3,4,5,6\n"
                                  "line 4321.000000 #255,0,0,128\n"
                                  "text a21.000000 #9,8,7,255\n"
                                  "ellipse 54321.000000 #0,0,255,255\n";

TEST(DrawingList, KeepsOrderClassAndValuesOfItsItems)
{
    EXPECT_EQ(describe(oneOfEach()), oneOfEachText);
}

TEST(DrawingList, IsAValue)
{
    MDrawingList<> list = oneOfEach();
    MDrawingList<> copy = list;
    static_cast<MDrawingPixel&>(copy[0]) = MDrawingPixel(7, 0, 0, 0, 0, 0);
    copy.pushBack(copy[1]);
    copy.pushBack(MDrawingPixel(0, 0));
    EXPECT_EQ(describe(list), oneOfEachText);
    EXPECT_EQ(copy.size(), 6U);
    EXPECT_EQ(describe(copy[0]), "pixel 7.000000 #0,0,0,0");
    EXPECT_EQ(describe(copy[4]), describe(list[1]));

    list = list;
    EXPECT_EQ(describe(list), oneOfEachText);
    copy = list;
    EXPECT_EQ(describe(copy), oneOfEachText);
    MDrawingList<> other;
    other.swap(copy);
    EXPECT_EQ(copy.size(), 0U);
    EXPECT_EQ(describe(other), oneOfEachText);
    const MDrawingList<> moved = std::move(other);
    EXPECT_EQ(describe(moved), oneOfEachText);
    list.clear();
    EXPECT_EQ(list.size(), 0U);
    list.pushBack(MDrawingPixel(1, 1));
    EXPECT_EQ(list.size(), 1U);
}

TEST(Round, HalvesGoAwayFromZero)
{
    const std::pair<double, double> cases[] = {
        {0.5, 1},   {-0.5, -1},     {1.5, 2},
        {2.5, 3},   {-2.5, -3},     {2.4, 2},
        {-2.6, -3}, {1e300, 1e300}, {0.49999999999999994, 0}};
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(morvend::imglib::round(value), expected) << value;
}

}  // namespace
