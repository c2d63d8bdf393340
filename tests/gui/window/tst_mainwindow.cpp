// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The main window and its image views, from files to pixels and errors.
#include "gui/window/MainWindow.h"

#include "gui/kit/TextLine.h"
#include "gui/window/OpenDirectory.h"
#include "imagelib/display/MColorTable.h"
#include "tests/gui/window/MainWindowTest.h"
#include "tests/support/HangingReads.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <utility>

namespace {

using morvend::imglib::MColorTable;

TEST_F(MainWindowTest, TwoFilesStandInTwoFramesAndShowTheirImages)
{
    EXPECT_EQ(_window->windowTitle(), "TARVIK");
    EXPECT_EQ(_sizeAtFirst, QSize(1200, 800));
    EXPECT_EQ(_window->activeSubWindow(), nullptr);

    SubWindow* first = _window->newSubWindow();
    first->loadFile(file(1));
    SubWindow* second = nullptr;
    EXPECT_EQ(_window->newSubWindow(&second), second);
    second->loadFile(file(2));
    ASSERT_TRUE(waitForImage(first, 1) && waitForImage(second, 2));
    settle();

    EXPECT_EQ(_window->subWindows(), (QList<SubWindow*>{first, second}));
    EXPECT_EQ(_window->activeSubWindow(), second);
    EXPECT_NE(first->service(), second->service());
    EXPECT_EQ(first->service()->syncID(), second->service()->syncID());
    EXPECT_EQ(_window->openDirectory(), QString::fromStdString(_folder.path()));
    for (SubWindow* window : {first, second}) {
        EXPECT_EQ(window->windowTitle(), window->service()->imageDescription());
        window->setContrast(2, 0);
        window->setColorMode("GS");
        EXPECT_EQ(window->visibileRange(), QRectF(0, 0, 8, 4));
    }
    const auto middle = [](SubWindow* window) {
        ImageDrawerMain* view = window->imageDrawer();
        return view->grab().pixelColor(view->imageBoundary().center());
    };
    EXPECT_NE(middle(first), middle(second)) << "counts of 1 and 2 under a foreground of 2";
}

TEST_F(MainWindowTest, AFileThatDoesNotAnswerIsSpokenOfAndHoldsNothing)
{
    using tarvik::tests::HangingReads;
    SubWindow* window = _window->newSubWindow();
    const auto hang = std::make_unique<HangingReads>(_folder / name(1));
    window->loadFile(file(1));
    ASSERT_TRUE(waitFor([] { return HangingReads::count() == 1; }));
    const auto* line = window->findChild<TextLine*>();
    ASSERT_TRUE(line);
    ASSERT_TRUE(waitFor([line] { return line->isVisibleTo(line->window()); }));
    EXPECT_TRUE(line->text().startsWith("Loading /")) << line->text().toStdString();
    window->loadFile(file(2));
    ASSERT_TRUE(waitForImage(window, 2));
    EXPECT_TRUE(waitFor([line] { return !line->isVisibleTo(line->window()); }));

    SubWindow* closing = _window->newSubWindow();
    closing->loadFile(file(1));
    ASSERT_TRUE(waitFor([] { return HangingReads::count() == 2; }));
    const QPointer<TarvikService> service = closing->service();
    closing->close();
    settle();
    EXPECT_FALSE(service);
    EXPECT_EQ(HangingReads::count(), 2) << "both reads hang still";
}

TEST_F(MainWindowTest, StepControlsGoThroughTheSeriesByTheStepBox)
{
    SubWindow* window = _window->newSubWindow();
    settle();
    auto* next = find<QToolButton>(window->titleBar(), "Next");
    auto* previous = find<QToolButton>(window->titleBar(), "Previous");
    ASSERT_TRUE(next && previous);
    EXPECT_EQ(next->toolTip(), "Go forward within the present image series");
    EXPECT_EQ(previous->toolTip(), "Go back within the present image series");
    EXPECT_FALSE(next->isEnabled());
    EXPECT_FALSE(previous->isEnabled());

    window->loadFile(file(1));
    ASSERT_TRUE(waitForImage(window, 1));
    QTest::mouseClick(next, Qt::LeftButton);
    EXPECT_TRUE(waitForImage(window, 2));
    auto* steps = window->titleBar()->findChild<QComboBox*>();
    QStringList texts;
    for (int i = 0; i < steps->count(); ++i)
        texts << steps->itemText(i);
    EXPECT_EQ(texts, QStringList({"1", "5", "10", "20", "50", "100"}));
    steps->setCurrentText("5");
    QTest::mouseClick(next, Qt::LeftButton);
    EXPECT_TRUE(waitForImage(window, 7));
    QTest::mouseClick(previous, Qt::LeftButton);
    EXPECT_TRUE(waitForImage(window, 2));
    window->goTo(12);
    EXPECT_TRUE(waitForImage(window, 12));
}

TEST_F(MainWindowTest, AFileThatCannotBeReadIsToldAndTheImageStays)
{
    tarvik::tests::writeEdf(_folder, "broken_00001.edf", 8, {1});
    std::filesystem::resize_file(_folder / "broken_00001.edf", 514);
    SubWindow* window = opened(3);
    for (const QString& name : {path("broken_00001.edf"), path("missing_00001.cbf")}) {
        _errors.clear();
        window->loadFile(name);
        EXPECT_TRUE(errorWasShown());
        settle();
        ASSERT_EQ(_errors.size(), 1) << _errors.join("; ").toStdString();
        EXPECT_TRUE(_errors[0].contains(QFileInfo(name).fileName())) << _errors[0].toStdString();
        EXPECT_EQ(shown(window), 3);
    }
    window->loadFile(file(4));
    EXPECT_TRUE(waitForImage(window, 4)) << "the program lives on";
    EXPECT_EQ(_errors.size(), 1) << _errors.join("; ").toStdString();
}

TEST_F(MainWindowTest, OtherFilesAreLoadedWhileAnErrorIsOnShow)
{
    SubWindow* bad = _window->newSubWindow();
    SubWindow* good = _window->newSubWindow();
    _mayClose = [good] { return shown(good) == 5; };
    bad->loadFile(path("missing.cbf"));
    // The load is asked for from inside the dialog's own event loop.
    QTimer later;
    QObject::connect(&later, &QTimer::timeout, [&] {
        if (errorDialog()) {
            later.stop();
            good->loadFile(file(5));
        }
    });
    later.start(20);
    EXPECT_TRUE(errorWasShown());
    EXPECT_EQ(shown(good), 5);
}

TEST_F(MainWindowTest, DroppedFilesOpenInTheViewAndInNewOnes)
{
    SubWindow* window = _window->newSubWindow();
    drop(window, {QUrl("https://example.org/x_00009.edf"), url(1), url(2)});
    ASSERT_EQ(_window->subWindows().size(), 2);
    EXPECT_TRUE(waitForImage(window, 1));
    EXPECT_TRUE(waitForImage(_window->subWindows()[1], 2));

    drop(_window.get(), {url(3), url(4)});
    ASSERT_EQ(_window->subWindows().size(), 4);
    EXPECT_TRUE(waitForImage(_window->subWindows()[2], 3));
    EXPECT_TRUE(waitForImage(_window->subWindows()[3], 4));
}

TEST_F(MainWindowTest, ADroppedFolderShowsItsFirstImage)
{
    drop(_window.get(), {QUrl::fromLocalFile(QString::fromStdString(_folder.path()))});
    ASSERT_EQ(_window->subWindows().size(), 1);
    SubWindow* window = _window->subWindows()[0];
    EXPECT_TRUE(waitForImage(window, 1));
    settle();
    EXPECT_EQ(window->file(), file(1));
}

TEST_F(MainWindowTest, ThreeHundredFilesThatVanishedNeedOneClick)
{
    QStringList files;
    for (int i = 0; i < 300; ++i)
        files << path("gone_" + std::to_string(i) + ".edf");
    // Messages follow their views by queued calls: after the last view, wait for one more.
    bool asked = false;
    bool delivered = false;
    _mayClose = [&] {
        if (_window->subWindows().isEmpty() && !std::exchange(asked, true))
            QMetaObject::invokeMethod(
                qApp, [&] { delivered = true; }, Qt::QueuedConnection);
        return delivered;
    };
    _window->openFiles(files);
    EXPECT_TRUE(errorWasShown());
    EXPECT_EQ(_errors.size(), 1);
    EXPECT_TRUE(_errors.value(0).startsWith("300 errors")) << _errors.value(0).toStdString();
    _mayClose = nullptr;
}

TEST_F(MainWindowTest, DroppedFilesAreNeverMoved)
{
    SubWindow* window = _window->newSubWindow();
    for (QWidget* target : {static_cast<QWidget*>(window), static_cast<QWidget*>(_window.get())}) {
        QMimeData data;
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                              Qt::ShiftModifier);
        ASSERT_EQ(enter.dropAction(), Qt::MoveAction);
        static_cast<QObject*>(target)->event(&enter);
        EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
        EXPECT_EQ(drop(target, {url(1)}, Qt::CopyAction | Qt::MoveAction), Qt::CopyAction);
        EXPECT_EQ(drop(target, {url(1)}, Qt::MoveAction), Qt::IgnoreAction);
    }
    for (SubWindow* view : _window->subWindows())
        EXPECT_TRUE(waitForImage(view, 1));
}

TEST_F(MainWindowTest, TheNativeWindowStaysWhenTheFirstViewComes)
{
    const WId before = _window->winId();
    SubWindow* window = _window->newSubWindow();
    (void)QTest::qWaitForWindowExposed(_window.get());
    EXPECT_EQ(_window->winId(), before);
    window->close();
    settle();
    EXPECT_EQ(_window->winId(), before);
}

TEST_F(MainWindowTest, AViewForAFileThatCannotBeShownGoesAgain)
{
    SubWindow* made = _window->newSubWindow();
    made->loadFile(path("missing_00001.edf"));
    _window->openFiles({path("missing_00002.edf"), file(2)});
    EXPECT_TRUE(waitFor([this] { return _errors.join("").contains("missing_00002"); }));
    EXPECT_TRUE(errorWasShown());
    settle();
    ASSERT_EQ(_window->subWindows().size(), 2);
    SubWindow* opened = _window->subWindows()[1];
    EXPECT_TRUE(waitForImage(opened, 2));
    EXPECT_EQ(made->windowTitle(), QString()) << "a failure leaves nothing of the file";

    opened->loadFile(path("missing_00003.edf"));
    EXPECT_TRUE(waitFor([this] { return _errors.join("").contains("missing_00003"); }));
    settle();
    EXPECT_EQ(_window->subWindows().size(), 2) << "one that shows an image stays";
}

TEST_F(MainWindowTest, AClosedViewGoesWithItsService)
{
    SubWindow* first = _window->newSubWindow();
    _window->newSubWindow();
    const QPointer<TarvikService> service = first->service();
    first->close();
    settle();
    EXPECT_EQ(_window->subWindows().size(), 1);
    EXPECT_FALSE(service);
    _window->activeSubWindow()->close();
    settle();
    EXPECT_EQ(_window->activeSubWindow(), nullptr);
}

TEST_F(MainWindowTest, ViewsMayGoWhileTheyLoadOrTellAnError)
{
    for (int i = 0; i < 5; ++i) {
        SubWindow* window = _window->newSubWindow();
        window->loadFile(file(1));
        window->goTo(2);
        window->close();
    }
    settle();
    EXPECT_TRUE(_window->subWindows().isEmpty());

    const QPointer<SubWindow> failing = _window->newSubWindow();
    _mayClose = [&failing] {
        // From inside the dialog's own event loop.
        if (failing)
            failing->close();
        return !failing;
    };
    failing->loadFile(path("missing.cbf"));
    EXPECT_TRUE(errorWasShown());
    SubWindow* next = _window->newSubWindow();
    next->loadFile(file(3));
    EXPECT_TRUE(waitForImage(next, 3)) << "the program lives on";
}

/// Memory of this process, for bench/view_memory.py.
void printMemory(int views)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:"))
            std::cout << "VIEWS " << views << ": " << std::stoi(line.substr(6)) << " kB\n";
}

TEST_F(MainWindowTest, ViewsThatComeAndGoLeaveNothing)
{
    const int views = qMax(qEnvironmentVariableIntValue("TARVIK_VIEWS"), 22);
    const auto objects = [this] {
        return _window->findChildren<QObject*>().size() + _core.findChildren<QObject*>().size();
    };
    qsizetype after20 = 0;
    for (int i = 1; i <= views; ++i) {
        opened(i % 12 + 1)->close();
        settle();
        if (i == 20) {
            after20 = objects();
            printMemory(i);
        }
    }
    printMemory(views);
    EXPECT_EQ(objects(), after20);
}

TEST_F(MainWindowTest, SettersOfAViewEndInItsRecords)
{
    SubWindow* window = opened(1);
    TarvikService& service = *window->service();
    window->setViewport(1.5, -2, 100);
    EXPECT_EQ(service.viewportData(), ViewportData(1.5, -2, 6, 0, 0));
    window->setOffsetX(3);
    window->setOffsetY(4);
    window->setZoomPower(-9);
    EXPECT_EQ(service.viewportData(), ViewportData(3, 4, -2, 0, 0));
    window->zoom(1);
    EXPECT_EQ(service.viewportData().zoomPower, -1);
    window->setForeground(30);
    window->setBackground(2);
    EXPECT_EQ(service.contrastData(), ContrastData(30, 2, MColorTable::hdr(), false));

    for (const auto& [name, table] : {std::pair("H", MColorTable::heat()),
                                      {"Rainbow", MColorTable::rainbow()},
                                      {"grey", MColorTable::rainbow()},
                                      {"GS", MColorTable::grey()},
                                      {"HDR", MColorTable::hdr()}}) {
        window->setColorMode(name);
        EXPECT_EQ(service.contrastData().colorTable, table) << name;
        EXPECT_EQ(service.defaultColorTable(), table) << name;
    }
}

TEST_F(MainWindowTest, AFixedTitleStaysUntilItIsUnset)
{
    SubWindow* window = _window->newSubWindow();
    window->setTitle("Mine");
    window->loadFile(file(1));
    ASSERT_TRUE(waitForImage(window, 1));
    EXPECT_EQ(window->windowTitle(), "Mine");
    window->unsetTitle();
    EXPECT_EQ(window->windowTitle(), window->service()->imagePath());
    window->goTo(2);
    ASSERT_TRUE(waitForImage(window, 2));
    EXPECT_EQ(window->windowTitle(), window->service()->imageDescription());
}

TEST_F(MainWindowTest, ActionsAndShortcutsOpenViewsUnlessTheToolBarIsHidden)
{
    ASSERT_TRUE(find<QAction>(_window.get(), "New Window") && find<QAction>(_window.get(), "Open"));
    EXPECT_EQ(find<QAction>(_window.get(), "New Window")->toolTip(), "Open new window (Ctrl N)");
    EXPECT_EQ(find<QAction>(_window.get(), "Open")->toolTip(), "Open Image File (Ctrl O)");
    find<QAction>(_window.get(), "New Window")->trigger();
    EXPECT_EQ(_window->subWindows().size(), 1);
    QApplication::setActiveWindow(_window.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(_window.get(), Patience));
    QTest::keyClick(_window.get(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(_window->subWindows().size(), 2);
    _window->hideToolBar();
    EXPECT_FALSE(_window->findChild<QToolBar*>()->isVisible());
    QTest::keyClick(_window.get(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(_window->subWindows().size(), 2);
    _window->showToolBar();
    EXPECT_TRUE(_window->findChild<QToolBar*>()->isVisible());
}

TEST_F(MainWindowTest, TheOpenDialogOpensAllMarkedFilesTheFirstInTheActiveView)
{
    open_directory::set(QString::fromStdString(_folder.path()));
    const auto choose = [this](const QList<int>& numbers, bool closing = false) {
        QTimer::singleShot(0, _window.get(), [this, numbers, closing] {
            if (closing)
                _window->activeSubWindow()->close();
            settle();
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            QStringList names;
            for (const int number : numbers)
                names << '"' + QFileInfo(file(number)).fileName() + '"';
            auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit");
            edit->setText(names.join(' '));
            QTest::keyClick(edit, Qt::Key_Return);
        });
        find<QAction>(_window.get(), "Open")->trigger();
    };
    choose({3});
    ASSERT_EQ(_window->subWindows().size(), 1);
    EXPECT_TRUE(waitForImage(_window->subWindows()[0], 3));
    choose({4}, true);
    ASSERT_EQ(_window->subWindows().size(), 1) << "not in the view that has gone meanwhile";
    EXPECT_TRUE(waitForImage(_window->subWindows()[0], 4));
    choose({6, 7, 8});
    ASSERT_EQ(_window->subWindows().size(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(waitForImage(_window->subWindows()[i], 6 + i));
}

TEST_F(MainWindowTest, ViewsAreEnabledTogetherOrButTheActiveOne)
{
    SubWindow* first = _window->newSubWindow();
    SubWindow* second = _window->newSubWindow();
    _window->enableNonActiveSubWindows(false);
    EXPECT_FALSE(first->isEnabled());
    EXPECT_TRUE(second->isEnabled());
    _window->enableAllSubWindows();
    EXPECT_TRUE(first->isEnabled());
}

TEST(MainWindowClosing, EndsTheViewersProcessOrTheWindowAlone)
{
    TarvikCore core;
    core.setDefaultColorTable("Grey Scale");
    QPointer<MainWindow> scripted = new MainWindow(core, true, false);
    scripted->show();
    scripted->newSubWindow();
    const QPointer<TarvikService> service = scripted->activeSubWindow()->service();
    scripted->disableClose();
    scripted->QWidget::close();
    settle();
    ASSERT_TRUE(scripted);
    EXPECT_TRUE(scripted->isVisible());
    scripted->close();
    settle();
    EXPECT_FALSE(scripted);
    EXPECT_FALSE(service);

    MainWindow viewer(core, true, true);
    viewer.show();
    QTimer::singleShot(0, &viewer, [&viewer] { viewer.QWidget::close(); });
    QTimer guard;
    guard.singleShot(Patience, qApp, [] { QCoreApplication::exit(7); });
    EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(MainWindowTest, ClosesUnderItsDialogs)
{
    for (const char* text : {"Open", "About"}) {
        auto* window = new MainWindow(_core, true, false);
        const QPointer<MainWindow> closed(window);
        window->show();
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, window, [window] {
            if (QApplication::activeModalWidget())
                window->close();
        });
        poll.start(10);
        find<QAction>(window, text)->trigger();
        EXPECT_TRUE(waitFor([&closed] { return !closed; })) << text;
        EXPECT_FALSE(QApplication::activeModalWidget()) << text;
    }
}

TEST_F(MainWindowTest, ComesBackFromAScreenThatHasGone)
{
    const QRect room = _window->screen()->availableGeometry();
    _window->setGeometry(room.right() - 60, room.bottom() - 20, 3000, 300);
    settle();
    emit qApp->screenRemoved(nullptr);
    EXPECT_TRUE(waitFor([&] { return room.contains(_window->geometry()); }));
}

}  // namespace
