// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bar over a frame: title, controls and colours.
#include "gui/kit/AbstractSubWindow.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>

namespace {

class TitleBarTest : public testing::Test {
protected:
    TitleBarTest()
    {
        _frame.setWidget(new QWidget);
        _frame.resize(400, 200);
        _frame.show();
        settle();
    }

    /// The colour at the lower end of the bar's gradient.
    void expectBarEndsIn(const QColor& wanted) const
    {
        const QImage picture = _frame.titleBar()->grab().toImage();
        const QColor color = picture.pixelColor(3, picture.height() - 1);
        EXPECT_NEAR(color.red(), wanted.red(), 2);
        EXPECT_NEAR(color.green(), wanted.green(), 2);
        EXPECT_NEAR(color.blue(), wanted.blue(), 2);
    }

    AbstractSubWindow _frame;
};

TEST_F(TitleBarTest, AWideTitleShowsItsEndAndTheTooltipAllOfIt)
{
    const QString path = "/data/beamline/2026-11-22/proposal_4711/sample_a/run_12/x_00012.cbf";
    _frame.setWindowTitle(path);
    const QString shown = _frame.titleBar()->shownTitle();
    EXPECT_TRUE(shown.startsWith(QChar(0x2026))) << shown.toStdString();
    EXPECT_TRUE(shown.endsWith("x_00012.cbf")) << shown.toStdString();
    EXPECT_EQ(_frame.titleBar()->findChild<QLabel*>()->toolTip(), path);
    EXPECT_EQ(_frame.width(), 400) << "a title never widens its frame";
    EXPECT_LE(_frame.minimumSizeHint().width(), 400);

    _frame.resize(2000, 200);
    settle();
    EXPECT_EQ(_frame.titleBar()->shownTitle(), path);
    _frame.setWindowTitle("two\nlines.cbf");
    EXPECT_EQ(_frame.titleBar()->shownTitle(), "two lines.cbf");
}

TEST_F(TitleBarTest, AnActionBecomesAButtonLeftOfTheTitleAndToolButtonsHide)
{
    QAction next("Next");
    const QSignalSpy triggered(&next, &QAction::triggered);
    auto* box = new QWidget;
    _frame.addTitleBarWidget(box);
    _frame.addTitleBarSpacing(10);
    _frame.addTitleBarAction(&next);
    settle();
    ASSERT_EQ(_frame.titleBar()->titleWidgets().size(), 2);
    EXPECT_EQ(_frame.titleBar()->titleActions(), QList<QAction*>{&next});
    auto* button = qobject_cast<QToolButton*>(_frame.titleBar()->titleWidgets()[1]);
    ASSERT_TRUE(button);
    EXPECT_EQ(button->iconSize(), QSize(25, 15));
    EXPECT_GT(button->x(), box->x());
    EXPECT_LT(button->x(), _frame.titleBar()->findChild<QLabel*>()->x());
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(triggered.count(), 1);

    _frame.hideToolButtons();
    EXPECT_FALSE(button->isVisible());
    EXPECT_FALSE(_frame.titleBar()->exitButton()->isVisible());
    _frame.showToolButtons();
    EXPECT_TRUE(button->isVisible());
    EXPECT_TRUE(_frame.titleBar()->exitButton()->isVisible());

    delete box;
    _frame.titleBar()->removeAction(&next);
    EXPECT_TRUE(_frame.titleBar()->titleWidgets().isEmpty());
    EXPECT_TRUE(_frame.titleBar()->titleActions().isEmpty());
    _frame.hideToolButtons();
}

TEST_F(TitleBarTest, ColoursAreHeldInRangeAndShowFromTheNextActivation)
{
    expectBarEndsIn(QColor(70, 70, 70));
    _frame.setActiveColor(-5, 300, 40);
    EXPECT_EQ(_frame.titleBar()->activeColor(), QColor(0, 255, 40));
    _frame.setActivated(true);
    expectBarEndsIn(QColor(0, 255, 40));
    _frame.setNonActiveColor(10, 20, 30);
    _frame.setActivated(false);
    expectBarEndsIn(QColor(10, 20, 30));
}

TEST_F(TitleBarTest, TheBarIsSlimAndItsExitButtonOnlyAsksForTheEnd)
{
    EXPECT_EQ(_frame.titleBar()->height(), 25);
    const QSignalSpy terminated(&_frame, &AbstractSubWindow::terminated);
    QTest::mouseClick(_frame.titleBar()->exitButton(), Qt::LeftButton);
    EXPECT_EQ(terminated.count(), 1);
    EXPECT_TRUE(_frame.isVisible());
}

}  // namespace
