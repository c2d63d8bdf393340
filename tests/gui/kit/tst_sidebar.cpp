// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Panels fold together, and survive each other.
#include "gui/kit/ContainerSideBar.h"
#include "gui/kit/FloatingWidget.h"
#include "gui/kit/ScrollIntoSight.h"
#include "gui/kit/SideBarTitle.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QWheelEvent>

#include <memory>

namespace {

/// Keys that no other test has used.
unsigned long long freshKey()
{
    static unsigned long long last = 1000;
    return ++last;
}

/// One view's column: a root in its scroll area, with panels of 200 pixels.
struct Column {
    Column(unsigned long long root, const std::vector<unsigned long long>& keys)
        : tree(new ContainerSideBar(root))
        , area(tree->scrollArea())
    {
        for (const auto key : keys) {
            auto* panel = new SideBar(key);
            panel->setTitle("Panel");
            panel->setMinimumHeight(200);
            tree->addSideBar(panel);
            panels.emplace_back(panel);
        }
        area->resize(340, 250);
        area->show();
        settle();
    }
    SideBarTitle* title(int index) const { return tree->findChildren<SideBarTitle*>()[index]; }

    ContainerSideBar* tree;
    std::unique_ptr<QScrollArea> area;
    std::vector<QPointer<SideBar>> panels;
};

TEST(SideBarTest, ATitleFoldsThePanelsOfItsKeyInAllColumns)
{
    const auto root = freshKey();
    const auto key = freshKey();
    SideBar::setDefaultVisibility(key, true);
    const Column one(root, {key});
    const Column two(root, {key});
    EXPECT_TRUE(two.panels[0]->isVisible());
    const QSignalSpy here(one.panels[0], &SideBar::toggledVisible);
    const QSignalSpy there(two.panels[0], &SideBar::toggledVisible);
    const QSignalSpy opened(two.panels[0], &SideBar::gotVisbile);
    QTest::mouseClick(one.title(0), Qt::LeftButton);
    EXPECT_TRUE(one.panels[0]->isHidden() && two.panels[0]->isHidden());
    QTest::mouseClick(two.title(0), Qt::LeftButton);
    EXPECT_TRUE(one.panels[0]->isVisible() && two.panels[0]->isVisible());
    EXPECT_EQ(here.count(), 1);
    EXPECT_EQ(there.count(), 1);
    EXPECT_EQ(opened.count(), 1);
    one.panels[0]->toggleVisible(false);
    EXPECT_TRUE(Column(root, {key}).panels[0]->isHidden()) << "a later one starts as they are";
}

TEST(SideBarTest, LevelsAreCountedFromTheRootWhichCanNotBeFolded)
{
    const auto root = freshKey();
    auto* group = new ContainerSideBar(freshKey());
    auto* panel = new SideBar(freshKey());
    group->addSideBar(panel);
    Column column(root, {});
    column.tree->addSideBar(group);
    EXPECT_EQ(column.tree->titleHeight(), 0);
    EXPECT_EQ(group->titleHeight(), 30);
    EXPECT_EQ(panel->titleHeight(), 25);
    EXPECT_EQ(panel->level(), 2u);
    column.tree->toggleVisible(false);
    EXPECT_TRUE(column.tree->isVisible());
    settle();
    EXPECT_EQ(column.title(0)->size(), QSize(column.area->viewport()->width(), 30));
    column.area->resize(250, 250);
    group->toggleVisible(true);
    settle();
    EXPECT_EQ(group->height(), 25) << "no more than the title in it";
    EXPECT_EQ(column.title(0)->width(), column.area->viewport()->width());
}

TEST(SideBarTest, APanelThatOpensIsScrolledIntoSight)
{
    const auto root = freshKey();
    Column column(root, {freshKey(), freshKey(), freshKey()});
    const Column other(root, {freshKey(), freshKey()});
    SideBar* last = column.panels[2];
    QObject::connect(last, &SideBar::gotVisbile, last, [](SideBar* bar) { bar->ensureVisible(); });
    for (const auto& panel : other.panels)
        panel->toggleVisible(true);
    column.panels[0]->toggleVisible(true);
    settle();
    last->toggleVisible(true);
    const int bottom = last->mapTo(column.area->viewport(), QPoint(0, last->height())).y();
    EXPECT_LE(bottom, column.area->viewport()->height());
    EXPECT_GT(other.area->verticalScrollBar()->value(), 0) << "columns scroll together";
}

TEST(SideBarTest, WhatHasJustGrownIsScrolledIntoSight)
{
    const Column column(freshKey(), {freshKey(), freshKey()});
    auto* content = new QWidget;
    auto* child = new QWidget;
    (new QVBoxLayout(child))->addWidget(content);
    child->layout()->setContentsMargins({});
    auto* floating = new FloatingWidget(child, "Content", Qt::black);
    (new QVBoxLayout(column.panels[1]))->addWidget(floating);
    column.panels[1]->setMinimumHeight(0);
    for (const auto& panel : column.panels)
        panel->toggleVisible(true);
    settle();
    const int room = column.area->viewport()->height();
    const auto yInSight = [&](const QPoint& point) {
        return floating->mapTo(column.area->viewport(), point).y();
    };
    content->setMinimumHeight(room - 10);
    scrollIntoSight(*column.area, *floating);
    EXPECT_EQ(yInSight({0, room - 10}), room);
    content->setMinimumHeight(room + 50);
    scrollIntoSight(*column.area, *floating, 5);
    EXPECT_EQ(yInSight({}), 5) << "of what is taller, the upper end";

    column.panels[0]->hide();
    settle();
    const int before = column.area->verticalScrollBar()->value();
    scrollIntoSight(*column.area, *column.panels[0]);
    const Column other(freshKey(), {freshKey()});
    other.panels[0]->toggleVisible(true);
    scrollIntoSight(*column.area, *other.panels[0]);
    EXPECT_EQ(column.area->verticalScrollBar()->value(), before) << "not for what is elsewhere";
}

TEST(SideBarTest, AWheelThatScrollsPastAFieldLeavesItsValue)
{
    const Column column(freshKey(), {freshKey(), freshKey()});
    auto* box = new QSpinBox;
    (new QVBoxLayout(column.panels[0]))->addWidget(box);
    for (const auto& panel : column.panels)
        panel->toggleVisible(true);
    settle();
    // Whether the box takes it; otherwise it goes to what is around.
    const auto turn = [box] {
        QWheelEvent down({5, 5}, box->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {},
                         Qt::NoScrollPhase, false);
        QApplication::sendEvent(box, &down);
        return down.isAccepted();
    };
    box->setValue(50);
    column.area->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(column.area.get()));
    box->clearFocus();
    EXPECT_FALSE(turn());
    EXPECT_EQ(box->value(), 50);
    EXPECT_FALSE(box->hasFocus());
    box->setFocus();
    EXPECT_TRUE(turn());
    EXPECT_EQ(box->value(), 49);
}

TEST(SideBarTest, PanelsMayGoAtAnyTime)
{
    const auto root = freshKey();
    const auto key = freshKey();
    for (const bool inGotVisible : {true, false}) {
        SCOPED_TRACE(inGotVisible);
        auto one = std::make_unique<Column>(root, std::vector{key, freshKey()});
        auto two = std::make_unique<Column>(root, std::vector{key});
        SideBar* panel = one->panels[0];
        if (inGotVisible)
            QObject::connect(panel, &SideBar::gotVisbile, [panel] { delete panel; });
        else
            QObject::connect(panel, &SideBar::toggledVisible, [&] {
                delete panel;
                two.reset();
            });
        QTest::mouseClick(one->title(0), Qt::LeftButton);
        settle();
        EXPECT_EQ(std::distance(one->tree->begin(), one->tree->end()), 1);
        EXPECT_EQ(one->tree->findChildren<SideBarTitle*>().size(), 1);
        const Column later(root, {key});
        EXPECT_TRUE(later.panels[0]->visible());
        later.panels[0]->toggleVisible(false);
        EXPECT_TRUE(later.panels[0]->isHidden()) << "the echo guard is back";
        one->area.reset();
        EXPECT_FALSE(one->panels[1]) << "an area that goes takes its column with it";
        two.reset();
    }
}

}  // namespace
