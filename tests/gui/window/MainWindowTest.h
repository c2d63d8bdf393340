// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A main window over a series of twelve small files.
#pragma once

#include "gui/kit/ErrorDialog.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/MainWindow.h"
#include "gui/window/SubWindow.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "tests/support/EdfFile.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

#include <functional>
#include <memory>

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest()
    {
        _core.setDefaultColorTable("High Dynamic Range");
        _window = std::make_unique<MainWindow>(_core, true, true);
        _sizeAtFirst = _window->size();
        _window->resize(500, 300);  // pixels cost time
        for (int i = 1; i <= 12; ++i)
            tarvik::tests::writeEdf(_folder, name(i), 8, std::vector(32, i));
        _window->show();
        (void)QTest::qWaitForWindowExposed(_window.get(), Patience);
        _window->activateWindow();
        (void)QTest::qWaitForWindowActive(_window.get(), Patience);
        QObject::connect(&_errorPoll, &QTimer::timeout, [this] { closeErrorDialog(); });
        _errorPoll.start(10);
    }
    ~MainWindowTest() override
    {
        _window.reset();
        settle();
    }

    static std::string name(int number)
    {
        return "x_" + std::to_string(100000 + number).substr(1) + ".edf";
    }
    QString path(const std::string& name) const { return QString::fromStdString(_folder / name); }
    QString file(int number) const { return path(name(number)); }
    QUrl url(int number) const { return QUrl::fromLocalFile(file(number)); }

    /// Number of the image on show, -1 without.
    static int shown(const SubWindow* window) { return window->service()->imageIndex(); }

    static bool waitForImage(const SubWindow* window, int number)
    {
        return waitFor([window, number] { return shown(window) == number; });
    }
    /// A view that shows an image of the series.
    SubWindow* opened(int number)
    {
        SubWindow* window = _window->newSubWindow();
        window->loadFile(file(number));
        EXPECT_TRUE(waitForImage(window, number));
        return window;
    }
    static const QAction* actionOf(const QAction* action) { return action; }
    static const QAction* actionOf(const QToolButton* button) { return button->defaultAction(); }
    /// The child whose action has this text.
    template <class Child>
    static Child* find(const QObject* parent, const QString& text)
    {
        for (Child* child : parent->findChildren<Child*>())
            if (const QAction* action = actionOf(child); action && action->text() == text)
                return child;
        return nullptr;
    }
    bool errorWasShown()
    {
        return waitFor([this] { return !_errors.isEmpty() && !errorDialog(); });
    }

    /// Drops files on a widget. @returns what is reported to their source
    Qt::DropAction drop(QWidget* target, const QList<QUrl>& urls,
                        Qt::DropActions offered = Qt::CopyAction)
    {
        QMimeData data;
        data.setUrls(urls);
        // Shift asks for a move.
        QDropEvent event(QPointF(5, 5), offered, &data, Qt::LeftButton, Qt::ShiftModifier);
        // The application would look for the target of a drag of its own.
        static_cast<QObject*>(target)->event(&event);
        EXPECT_TRUE(event.isAccepted());
        return event.dropAction();
    }

    static ErrorDialog* errorDialog()
    {
        return qobject_cast<ErrorDialog*>(QApplication::activeModalWidget());
    }

    /// Closes what stands in the way, as a user does, once a test has seen enough of it.
    void closeErrorDialog()
    {
        ErrorDialog* dialog = errorDialog();
        if (!dialog || !dialog->isVisible() || (_mayClose && !_mayClose()))
            return;
        _errors << dialog->findChild<QLabel*>()->text();
        QTest::mouseClick(dialog->findChild<QPushButton*>(), Qt::LeftButton);
    }

    tarvik::tests::TempFolder _folder;
    QTimer _errorPoll;
    QStringList _errors;
    std::function<bool()> _mayClose;
    TarvikCore _core;
    std::unique_ptr<MainWindow> _window;
    QSize _sizeAtFirst;
};
