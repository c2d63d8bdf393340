// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The application ends with its parent, whatever its windows say.
#include "bin/CheckParent.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QProcess>
#include <QTimer>

#include <csignal>
#include <thread>

#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A window that must not be closed.
class Stubborn : public QWidget {
protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

TEST(CheckParent, EndsTheApplicationWhenTheParentIsGone)
{
    QProcess parent;
    parent.start("sleep", {"1000"});
    ASSERT_TRUE(parent.waitForStarted());
    Stubborn window;
    window.show();
    // Both the loop and the one of a dialog inside it must end.
    QTimer::singleShot(0, &window, [&window] { QDialog(&window).exec(); });
    bool parentLives = true;
    QTimer::singleShot(500, &window, [&] {
        parentLives = false;
        parent.kill();
        parent.waitForFinished();
    });
    QTimer guard;
    guard.callOnTimeout([] { QCoreApplication::exit(7); });
    guard.start(Patience);

    CheckParent checkParent(static_cast<int>(parent.processId()));
    checkParent.start();
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_FALSE(parentLives) << "it ended while its parent was alive";
}

TEST(CheckParent, AParentIsGoneWhenItsMainThreadIs)
{
    const pid_t parent = fork();
    if (parent == 0) {
        std::thread([] { pause(); }).detach();
        ::syscall(SYS_exit, 0);
    }
    CheckParent checkParent(parent);
    checkParent.start();
    QTimer guard;
    guard.callOnTimeout([] { QCoreApplication::exit(7); });
    guard.start(Patience);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(kill(parent, SIGKILL), 0) << "its other thread is still there";
    waitpid(parent, nullptr, 0);
}

}  // namespace
