// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A failure is reported and the program goes on.
#include "gui/kit/ErrorDialog.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>

namespace {

/// Does something to the dialog that stands there once the event loop runs.
template <class Action>
void withDialog(Action&& action)
{
    QTimer::singleShot(0, qApp, [action] {
        auto* dialog = qobject_cast<ErrorDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        action(*dialog);
    });
}

TEST(ErrorDialogTest, ShowsTheMessageAsItIsUntilItIsClosed)
{
    // A file name may look like markup and hold any letter.
    const char* message = "CBF: no data: /data/<b>x</b>/Ångström_00012.cbf";
    QPointer<ErrorDialog> shown;
    withDialog([&shown, message](ErrorDialog& dialog) {
        shown = &dialog;
        EXPECT_EQ(dialog.findChild<QLabel*>()->text(), QString::fromUtf8(message));
        EXPECT_EQ(dialog.findChild<QLabel*>()->textFormat(), Qt::PlainText);
        auto* close = dialog.findChild<QPushButton*>();
        EXPECT_EQ(close->text(), "Close");
        EXPECT_TRUE(close->isDefault());
        QTest::mouseClick(close, Qt::LeftButton);
    });
    ErrorDialog::showMessage(message);
    settle();
    EXPECT_FALSE(shown);
}

TEST(ErrorDialogTest, FailuresInARowShareOneDialog)
{
    withDialog([](ErrorDialog& dialog) {
        ErrorDialog::showMessage("second");
        ErrorDialog::showMessage("second");
        EXPECT_EQ(dialog.findChild<QLabel*>()->text(), "first\nsecond");
        dialog.accept();
    });
    ErrorDialog::showMessage("first");
    withDialog([](ErrorDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLabel*>()->text(), "third");
        dialog.accept();
    });
    ErrorDialog::showMessage("third");
    settle();
}

TEST(ErrorDialogTest, ScrollsWhereTheScreenEnds)
{
    // A path may be as long as this, and nothing in it breaks a line.
    const std::string longest = "No such file: /" + std::string(4000, 'x');
    testing::internal::CaptureStderr();
    withDialog([](ErrorDialog& dialog) {
        const auto fits = [&dialog] {
            settle();
            return dialog.screen()->availableGeometry().contains(dialog.frameGeometry());
        };
        for (int i = 1; i < 300; ++i) {
            ErrorDialog::showMessage(("No such file: x_" + std::to_string(i) + ".cbf").c_str());
            if (i < 20 || i == 299) {
                EXPECT_TRUE(fits()) << i;
            }
        }
        auto* list = dialog.findChild<QPlainTextEdit*>();
        ASSERT_TRUE(list && list->isVisible());
        EXPECT_EQ(dialog.findChild<QLabel*>()->text(), "300 errors:");
        EXPECT_EQ(list->blockCount(), 300);
        EXPECT_GT(list->verticalScrollBar()->maximum(), 0);
        EXPECT_GT(list->height(), dialog.height() / 2);
        EXPECT_EQ(list->horizontalScrollBar()->maximum(), 0);
        dialog.accept();
    });
    ErrorDialog::showMessage(longest.c_str());
    settle();
    const QString printed = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_EQ(printed.count("ERROR: "), 300);
    EXPECT_TRUE(printed.startsWith("ERROR: No such file: /xxx"));
}

}  // namespace
