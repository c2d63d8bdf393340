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

#include <numeric>
#include <random>

namespace {

TEST(MdiTiling, FramesFillColumnsFromLeftToRightAndShareTheArea)
{
    // Frames in each column, a digit each.
    for (const std::string columns :
         {"1", "11", "21", "22", "221", "222", "322", "332", "333", "3322", "3332", "3333"}) {
        MdiArea area;
        area.resize(900, 800);
        area.show();
        settle();
        const int frames =
            std::accumulate(columns.begin(), columns.end(), 0) - '0' * int(columns.size());
        SCOPED_TRACE(frames);
        // An image may arrive before the event loop lays out anything.
        // The first one alone, the others at once.
        area.addSubWindow(new AbstractSubWindow);
        QList<AbstractSubWindow*> others;
        for (int i = 1; i < frames; ++i)
            others.append(new AbstractSubWindow);
        area.addSubWindows(others);
        EXPECT_EQ(area.activeSubWindow(), area.subWindowList().last());
        qsizetype index = 0;
        const int count = int(columns.size());
        for (int column = 0; column < count; ++column) {
            const int rows = columns[std::size_t(column)] - '0';
            for (int row = 0; row < rows; ++row) {
                const AbstractSubWindow* frame = area.subWindowList()[index++];
                EXPECT_TRUE(frame->isVisible());
                EXPECT_NEAR(frame->width(), area.width() / count, 4);
                EXPECT_NEAR(frame->height(), area.height() / rows, 4);
                const QPoint corner = frame->mapTo(&area, QPoint(0, 0));
                EXPECT_NEAR(corner.x(), column * area.width() / count, 6);
                EXPECT_NEAR(corner.y(), row * area.height() / rows, 6);
            }
        }
        EXPECT_EQ(index, area.subWindowList().size());
    }
}

TEST(MdiTiling, FramesThatGoTogetherMoveTheOthersOnce)
{
    struct MovedFrame : AbstractSubWindow {
        int moves = 0;
        bool event(QEvent* event) override
        {
            moves += event->type() == QEvent::ParentChange;
            return AbstractSubWindow::event(event);
        }
    };
    MdiArea area;
    area.show();
    auto* staying = new MovedFrame;
    area.addSubWindow(staying);
    for (int i = 0; i < 6; ++i)
        area.addSubWindow(new AbstractSubWindow);
    settle();
    staying->moves = 0;
    for (int i = 0; i < 5; ++i)
        area.subWindowList().last()->close();
    settle();
    EXPECT_EQ(area.subWindowList().size(), 2);
    EXPECT_LE(staying->moves, 2) << "out of its column and into one";
}

TEST(MdiTiling, RandomComingsAndGoingsAgreeWithAList)
{
    std::mt19937 random(7);
    MdiArea area;
    area.resize(900, 800);
    area.show();
    QList<AbstractSubWindow*> frames;
    AbstractSubWindow* active = nullptr;
    const auto any = [&] { return frames[qsizetype(random() % std::size_t(frames.size()))]; };
    for (int round = 0; round < 300; ++round) {
        const auto action = random() % 8;
        if (frames.isEmpty() || action < 3) {
            for (auto count = random() % 3 + 1; count > 0; --count)
                frames.append(new AbstractSubWindow);
            area.addSubWindows(frames.mid(area.subWindowList().size()));
            active = frames.last();
        } else if (action < 5) {
            active = any();
            active->setActivated(true);
        } else {
            AbstractSubWindow* gone = any();
            frames.removeOne(gone);
            if (gone == active)
                active = frames.isEmpty() ? nullptr : frames.first();
            if (action == 7)
                delete gone;  // as with the widget around it
            else
                gone->close();
        }
        if (random() % 3 == 0)
            settle();
        ASSERT_EQ(area.subWindowList(), frames) << round;
        ASSERT_EQ(area.activeSubWindow(), active) << round;
        for (const AbstractSubWindow* frame : frames)
            ASSERT_EQ(frame->active(), frame == active) << round;
    }
    settle();
    const auto heights = MdiArea::columnHeights(int(frames.size()));
    ASSERT_EQ(area.mainSplitter()->count(), int(heights.size()));
    for (int i = 0; i < area.mainSplitter()->count(); ++i)
        EXPECT_EQ(qobject_cast<QSplitter*>(area.mainSplitter()->widget(i))->count(),
                  heights[std::size_t(i)]);
}

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

    /// The active frames by their numbers; -1 where the area says otherwise.
    std::vector<int> active() const
    {
        std::vector<int> result;
        for (int i = 0; i < 3; ++i)
            if (const auto& frame = _frames[std::size_t(i)]; frame && frame->active())
                result.push_back(frame == _area.activeSubWindow() ? i : -1);
        return result;
    }

    MdiArea _area;
    std::array<QPointer<AbstractSubWindow>, 3> _frames;
};

TEST_F(MdiActivation, ANewFrameIsTheActiveOneAndHasTheFocus)
{
    EXPECT_THAT(active(), testing::ElementsAre(2));
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

    EXPECT_THAT(active(), testing::ElementsAre(0));
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
    EXPECT_THAT(active(), testing::ElementsAre(0));
    EXPECT_EQ(_area.subWindowList().size(), 2);
}

TEST_F(MdiActivation, AnotherFrameThatGoesLeavesTheActiveOneAndItsFocus)
{
    _frames[0]->close();
    settle();
    EXPECT_FALSE(_frames[0]);
    EXPECT_THAT(active(), testing::ElementsAre(2));
    EXPECT_EQ(QApplication::focusWidget(), _frames[2]);
}

TEST_F(MdiActivation, AfterTheLastFrameThereIsOneEmptyColumnAndTheLogo)
{
    for (int i = 0; i < 3; ++i)
        _area._closeActiveSubwindow();
    settle();
    EXPECT_EQ(_area.activeSubWindow(), nullptr);
    EXPECT_TRUE(_area.subWindowList().isEmpty());
    EXPECT_EQ(_area.mainSplitter()->count(), 1);

    // The logo stands in the middle third of the area and nowhere at its left edge.
    const QImage logo = _area.grab().toImage();
    const auto isPlain = [&logo](const QRect& part) {
        QImage plain = logo.copy(part);
        plain.fill(logo.pixelColor(part.topLeft()));
        return logo.copy(part) == plain;
    };
    EXPECT_FALSE(isPlain(QRect(300, 100, 300, 400)));
    EXPECT_TRUE(isPlain(QRect(0, 0, 40, 800)));
}

TEST_F(MdiActivation, ADisabledFrameIsNotActiveAndAForeignOneNotRemoved)
{
    AbstractSubWindow foreign;
    _area.removeSubWindow(&foreign);
    settle();
    EXPECT_EQ(_area.subWindowList().size(), 3);
    _frames[2]->setEnabled(false);
    EXPECT_FALSE(_frames[2]->active());
}

}  // namespace
