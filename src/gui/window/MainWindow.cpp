// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindow.h"

#include "gui/kit/MdiArea.h"
#include "gui/kit/SvgIcon.h"
#include "gui/render/OpenGlSupport.h"
#include "gui/window/ControlBar.h"
#include "gui/window/DroppedFiles.h"
#include "gui/window/LaterSettings.h"
#include "gui/window/MainWindowActions.h"
#include "gui/window/MainWindowEventControl.h"
#include "gui/window/OpenDirectory.h"
#include "gui/window/RecentFiles.h"
#include "gui/window/SavedSetting.h"
#include "gui/window/SideBarColumn.h"
#include "gui/window/SubWindow.h"
#include "gui/window/ViewActions.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Assert.h"

#include <QApplication>
#include <QDropEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

const QString ShortcutModeKey = QStringLiteral("KeyboardShortcutMode");

/// Keys that no other window of the process uses.
unsigned long long freePanelKeys()
{
    static unsigned long long next = 0;
    return std::exchange(next, next + PanelKeys);
}

}  // namespace

MainWindow::MainWindow(TarvikCore& core, bool useGlsl, bool quitOnClose, PanelMaker panels)
    : _core(core)
    , _mdiArea(new MdiArea)
    , _splitter(new MdiSplitter(Qt::Horizontal))
    , _viewActions(new ViewActions(*this, [this] { return activeSubWindow(); }))
    , _panelMaker(std::move(panels))
    , _firstPanelKey(freePanelKeys())
    , _columnWidth(SideBarColumn::MaximumWidth)
    , _keyboardShortcutMode(later_settings::value(ShortcutModeKey).toBool())
    , _useGlsl(useGlsl)
    , _quitOnClose(quitOnClose)
{
    setWindowTitle(QStringLiteral("TARVIK"));
    setWindowIcon(svgIcon(QStringLiteral(":icons/tarvik256.svg"), QSize(256, 256)));
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
    setAcceptDrops(true);
    render::OpenGlSupport::prepare(*this);
    setContextMenuPolicy(Qt::PreventContextMenu);
    _actions = std::make_unique<MainWindowActions>(*this);
    _actions->keys->setChecked(_keyboardShortcutMode);
    _eventControl = std::make_unique<MainWindowEventControl>(
        *this, [this] { return _keyboardShortcutMode ? activeSubWindow() : nullptr; });
    _controlBar = std::make_unique<ControlBar>(*this, *_actions, *_viewActions);
    _createLayout();
    _connectActions();
    _connectSynchronization();
    _createMemory();
    SideBar::setDefaultVisibility(_firstPanelKey + 1, true);
    resize(1200, 800);
    _keepOnScreen();
    // Not before the remaining screens have moved.
    connect(qApp, &QGuiApplication::screenRemoved, this, &MainWindow::_keepOnScreen,
            Qt::QueuedConnection);
}

MainWindow::~MainWindow()
{
    emit aboutToTerminate(this);
    // As long as the views are there.
    _placeSetting.reset();
    _sessionSetting.reset();
    later_settings::finish();
    // Views first, then what they show; none of them may call into a window that is being
    // destroyed.
    for (const SubFrame& frame : _subFrames)
        disconnect(frame.subWindow, nullptr, this, nullptr);
    delete _mdiArea;
    for (const SubFrame& frame : _subFrames)
        _core.deleteService(frame.service);
}

SubWindow* MainWindow::activeSubWindow() const
{
    return qobject_cast<SubWindow*>(_mdiArea->activeSubWindow());
}

QList<SubWindow*> MainWindow::subWindows() const
{
    QList<SubWindow*> windows;
    for (AbstractSubWindow* frame : _mdiArea->subWindowList())
        windows.append(qobject_cast<SubWindow*>(frame));
    return windows;
}

QString MainWindow::openDirectory() const { return open_directory::get(); }

void MainWindow::setOpenDirectory(const QString& path) { open_directory::set(path); }

void MainWindow::openFiles(const QStringList& files, SubWindow* first)
{
    // All views first, since each tiling moves all existing ones.
    QList<AbstractSubWindow*> views;
    for (qsizetype i = first ? 1 : 0; i < files.size(); ++i)
        views.append(_makeSubWindow());
    _mdiArea->addSubWindows(views);
    for (AbstractSubWindow* view : std::as_const(views))
        emit newSubWindowSignal(qobject_cast<SubWindow*>(view));
    qsizetype next = 0;
    for (const QString& file : files) {
        if (first)
            first->loadFile(file);
        else
            qobject_cast<SubWindow*>(views[next++])->loadFileOrClose(file);
        first = nullptr;
    }
}

void MainWindow::noteAnswer(const QString& file, bool shown)
{
    open_directory::setSoon(file);
    if (shown)
        _actions->recent->add(file);
}

void MainWindow::enableAllSubWindows()
{
    for (SubWindow* window : subWindows())
        window->setEnabled(true);
}

void MainWindow::enableNonActiveSubWindows(bool enabled)
{
    for (SubWindow* window : subWindows()) {
        if (window != activeSubWindow())
            window->setEnabled(enabled);
    }
}

SubWindow* MainWindow::_makeSubWindow()
{
    // The address of the main window is the key by which its views synchronise.
    const QString key = QString::number(reinterpret_cast<quintptr>(this));
    TarvikService* service = _core.newService(key);
    auto* window = new SubWindow(*this, service, _useGlsl);
    _subFrames.insert({window, service});
    enableSideBar(_panelMaker != nullptr);
    // The column as the user left it at the last start.
    if (_subFrames.size() == 1 && _columnWanted && _panelMaker) {
        MainWindowActions::setSilently(_actions->tools, true);
        _sideBars->setVisible(true, _columnWidth);
    }
    _remember(window);
    connect(window, &AbstractSubWindow::gotActivated, this, &MainWindow::_subWindowActivated);
    connect(window, &QObject::destroyed, this, &MainWindow::_handleCloseEvent);
    return window;
}

ContainerSideBar* MainWindow::_makePanels(SubWindow& window)
{
    ContainerSideBar* root = _panelMaker(*window.service(), *window.imageDrawer(), _firstPanelKey);
    connect(&window, &SubWindow::aboutToTerminate, root, [root] { delete root; });
    for (const SideBar* panel : root->findChildren<SideBar*>()) {
        for (const auto wanted : {&SideBar::gotVisbile, &SideBar::ensureVisibleSignal})
            connect(panel, wanted, this, &MainWindow::_setSideBarVisibleSlot);
        connect(panel, &SideBar::ensurePartVisibleSignal, this,
                [this](QWidget* part) { _sideBars->ensureVisible(*part); });
        connect(panel, &SideBar::toggledVisible, this, &MainWindow::_placeChanged);
    }
    _sideBars->add(root);
    return root;
}

void MainWindow::_showPanels(const SubFrame& frame)
{
    if (!frame.sideBar)
        frame.sideBar = _makePanels(*frame.subWindow);
    _sideBars->setCurrent(frame.sideBar);
}

SubWindow* MainWindow::newSubWindow(SubWindow** subwindow)
{
    SubWindow* const window = _makeSubWindow();
    _mdiArea->addSubWindow(window);
    if (subwindow)
        *subwindow = window;
    emit newSubWindowSignal(window);
    return window;
}

SubWindow* MainWindow::newSubWindow() { return newSubWindow(nullptr); }

void MainWindow::disableClose() { _closeDisabled = true; }

void MainWindow::enableClose() { _closeDisabled = false; }

void MainWindow::close()
{
    _closeDisabled = false;
    QMainWindow::close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    if (_closeDisabled)
        return;
    if (_quitOnClose) {
        event->accept();
        QCoreApplication::quit();
    } else {
        hide();
        deleteLater();
    }
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    _placeChanged();
}

void MainWindow::moveEvent(QMoveEvent* event)
{
    QMainWindow::moveEvent(event);
    _placeChanged();
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        _placeChanged();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) { acceptCopy(*event); }

void MainWindow::dragMoveEvent(QDragMoveEvent* event) { acceptCopy(*event); }

void MainWindow::dropEvent(QDropEvent* event)
{
    acceptCopy(*event);
    openFiles(droppedFiles(*event->mimeData()));
}

std::set<MainWindow::SubFrame>::const_iterator MainWindow::_frameOf(const QObject* subWindow) const
{
    return std::find_if(_subFrames.begin(), _subFrames.end(), [subWindow](const SubFrame& frame) {
        return frame.subWindow == subWindow;
    });
}

void MainWindow::_subWindowActivated(AbstractSubWindow* subWindow)
{
    assert(subWindow != nullptr);
    const auto frame = _frameOf(subWindow);
    if (frame != _subFrames.end() && _sideBars->visible())
        _showPanels(*frame);
}

void MainWindow::_handleCloseEvent(QObject* window)
{
    const auto frame = _frameOf(window);
    if (frame == _subFrames.end())
        return;
    _core.deleteService(frame->service);
    _subFrames.erase(frame);
    if (_sessionSetting)
        _sessionSetting->changed();
    if (_mdiArea->subWindowList().isEmpty()) {
        _sideBars->setVisible(false);
        _actions->reset();
    }
}

void MainWindow::_createLayout()
{
    auto* central = new QWidget;
    auto* rows = new QVBoxLayout(central);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(_controlBar->row());

    auto* area = new QWidget;
    area->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
    auto* areaLayout = new QVBoxLayout(area);
    areaLayout->setContentsMargins(0, 0, 0, 0);
    areaLayout->addWidget(_splitter);
    _splitter->addWidget(_mdiArea);
    _sideBars = std::make_unique<SideBarColumn>(*_splitter);
    rows->addWidget(area, 1);
    setCentralWidget(central);
}
