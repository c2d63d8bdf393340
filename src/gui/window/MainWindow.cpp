// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindow.h"

#include "gui/kit/MdiArea.h"
#include "gui/kit/SvgIcon.h"
#include "gui/render/OpenGlSupport.h"
#include "gui/window/ControlBar.h"
#include "gui/window/DroppedFiles.h"
#include "gui/window/MainWindowActions.h"
#include "gui/window/MainWindowEventControl.h"
#include "gui/window/OpenDirectory.h"
#include "gui/window/SideBarColumn.h"
#include "gui/window/SubWindow.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Assert.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QSettings>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

const QString shortcutModeKey = QStringLiteral("KeyboardShortcutMode");

MainWindow::MainWindow(TarvikCore& core, bool useGlsl, bool quitOnClose)
    : _core(core)
    , _mdiArea(new MdiArea)
    , _splitter(new MdiSplitter(Qt::Horizontal))
    , _keyboardShortcutMode(QSettings().value(shortcutModeKey, false).toBool())
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
    _controlBar = std::make_unique<ControlBar>(*this, *_actions);
    _createLayout();
    _connectActions();
    _connectSynchronization();
    resize(1200, 800);
}

MainWindow::~MainWindow()
{
    emit aboutToTerminate(this);
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

QString MainWindow::openDirectory() const { return OpenDirectory::get(); }

void MainWindow::setOpenDirectory(const QString& path) { OpenDirectory::set(path); }

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

void MainWindow::noteAnswer(const QString& file, bool) { OpenDirectory::setSoon(file); }

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
    connect(window, &AbstractSubWindow::gotActivated, this, &MainWindow::_subWindowActivated);
    connect(window, &QObject::destroyed, this, &MainWindow::_handleCloseEvent);
    return window;
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
    Q_UNUSED(subWindow)
}

void MainWindow::_handleCloseEvent(QObject* window)
{
    const auto frame = _frameOf(window);
    if (frame == _subFrames.end())
        return;
    _core.deleteService(frame->service);
    _subFrames.erase(frame);
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
