// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the actions of the main window do.
#include "gui/kit/ContainerSideBar.h"
#include "gui/kit/ErrorDialog.h"
#include "gui/kit/PopupButton.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/About.h"
#include "gui/window/ControlBar.h"
#include "gui/window/HalvoWidget.h"
#include "gui/window/LaterSettings.h"
#include "gui/window/MainWindow.h"
#include "gui/window/MainWindowActions.h"
#include "gui/window/OpenFileDialog.h"
#include "gui/window/ShortcutSheet.h"
#include "gui/window/SideBarColumn.h"
#include "gui/window/SubWindow.h"
#include "gui/window/SubWindowEventControl.h"
#include "gui/window/ViewActions.h"
#include "logic/core/TarvikCore.h"
#include "logic/detector/HalvoMonitor.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace {

/// From the actions themselves, so that none is missing or wrong.
QList<ShortcutSheet::Section> allShortcuts(const MainWindowActions& actions,
                                           const ViewActions& viewActions)
{
    const auto keyText = [](const QKeySequence& keys) {
        return keys.toString(QKeySequence::NativeText);
    };
    ShortcutSheet::Section window{QStringLiteral("Window"), {}};
    for (const MainWindowActions::Key& key : actions.keyed())
        window.rows.append({keyText(key.keys), ShortcutSheet::effectOf(key.action->toolTip())});
    ShortcutSheet::Section view{QStringLiteral("Active view"), {}};
    for (const QAction* action : viewActions.all())
        view.rows.append({keyText(action->shortcut()), ShortcutSheet::effectOf(action->toolTip())});
    ShortcutSheet::Section mode{QStringLiteral("Keyboard shortcut mode"), {}};
    for (const SubWindowEventControl::Key& key : SubWindowEventControl::keys())
        mode.rows.append({keyText(QKeySequence(key.key)), QString::fromLatin1(key.effect)});
    ShortcutSheet::Section mouse{QStringLiteral("Mouse on an image"), {}};
    for (const ImageDrawerMain::Gesture& gesture : ImageDrawerMain::gestures())
        mouse.rows.append(
            {QString::fromLatin1(gesture.mouse), QString::fromLatin1(gesture.effect)});
    const ShortcutSheet::Section beside{
        QStringLiteral("Mouse beside an image"),
        {{QStringLiteral("Drag on the strip"), QStringLiteral("Go there in the series")},
         {QStringLiteral("Wheel on the strip"), QStringLiteral("Step by the number in the box")},
         {QStringLiteral("Files dropped"), QStringLiteral("Open them, the first in that view")},
         {QStringLiteral("Wheel on a plot"), QStringLiteral("Zoom in or out along x")},
         {QStringLiteral("Right drag on a plot"), QStringLiteral("Zoom into that range")},
         {QStringLiteral("Double click on a plot"), QStringLiteral("Show all of it")},
         {QStringLiteral("Right click on a plot"), QStringLiteral("Save or copy it")}}};
    return {window, view, mode, mouse, beside};
}

}  // namespace

void MainWindow::_connectActions()
{
    const auto on = [this](QAction* action, auto slot) {
        connect(action, &QAction::triggered, this, slot);
    };
    on(_actions->newWindow, [this] { newSubWindow(); });
    on(_actions->open, &MainWindow::_open);
    on(_actions->saveAs, &MainWindow::_openSaveAsDialog);
    on(_actions->exportPicture, &MainWindow::_openExportDialog);
    on(_actions->movie, &MainWindow::_toggleMovieMode);
    on(_actions->watch, &MainWindow::_toggleWatchSeriesMode);
    on(_actions->help, &MainWindow::_openHelpBrowser);
    on(_actions->about, &MainWindow::_about);
    on(_actions->shortcuts, &MainWindow::_showShortcuts);
    connect(_actions->keys, &QAction::toggled, this, &MainWindow::_setKeyboardShortcutMode);
    connect(_actions->tools, &QAction::toggled, this, &MainWindow::toggleSideBar);
    connect(_actions->monitor, &QAbstractButton::toggled, this,
            &MainWindow::_toggleHalvoMonitorMode);
    connect(_actions->monitorWidget, &HalvoWidget::newHost, this,
            &MainWindow::_setHalvoMonitorHost);
}

void MainWindow::_connectSynchronization()
{
    const auto mirror = [this](QCheckBox* box, bool on, auto slot, auto signal) {
        box->setChecked(on);
        connect(box, &QCheckBox::toggled, &_core, slot);
        connect(&_core, signal, box, &QCheckBox::setChecked);
    };
    mirror(_actions->syncViewport, _core.synchronized<ViewportData>(),
           &TarvikCore::synchronizeViewportSlot, &TarvikCore::synchronizeViewportSignal);
    mirror(_actions->syncContrast, _core.synchronized<ContrastData>(),
           &TarvikCore::synchronizeContrastSlot, &TarvikCore::synchronizeContrastSignal);
    const bool statistics = _core.synchronized<StatisticsData>();
    mirror(_actions->syncStatistics, statistics, &TarvikCore::synchronizeStatisticsSlot,
           &TarvikCore::synchronizeStatisticsSignal);
    mirror(_actions->syncStatistics, statistics, &TarvikCore::synchronizePeaksSlot,
           &TarvikCore::synchronizePeaksSignal);
}

TarvikService* MainWindow::_activeService() const
{
    const SubWindow* active = activeSubWindow();
    return active ? active->service() : nullptr;
}

void MainWindow::enableSideBar(bool enabled)
{
    MainWindowActions::enableSilently(_actions->tools, enabled);
}

void MainWindow::enableMovieModeAction(bool enabled)
{
    MainWindowActions::enableSilently(_actions->movie, enabled);
}

void MainWindow::setMovieModeAction(bool on)
{
    MainWindowActions::setSilently(_actions->movie, on);
}

void MainWindow::enableWatchSeriesModeAction(bool enabled)
{
    MainWindowActions::enableSilently(_actions->watch, enabled);
}

void MainWindow::setWatchSeriesModeAction(bool on)
{
    MainWindowActions::setSilently(_actions->watch, on);
}

void MainWindow::setHalvoMonitorMode(bool on) { _actions->setMonitor(on); }

void MainWindow::setHalvoMonitorHost(QString host, int port, double minPause)
{
    _actions->monitorWidget->setHost(host, port, minPause);
}

void MainWindow::showToolBar()
{
    _actions->silenceShortcuts(false);
    _viewActions->silenceShortcuts(false);
    _controlBar->setVisible(true);
}

void MainWindow::hideToolBar()
{
    _actions->silenceShortcuts(true);
    _viewActions->silenceShortcuts(true);
    _controlBar->setVisible(false);
}

void MainWindow::enableKeyboardShortcuts() { _actions->keys->setChecked(true); }

void MainWindow::disableKeyboardShortcuts() { _actions->keys->setChecked(false); }

void MainWindow::synchronizeViewport(int val) { _actions->syncViewport->setChecked(val != 0); }

void MainWindow::synchronizeContrast(int val) { _actions->syncContrast->setChecked(val != 0); }

void MainWindow::synchronizeStatistics(int val) { _actions->syncStatistics->setChecked(val != 0); }

void MainWindow::subFrames(QString* returnList)
{
    for (const SubWindow* window : subWindows())
        *returnList += QStringLiteral("%1\n").arg(reinterpret_cast<quintptr>(window));
}

void MainWindow::toggleSideBar(bool on)
{
    const SubWindow* active = activeSubWindow();
    if (on && active) {
        const auto frame = _frameOf(active);
        assert(frame != _subFrames.end());
        _showPanels(*frame);
    }
    _sideBars->setVisible(on && active);
    _columnWanted = on;
    _placeChanged();
}

void MainWindow::_setSideBarVisibleSlot(SideBar* panel)
{
    _sideBars->ensureVisible(*panel, panel->titleHeight());
}

void MainWindow::_open()
{
    // First, as the active view may have gone when the dialog closes.
    const QPointer<MainWindow> self(this);
    // On the heap, as this window may be closed meanwhile and takes the dialog with it.
    const QPointer<OpenFileDialog> dialog = new OpenFileDialog(this);
    const QStringList files = dialog->choose();
    delete dialog;
    if (self)
        openFiles(files, activeSubWindow());
}

void MainWindow::_openHelpBrowser()
{
    // Beside a program in its build folder, and where `cmake --install` puts the pages.
    const QDir programs(QCoreApplication::applicationDirPath());
    QDir folder(programs.filePath(QStringLiteral("../Resources/tarvik_doc")));
    if (!folder.exists())
        folder.setPath(programs.filePath(QStringLiteral("../share/doc/tarvik/html")));
    const QString url = "file:///" + folder.canonicalPath() + "/index.html";
    console::print((url + '\n').toStdString());
    if (!folder.exists(QStringLiteral("index.html"))) {
        const QString message =
            "The documentation is not installed: " + QDir::cleanPath(folder.path()) + "/index.html";
        ErrorDialog::showMessage(message.toUtf8().constData());
        return;
    }
    QDesktopServices::openUrl(QUrl(url));
}

void MainWindow::_toggleMovieMode(bool on)
{
    if (TarvikService* service = _activeService())
        service->setMovieMode(on);
}

void MainWindow::_toggleWatchSeriesMode(bool on)
{
    if (TarvikService* service = _activeService())
        service->setWatchSeriesMode(on);
}

void MainWindow::_toggleHalvoMonitorMode(bool on)
{
    if (on && !activeSubWindow())
        newSubWindow();
    if (TarvikService* service = _activeService())
        service->setHalvoMonitorMode(on);
}

void MainWindow::_setHalvoMonitorHost(const QString& host, int port, double minPause)
{
    if (TarvikService* service = _activeService()) {
        service->setHalvoMonitorHost(host, port, minPause);
        return;
    }
    HalvoMonitor::setDefaultHost(host);
    HalvoMonitor::setDefaultPort(port);
    HalvoMonitor::setDefaultMinPause(minPause);
}

void MainWindow::_setKeyboardShortcutMode(bool on)
{
    _keyboardShortcutMode = on;
    later_settings::set(QStringLiteral("KeyboardShortcutMode"), on);
    // The release that would end a drag no longer reaches the view.
    if (SubWindow* active = activeSubWindow(); active && !on)
        active->subWindowEventControl()->endDrag();
}

void MainWindow::_openExportDialog()
{
    if (SubWindow* active = activeSubWindow())
        active->openExportDialog();
}

void MainWindow::_openSaveAsDialog()
{
    if (SubWindow* active = activeSubWindow())
        active->openSaveAsDialog();
}

void MainWindow::_showShortcuts()
{
    if (!_shortcutSheet)
        _shortcutSheet = new ShortcutSheet(allShortcuts(*_actions, *_viewActions), this);
    _shortcutSheet->show();
    _shortcutSheet->raise();
    _shortcutSheet->activateWindow();
}

void MainWindow::_about()
{
    auto* dialog = new About(this);  // goes with this window, if that is closed meanwhile
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->exec();
}
