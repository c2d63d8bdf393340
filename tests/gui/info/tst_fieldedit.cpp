// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Typing into fields, and not beside them.
#include "gui/info/FieldEdit.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QTextBlock>

#include <cmath>

namespace {

class FieldEditTest : public testing::Test {
protected:
    FieldEditTest()
    {
        edit.append("Text");
        distance = edit.appendEditLine("Distance (m): %0.15%");
        edit.appendEditLine("Centre: ( %10%, %% )", x, y);
        wavelength = edit.appendEditLine("Wavelength: %%");
        edit.append("End");
    }
    /// NaN without a number.
    double value(int field) const
    {
        double number = NAN;
        edit.getValue(field, number);
        return number;
    }
    QString line(int number) const { return edit.document()->findBlockByNumber(number).text(); }
    void place(int block, int column)
    {
        QTextCursor cursor = edit.textCursor();
        cursor.setPosition(edit.document()->findBlockByNumber(block).position() + column);
        edit.setTextCursor(cursor);
    }
    void press(std::initializer_list<Qt::Key> keys)
    {
        for (const Qt::Key key : keys)
            QTest::keyClick(&edit, key);
    }

    FieldEdit edit;
    int distance = -1, x = -1, y = -1, wavelength = -1;
};

TEST_F(FieldEditTest, FieldsHoldWhatStoodBetweenTheMarks)
{
    EXPECT_EQ(value(distance), 0.15);
    EXPECT_EQ(value(x), 10);
    EXPECT_TRUE(std::isnan(value(y)) && std::isnan(value(wavelength)));
    EXPECT_TRUE(std::isnan(value(-1)) && std::isnan(value(99)));
    EXPECT_EQ(line(1), "Distance (m): 0.15  ");
    EXPECT_EQ(line(2), "Centre: ( 10  ,    )");
}

TEST_F(FieldEditTest, TheTextAroundThemStays)
{
    const QString before = edit.toPlainText();
    place(0, 2);
    QTest::keyClicks(&edit, "12");
    place(1, 14);  // at the start of "0.15"
    EXPECT_EQ(edit.cursorState(), FieldEdit::AtStart);
    press({Qt::Key_Backspace, Qt::Key_Left, Qt::Key_Return, Qt::Key_Tab});
    QTest::keyClicks(&edit, "xe,");
    place(1, 18);
    EXPECT_EQ(edit.cursorState(), FieldEdit::AtEnd);
    press({Qt::Key_Right});
    QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.toPlainText(), before);
}

TEST_F(FieldEditTest, ANumberIsTypedAndItsNeighboursKeepTheirs)
{
    place(1, 18);
    press({Qt::Key_Backspace, Qt::Key_Backspace});
    QTest::keyClicks(&edit, "2E-3");
    EXPECT_EQ(value(distance), 0.2e-3);
    EXPECT_EQ(value(x), 10);
    place(2, 16);  // the empty field
    EXPECT_EQ(edit.cursorState(), FieldEdit::EmptyField);
    QTest::keyClicks(&edit, "7");
    press({Qt::Key_Left});
    QTest::keyClicks(&edit, "-");
    EXPECT_EQ(value(y), -7);
    press({Qt::Key_Delete});
    EXPECT_TRUE(std::isnan(value(y)));
    QTest::keyClicks(&edit, "8");
    EXPECT_EQ(value(x), 10);
    EXPECT_EQ(line(2), "Centre: ( 10  , -8   )");
    EXPECT_EQ(line(3), "Wavelength:   ");
    EXPECT_EQ(line(4), "End");
}

TEST_F(FieldEditTest, ADoubleClickSelectsTheField)
{
    edit.resize(400, 300);
    edit.show();
    place(1, 16);
    QTest::mouseDClick(edit.viewport(), Qt::LeftButton, {}, edit.cursorRect().center());
    EXPECT_EQ(edit.textCursor().selectedText(), "0.15");
    QTest::keyClicks(&edit, "3");
    EXPECT_EQ(value(distance), 3);
    edit.selectAll();
    QTest::keyClicks(&edit, "4");
    EXPECT_EQ(edit.document()->blockCount(), 5);
}

}  // namespace
