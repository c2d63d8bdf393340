// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How frames are tiled, and which of them is the active one.
#include "gui/kit/MdiArea.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>

#include <map>

namespace {

struct Tiling {
    int frames;
    std::vector<int> rows;
};

class MdiTiling : public testing::TestWithParam<Tiling> {};

/// Rows of frames by their left edges, from left to right.
std::vector<int> rowsOnScreen(const MdiArea& area)
{
    std::map<int, int> rows;
    for (const AbstractSubWindow* frame : area.subWindowList())
        ++rows[frame->mapTo(&area, QPoint(0, 0)).x()];
    std::vector<int> result;
    for (const auto& [left, count] : rows)
        result.push_back(count);
    return result;
}

TEST_P(MdiTiling, FramesFillColumnsFromLeftToRightAndShareTheArea)
{
    MdiArea area;
    area.resize(900, 800);
    area.show();
    for (int i = 0; i < GetParam().frames; ++i)
        area.addSubWindow(new AbstractSubWindow);
    settle();

    EXPECT_EQ(rowsOnScreen(area), GetParam().rows);
    const int columns = static_cast<int>(GetParam().rows.size());
    int index = 0;
    for (int column = 0; column < columns; ++column) {
        for (int row = 0; row < GetParam().rows[static_cast<std::size_t>(column)]; ++row) {
            const AbstractSubWindow* frame = area.subWindowList()[index++];
            const int rows = GetParam().rows[static_cast<std::size_t>(column)];
            EXPECT_TRUE(frame->isVisible());
            EXPECT_NEAR(frame->width(), area.width() / columns, 4);
            EXPECT_NEAR(frame->height(), area.height() / rows, 4);
            const QPoint corner = frame->mapTo(&area, QPoint(0, 0));
            EXPECT_NEAR(corner.x(), column * area.width() / columns, 6);
            EXPECT_NEAR(corner.y(), row * area.height() / rows, 6);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Table, MdiTiling,
                         testing::Values(Tiling{1, {1}}, Tiling{2, {1, 1}}, Tiling{3, {2, 1}},
                                         Tiling{5, {2, 2, 1}}, Tiling{7, {3, 2, 2}},
                                         Tiling{9, {3, 3, 3}}, Tiling{10, {3, 3, 2, 2}}),
                         [](const auto& row) { return std::to_string(row.param.frames); });

class MdiActivation : public testing::Test {
protected:
    MdiActivation()
    {
        _area.resize(900, 800);
        _area.show();
        QApplication::setActiveWindow(&_area);
        for (auto& frame : _frames) {
            frame = new AbstractSubWindow;
            _area.addSubWindow(frame);
        }
        settle();
    }

    /// Is this frame the active one, and the only one?
    testing::AssertionResult onlyActive(const AbstractSubWindow* frame) const
    {
        if (_area.activeSubWindow() != frame)
            return testing::AssertionFailure() << "the area has another active frame";
        for (const AbstractSubWindow* other : _area.subWindowList()) {
            if (other->active() != (other == frame))
                return testing::AssertionFailure() << "frame with a wrong state";
        }
        return testing::AssertionSuccess();
    }

    MdiArea _area;
    std::array<QPointer<AbstractSubWindow>, 3> _frames;
};

TEST_F(MdiActivation, ANewFrameIsTheActiveOneAndHasTheFocus)
{
    EXPECT_TRUE(onlyActive(_frames[2]));
    EXPECT_EQ(QApplication::focusWidget(), _frames[2]);
}

TEST_F(MdiActivation, AClickIntoAPartOfAFrameActivatesItAndKeepsTheFocusThere)
{
    auto* field = new QLineEdit;
    _frames[0]->setWidget(field);
    field->show();
    const QSignalSpy activated(_frames[0], &AbstractSubWindow::gotActivated);
    const QSignalSpy states(_frames[0], &AbstractSubWindow::windowStateChanged);

    QTest::mouseClick(field, Qt::LeftButton);

    EXPECT_TRUE(onlyActive(_frames[0]));
    EXPECT_EQ(QApplication::focusWidget(), field);
    EXPECT_EQ(activated.count(), 1);
    ASSERT_EQ(states.count(), 1);
    EXPECT_EQ(states[0][1].value<Qt::WindowStates>(), Qt::WindowActive);

    _frames[1]->setActivated(true);
    ASSERT_EQ(states.count(), 2);
    EXPECT_EQ(states[1][0].value<Qt::WindowStates>(), Qt::WindowActive);
    EXPECT_EQ(states[1][1].value<Qt::WindowStates>(), Qt::WindowStates());
}

TEST_F(MdiActivation, ClosingTheActiveFrameActivatesTheFirstOfTheOthers)
{
    QTest::mouseClick(_frames[2]->titleBar()->exitButton(), Qt::LeftButton);
    ASSERT_TRUE(_frames[2]) << "a frame is deleted from the event loop, not during its own click";
    EXPECT_FALSE(_frames[2]->isVisible());
    settle();
    EXPECT_FALSE(_frames[2]);
    EXPECT_TRUE(onlyActive(_frames[0]));
    EXPECT_EQ(_area.subWindowList().size(), 2);
}

TEST_F(MdiActivation, AnotherFrameThatGoesLeavesTheActiveOneAndItsFocus)
{
    _frames[0]->close();
    settle();
    EXPECT_FALSE(_frames[0]);
    EXPECT_TRUE(onlyActive(_frames[2]));
    EXPECT_EQ(QApplication::focusWidget(), _frames[2]);
}

TEST_F(MdiActivation, AfterTheLastFrameThereIsOneEmptyColumnAndTheLogo)
{
    const QImage before = _area.grab().toImage();
    for (int i = 0; i < 3; ++i)
        _area._closeActiveSubwindow();
    settle();
    EXPECT_EQ(_area.activeSubWindow(), nullptr);
    EXPECT_TRUE(_area.subWindowList().isEmpty());
    EXPECT_EQ(_area.mainSplitter()->count(), 1);

    // The logo stands in the middle third of the area and nowhere at its left edge.
    const QImage logo = _area.grab().toImage();
    const auto isPlain = [&logo](const QRect& part) {
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                if (logo.pixel(x, y) != logo.pixel(part.topLeft()))
                    return false;
            }
        }
        return true;
    };
    EXPECT_FALSE(isPlain(QRect(300, 100, 300, 400)));
    EXPECT_TRUE(isPlain(QRect(0, 0, 40, 800)));
}

TEST_F(MdiActivation, ADisabledFrameIsNotActive)
{
    _frames[2]->setEnabled(false);
    EXPECT_FALSE(_frames[2]->active());
}

TEST_F(MdiActivation, AForeignFrameIsNotRemoved)
{
    AbstractSubWindow foreign;
    _area.removeSubWindow(&foreign);
    settle();
    EXPECT_EQ(_area.subWindowList().size(), 3);
}

}  // namespace
