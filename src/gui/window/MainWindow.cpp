// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindow.h"

#include "gui/kit/MdiArea.h"
#include "gui/kit/RibbonInterface.h"
#include "gui/kit/SvgIcon.h"
#include "gui/kit/SvgWidget.h"
#include "gui/render/OpenGlSupport.h"
#include "gui/window/DroppedFiles.h"
#include "gui/window/MainWindowActions.h"
#include "gui/window/MainWindowEventControl.h"
#include "gui/window/OpenDirectory.h"
#include "gui/window/OpenFileDialog.h"
#include "gui/window/SubWindow.h"
#include "gui/window/ToolBarStyle.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

/// Fills the free space in a tool bar, or takes a given width.
QWidget* spacer(int minimumWidth, QSizePolicy::Policy policy)
{
    auto* widget = new QWidget;
    widget->setMinimumWidth(minimumWidth);
    widget->setSizePolicy(policy, QSizePolicy::Preferred);
    return widget;
}

}  // namespace

MainWindow::MainWindow(TarvikCore& core, bool useGlsl, bool quitOnClose)
    : _core(core)
    , _mdiArea(new MdiArea)
    , _splitter(new MdiSplitter(Qt::Horizontal))
    , _controlBar(new QToolBar(QStringLiteral("Control Bar")))
    , _ribbon(new RibbonInterface)
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
    _actions = std::make_unique<MainWindowActions>(
        *this, MainWindowActions::Slots{[this] { newSubWindow(); }, [this] { _open(); }});
    _eventControl = std::make_unique<MainWindowEventControl>(*this);
    _createMenus();
    _createLayout();
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
    auto* window = new SubWindow(
        {[this](const QStringList& files, SubWindow* first) { openFiles(files, first); },
         [](const QString& file) { OpenDirectory::setSoon(file); }},
        service, _useGlsl);
    _subFrames.insert({window, service});
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

void MainWindow::showToolBar()
{
    _actions->silenceShortcuts(false);
    _controlBar->show();
    _ribbon->show();
}

void MainWindow::hideToolBar()
{
    _actions->silenceShortcuts(true);
    _controlBar->hide();
    _ribbon->hide();
}

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

void MainWindow::_open()
{
    // First, as the active view may have gone when the dialog closes.
    const QStringList files = OpenFileDialog(this).choose();
    openFiles(files, activeSubWindow());
}

void MainWindow::_handleCloseEvent(QObject* window)
{
    const auto isWindow = [window](const SubFrame& frame) { return frame.subWindow == window; };
    const auto frame = std::find_if(_subFrames.begin(), _subFrames.end(), isWindow);
    if (frame == _subFrames.end())
        return;
    _core.deleteService(frame->service);
    _subFrames.erase(frame);
}

void MainWindow::_createMenus()
{
    _controlBar->setFloatable(false);
    _controlBar->setMovable(false);
    _controlBar->setStyleSheet(toolBarStyle());
    addToolBar(_controlBar);

    const QString file = QStringLiteral("File");
    _controlBar->addAction(_ribbon->addToolBar(file));
    _ribbon->setStyleSheet(toolBarStyle());
    _ribbon->addAction(file, _actions->newWindowAction());
    _ribbon->addAction(file, _actions->openAction());
    _ribbon->addSeparator(file);

    _controlBar->addSeparator();
    _controlBar->addWidget(spacer(0, QSizePolicy::Expanding));
    auto* logo = new SvgWidget(QStringLiteral(":icons/morvend_logo.svg"));
    logo->setHeight(15);
    logo->setFixedWidth(logo->sizeHint().width());
    _controlBar->addWidget(logo);
    _controlBar->addWidget(spacer(10, QSizePolicy::Fixed));
}

void MainWindow::_createLayout()
{
    auto* central = new QWidget;
    auto* rows = new QVBoxLayout(central);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);

    auto* bars = new QHBoxLayout;
    bars->setSpacing(0);
    bars->addWidget(_ribbon);
    rows->addLayout(bars);

    auto* area = new QWidget;
    area->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
    auto* areaLayout = new QVBoxLayout(area);
    areaLayout->setContentsMargins(0, 0, 0, 0);
    areaLayout->addWidget(_splitter);
    _splitter->addWidget(_mdiArea);
    rows->addWidget(area, 1);
    setCentralWidget(central);
}
