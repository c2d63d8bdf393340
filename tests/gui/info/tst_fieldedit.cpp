// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Typing into fields, and not beside them.
#include "gui/info/FieldEdit.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>

#include <cmath>
#include <functional>

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

/// Sends what keys, pointers and input methods can send, with each possible selection.
TEST_F(FieldEditTest, NothingOutsideAFieldCanBeChanged)
{
    const auto fieldless = [this] {
        // What is left without what may be typed into the fields.
        QString text = edit.toPlainText();
        return text.remove(QRegularExpression("(?<=: |\\( |, )[0-9+.E-]*(?=  )"));
    };
    edit.resize(400, 300);
    edit.show();
    QApplication::clipboard()->setText("99\nx");
    QMimeData numbers;
    numbers.setText("77");
    const QString before = fieldless();
    const std::vector<std::function<void()>> acts{
        [&] { QTest::keyClicks(&edit, "7"); },
        [&] { QTest::keyClick(&edit, Qt::Key_Backspace, Qt::ControlModifier); },
        [&] { QTest::keyClick(&edit, Qt::Key_Delete, Qt::ShiftModifier); },
        [&] { QTest::keyClick(&edit, Qt::Key_K, Qt::ControlModifier); },
        [&] { QTest::keyClick(&edit, Qt::Key_X, Qt::ControlModifier); },
        [&] { QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier); },
        [&] { QTest::keyClick(&edit, Qt::Key_Insert, Qt::ShiftModifier); },
        [&] { QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier); },
        [&] { QTest::keyClick(&edit, Qt::Key_Return); },
        [&] {
            QTest::mouseRelease(edit.viewport(), Qt::MiddleButton, {}, {30, 10});
        },
        [&] {
            QInputMethodEvent typed("unfinished", {});
            typed.setCommitString("1,\u00e9", -40, 60);
            QApplication::sendEvent(&edit, &typed);
        },
        [&] {
            QInputMethodEvent typed;
            typed.setCommitString("5", -40, 60);
            QApplication::sendEvent(&edit, &typed);
        },
        [&] {
            QDropEvent drop({30, 10}, Qt::MoveAction | Qt::CopyAction, &numbers, Qt::LeftButton,
                            Qt::NoModifier);
            QApplication::sendEvent(edit.viewport(), &drop);
        }};
    const int length = int(edit.toPlainText().size());
    for (std::size_t act = 0; act < acts.size(); ++act)
        for (int anchor = 0; anchor <= length; anchor += 3)
            for (int position = 0; position <= length; ++position) {
                QTextCursor cursor = edit.textCursor();
                cursor.setPosition(std::min(anchor, int(edit.toPlainText().size())));
                cursor.setPosition(std::min(position, int(edit.toPlainText().size())),
                                   QTextCursor::KeepAnchor);
                edit.setTextCursor(cursor);
                acts[act]();
                ASSERT_EQ(fieldless(), before) << act << ' ' << anchor << ' ' << position;
            }
}

TEST_F(FieldEditTest, ASelectionIsNotDraggedOutOfTheText)
{
    edit.resize(400, 300);
    edit.show();
    place(1, 16);
    const QPoint inside = edit.cursorRect().center();
    QTextCursor cursor = edit.textCursor();
    cursor.setPosition(0);
    cursor.setPosition(edit.document()->findBlockByNumber(1).position() + 18,
                       QTextCursor::KeepAnchor);
    edit.setTextCursor(cursor);
    ASSERT_FALSE(edit.isReadOnly()) << "the text could be taken out";
    QTest::mousePress(edit.viewport(), Qt::LeftButton, {}, inside);
    EXPECT_FALSE(edit.textCursor().hasSelection());
    QTest::mouseRelease(edit.viewport(), Qt::LeftButton, {}, inside);
}

TEST_F(FieldEditTest, InputMethodsTypeNumbersIntoFields)
{
    place(3, 12);
    QInputMethodEvent typed;
    typed.setCommitString("1.5E-1");
    QApplication::sendEvent(&edit, &typed);
    EXPECT_EQ(value(wavelength), 0.15);
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
