// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A failure is told and the program lives on.
#include "gui/kit/ErrorDialog.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
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

}  // namespace
