// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The sentence over a view.
#include "gui/kit/TextLine.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

namespace {

TEST(TextLine, LiesOverTheUpperEdgeForAWhileAndInNobodysWay)
{
    QWidget view;
    view.resize(300, 200);
    view.show();
    TextLine line(&view, Qt::TopEdge, std::chrono::hours(1));
    EXPECT_FALSE(line.isVisible());
    line.say("Left out: image 3 is missing");
    EXPECT_TRUE(line.isVisible());
    EXPECT_EQ(view.childAt(20, 5), nullptr) << "clicks go through";
    const int oneLine = line.height();
    line.say("<b>" + QString(40, 'x') + "/" + QString(40, 'y') + "</b>/" + QString(40, 'z'));
    EXPECT_GT(line.height(), oneLine);
    for (const QSize size : {QSize(300, 200), QSize(150, 100), QSize(500, 300)}) {
        view.resize(size);
        settle();
        EXPECT_EQ(line.pos(), QPoint(0, 0));
        EXPECT_EQ(line.width(), size.width());
    }
}

TEST(TextLine, GoesByItself)
{
    QWidget view;
    view.show();
    TextLine line(&view, Qt::TopEdge, std::chrono::milliseconds(1));
    line.say("once");
    EXPECT_TRUE(waitFor([&] { return !line.isVisible(); }));
    line.say("again");
    EXPECT_TRUE(line.isVisible());
    EXPECT_EQ(line.message(), "again");
}

}  // namespace
