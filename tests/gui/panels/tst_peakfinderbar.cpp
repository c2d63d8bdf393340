// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of peaks under mouse and keyboard.
#include "gui/panels/PeakFinderBar.h"
#include "gui/panels/PeakTable.h"
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/MouseEvents.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QScrollBar>
#include <QSpinBox>
#include <QTextBlock>

namespace {

using Peaks = std::set<int>;

/// A peak every 8 pixels, the first in reading order the strongest, shifted to the right.
morvend::imglib::MImage peaks(int shift = 0)
{
    return images::of<int>(160, 160, [shift](int x, int y) {
        return x % 8 == 4 + shift && y % 8 == 4 ? 5000 - y - x / 8 : 0;
    });
}

class PeakFinderBarTest : public testing::Test {
protected:
    PeakFinderBarTest()
        : bar(1, view.service)
        , number(*bar.findChild<QSpinBox*>())
        , table(*bar.findChild<PeakTable*>())
    {
        bar.resize(340, 400);
        bar.show();
        EXPECT_TRUE(view.open(peaks()));
    }
    /// Asks for so many, and waits until they are listed.
    void find(int count)
    {
        number.setValue(count);
        EXPECT_TRUE(waitFor([&] { return !view.service->peaksPending(); }));
        settle();
    }
    QPoint at(int line) const
    {
        return table.cursorRect(QTextCursor(table.document()->findBlockByNumber(line))).center() +
               QPoint(30, 0);
    }
    void click(int line, Qt::KeyboardModifiers keys = {})
    {
        mouse::drag(*table.viewport(), Qt::LeftButton, at(line), {at(line)}, keys);
    }
    void drag(int from, int to, Qt::KeyboardModifiers keys = {})
    {
        mouse::drag(*table.viewport(), Qt::LeftButton, at(from), {at((from + to) / 2), at(to)},
                    keys);
    }
    Peaks highlighted() const { return view.service->peakData().highlightedPeaks; }
    QStringList lines() const { return table.toPlainText().split('\n'); }

    DrawnImage view{QSize(300, 200)};
    PeakFinderBar bar;
    QSpinBox& number;
    PeakTable& table;
};

TEST_F(PeakFinderBarTest, ListsAsManyAsRequestedAndExist)
{
    EXPECT_FALSE(table.isVisible());
    EXPECT_EQ(lines(), (QStringList{"X\tY\tIntensity", ""}));
    number.setValue(3);
    EXPECT_TRUE(table.isVisible());
    EXPECT_EQ(lines().size(), 2) << "nothing is searched for while the event is handled";
    find(3);
    EXPECT_EQ(lines(), (QStringList{"X\tY\tIntensity\t", "", "4\t4\t4996\t", "12\t4\t4995\t",
                                    "20\t4\t4994\t"}));
    number.setValue(1000);
    EXPECT_EQ(lines().size(), view.service->imagePeaks().numberOfPeaks() + 2);
    EXPECT_EQ(number.value(), 1000);
    number.setValue(0);
    EXPECT_FALSE(table.isVisible());
}

TEST_F(PeakFinderBarTest, LinesAreHighlightedByClicksAndDrags)
{
    find(10);
    const struct {
        std::function<void()> hand;
        Peaks expected;
    } steps[] = {{[&] { click(4); }, {2}},
                 {[&] { click(6, Qt::ControlModifier); }, {2, 4}},
                 {[&] { drag(8, 10, Qt::ControlModifier); }, {2, 4, 6, 7, 8}},
                 {[&] { drag(7, 5); }, {3, 4, 5}},
                 {[&] { drag(3, 0); }, {0, 1}},
                 {[&] { click(1); }, {}},
                 {[&] { click(3); }, {1}},
                 {[&] { click(0); }, {}}};
    for (const auto& step : steps) {
        step.hand();
        EXPECT_EQ(highlighted(), step.expected);
        EXPECT_EQ(table.extraSelections().size(), qsizetype(step.expected.size()));
    }
    click(5);
    number.setValue(0);
    EXPECT_EQ(highlighted(), Peaks{3});
}

TEST_F(PeakFinderBarTest, AFullColumnLeavesRoomForSeveralPeaks)
{
    find(50);
    bar.resize(340, bar.minimumSizeHint().height());
    settle();
    EXPECT_TRUE(table.viewport()->rect().contains(at(6)));
}

TEST_F(PeakFinderBarTest, CopiesTheHeaderAndWhatIsHighlighted)
{
    find(4);
    table.setFocus();
    QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "X\tY\tIntensity\t\n");
    drag(3, 4);
    QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(),
              "X\tY\tIntensity\t\n12\t4\t4995\t\n20\t4\t4994\t\n");
}

TEST_F(PeakFinderBarTest, ANewImageKeepsPlaceAndHighlight)
{
    find(400);
    table.verticalScrollBar()->setValue(700);
    const int line = table.cursorForPosition(QPoint(30, 50)).blockNumber();
    click(line);
    EXPECT_TRUE(view.open(peaks(1)));
    EXPECT_EQ(lines().at(2), "5\t4\t4996\t");
    EXPECT_EQ(table.verticalScrollBar()->value(), 700);
    EXPECT_EQ(highlighted(), Peaks{line - 2});
    EXPECT_EQ(table.extraSelections().value(0).cursor.blockNumber(), line);
}

}  // namespace
