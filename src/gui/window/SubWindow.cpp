// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/SubWindow.h"

#include "gui/kit/ErrorDialog.h"
#include "gui/kit/TextLine.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/DroppedFiles.h"
#include "gui/window/SubWindowEventControl.h"
#include "gui/window/SubWindowStrip.h"
#include "gui/window/SubWindowTitleBar.h"
#include "gui/window/ViewHost.h"
#include "imagelib/display/MColorTable.h"
#include "logic/service/TarvikService.h"

#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <utility>

SubWindow::SubWindow(ViewHost& mainWindow, TarvikService* service, bool useGlsl)
    : _mainWindow(mainWindow)
    , _service(service)
    , _controls(new SubWindowTitleBar(*this, service))
    , _eventControl(new SubWindowEventControl(this, service, [this](int step) { zoom(step); }))
{
    setAttribute(Qt::WA_DeleteOnClose);
    // Before the view, see there.
    new SubWindowStrip(*this, *service, [this] { return _fileIncreaseNumber; });
    _imageDrawer = new ImageDrawerMain(service, useGlsl);
    setWidget(_imageDrawer);
    setAcceptDrops(true);
    connect(_controls->stepBox(), &QComboBox::currentIndexChanged, this,
            &SubWindow::_setFileIncreaseNumber);
    connect(_controls->nextAction(), &QAction::triggered, this, &SubWindow::_loadNextFileSlot);
    connect(_controls->previousAction(), &QAction::triggered, this,
            &SubWindow::_loadPreviousFileSlot);
    connect(_controls->movieAction(), &QAction::triggered, this, &SubWindow::_autoLoadSlot);
    connect(this, &AbstractSubWindow::windowStateChanged, this, &SubWindow::_activate);
    _connectService();
}

void SubWindow::_connectService()
{
    connect(_service, &TarvikService::newImageSignal, this, &SubWindow::_newImageSlot);
    connect(_service, &TarvikService::imageLoadErrorSignal, this, &SubWindow::_errorSlot);
    connect(_service, &TarvikService::movieModeSignal, this, &SubWindow::_passiveAutoLoadSlot);
    connect(_service, &TarvikService::watchSeriesModeSignal, this,
            &SubWindow::_passiveWatchSeriesModeSlot);
    connect(_service, &TarvikService::halvoMonitorModeSignal, this,
            &SubWindow::_passiveHalvoMonitorModeSlot);
    connect(_service, &TarvikService::halvoMonitorHostSignal, this,
            &SubWindow::_passiveHalvoMonitorHostSlot);
    connect(_service, &TarvikService::waitingSignal, new TextLine(_imageDrawer, Qt::BottomEdge),
            &TextLine::say);
    connect(_service, &TarvikService::noticeSignal,
            new TextLine(_imageDrawer, Qt::TopEdge, TextLine::NoticeTime), &TextLine::say);
}

SubWindow::~SubWindow() { emit aboutToTerminate(this); }

bool SubWindow::imageHasFocus() const
{
    const QWidget* focus = QApplication::focusWidget();
    return focus == this || focus == _imageDrawer || (focus && _imageDrawer->isAncestorOf(focus));
}

void SubWindow::zoom(int step) { _imageDrawer->zoom(step); }

QRectF SubWindow::visibileRange() const { return _imageDrawer->visibleRange(); }

QSize SubWindow::displaySize() const { return _imageDrawer->size(); }

void SubWindow::loadFile(const QString& fileName)
{
    _closesOnError = false;
    if (!_service->imageLoaded() && !_titleFixed)
        setWindowTitle(fileName);
    _service->openImage(QFile::encodeName(fileName).constData());
    _asked = fileName;
    emit changedFile();
}

void SubWindow::loadFileOrClose(const QString& fileName)
{
    loadFile(fileName);
    _closesOnError = !_service->imageLoaded();
}

void SubWindow::loadImage(const MImage* image)
{
    _closesOnError = false;
    _service->openImage(*image);
}

void SubWindow::addToPaintList(const MDrawingList* list) { _service->addToPaintList(*list); }

void SubWindow::setPaintList(const MDrawingList* list) { _service->setPaintList(*list); }

void SubWindow::clearPaintList() { _service->clearPaintList(); }

void SubWindow::goTo(int imageNumber) { _service->openImage(imageNumber); }

template <class Change>
void SubWindow::_changeViewport(Change&& change)
{
    ViewportData record = _service->viewportData();
    change(record);
    record.defined = true;
    _service->setViewportData(record);
}

void SubWindow::setOffsetX(double offsetX)
{
    _changeViewport([offsetX](ViewportData& record) { record.offsetX = offsetX; });
}

void SubWindow::setOffsetY(double offsetY)
{
    _changeViewport([offsetY](ViewportData& record) { record.offsetY = offsetY; });
}

void SubWindow::setZoomPower(int zoomPower)
{
    _changeViewport([zoomPower](ViewportData& record) { record.setZoomPower(zoomPower); });
}

void SubWindow::setViewport(double offsetX, double offsetY, int zoomPower)
{
    _changeViewport([&](ViewportData& record) {
        record.offsetX = offsetX;
        record.offsetY = offsetY;
        record.setZoomPower(zoomPower);
    });
}

template <class Change>
void SubWindow::_changeContrast(Change&& change)
{
    ContrastData record = _service->contrastData();
    change(record);
    record.defined = true;
    record.dragUpdate = false;
    _service->setContrastData(record);
}

void SubWindow::setForeground(double foreground)
{
    _changeContrast([foreground](ContrastData& record) { record.foreground = foreground; });
}

void SubWindow::setBackground(double background)
{
    _changeContrast([background](ContrastData& record) { record.background = background; });
}

void SubWindow::setContrast(double foreground, double background)
{
    _changeContrast([&](ContrastData& record) {
        record.foreground = foreground;
        record.background = background;
    });
}

void SubWindow::setTitle(const QString& windowTitle)
{
    setWindowTitle(windowTitle);
    _titleFixed = true;
}

void SubWindow::unsetTitle()
{
    setWindowTitle(_service->imagePath());
    _titleFixed = false;
}

void SubWindow::setColorMode(const QString& colormode)
{
    static const QMap<QString, QString> shortNames{{"HDR", "High Dynamic Range"},
                                                   {"GS", "Grey Scale"},
                                                   {"H", "Heat"},
                                                   {"RB", "Rainbow"},
                                                   {"V", "Viridis"},
                                                   {"C", "Cividis"}};
    const std::string name = shortNames.value(colormode, colormode).toStdString();
    for (const auto* table : _service->colorTables()) {
        if (table->identifier() != name)
            continue;
        ContrastData record = _service->contrastData();
        record.colorTable = table;
        _service->setContrastData(record);
        _service->setDefaultColorTable(table);
        return;
    }
}

void SubWindow::showResolutionRings() { _service->toggleShowResolutionRings(true); }

void SubWindow::hideResolutionRings() { _service->toggleShowResolutionRings(false); }

void SubWindow::dragEnterEvent(QDragEnterEvent* event) { acceptCopy(*event); }

void SubWindow::dragMoveEvent(QDragMoveEvent* event) { acceptCopy(*event); }

void SubWindow::dropEvent(QDropEvent* event)
{
    acceptCopy(*event);
    _mainWindow.openFiles(droppedFiles(*event->mimeData()), this);
}

void SubWindow::_noteAnswer(bool shown)
{
    if (_asked.isEmpty())
        return;
    QString file = QFileInfo(std::exchange(_asked, {})).absoluteFilePath();
    // Of a folder the image in it, which may be another one at the next time.
    const QString image = _service->imagePath();
    if (shown && image.startsWith(file + '/'))
        file = image;
    if (shown)
        _file = file;
    _mainWindow.noteAnswer(file, shown);
}

void SubWindow::_newImageSlot()
{
    _noteAnswer(true);
    _closesOnError = false;
    if (!_titleFixed)
        setWindowTitle(_service->imageDescription());
    if (active())
        _setActions();
    update();
}

void SubWindow::_errorSlot(const QString& message)
{
    _noteAnswer(false);
    if (!_service->imageLoaded() && !_titleFixed)
        setWindowTitle({});  // it was the name of the file
    if (_closesOnError)
        close();
    // The message waits for a click; meanwhile the view may go, and others learn of the failure.
    QMetaObject::invokeMethod(
        qApp, [message] { ErrorDialog::showMessage(message.toUtf8().constData()); },
        Qt::QueuedConnection);
}

void SubWindow::_activate(Qt::WindowStates oldState, Qt::WindowStates newState)
{
    Q_UNUSED(oldState)
    _windowState = newState;
    _imageDrawer->setInUse(newState.testFlag(Qt::WindowActive));
    if (_windowState.testFlag(Qt::WindowActive))
        _setActions();
}

void SubWindow::_setFileIncreaseNumber(int index)
{
    _fileIncreaseNumber = _controls->stepBox()->itemData(index).toInt();
    _service->setMovieModeStep(_fileIncreaseNumber);
}

void SubWindow::_loadNextFileSlot() { _service->nextImage(_fileIncreaseNumber, true); }

void SubWindow::_loadPreviousFileSlot() { _service->nextImage(-_fileIncreaseNumber, true); }

void SubWindow::_autoLoadSlot() { _service->setMovieMode(!_service->movieMode()); }

void SubWindow::_passiveAutoLoadSlot(bool on)
{
    _controls->setMovie(on);
    if (active())
        _mainWindow.setMovieModeAction(on);
}

void SubWindow::_passiveWatchSeriesModeSlot(bool on)
{
    if (active())
        _mainWindow.setWatchSeriesModeAction(on);
}

void SubWindow::_passiveHalvoMonitorModeSlot(bool on)
{
    if (active())
        _mainWindow.setHalvoMonitorMode(on);
}

void SubWindow::_passiveHalvoMonitorHostSlot(const QString& host, int port, double minPause)
{
    if (active())
        _mainWindow.setHalvoMonitorHost(host, port, minPause);
}

void SubWindow::_setActions()
{
    if (!_windowState.testFlag(Qt::WindowActive))
        return;
    const bool loaded = _service->imageLoaded();
    _controls->setImageLoaded(loaded);
    _mainWindow.enableMovieModeAction(loaded);
    _mainWindow.setMovieModeAction(loaded && _service->movieMode());
    _mainWindow.enableWatchSeriesModeAction(loaded);
    _mainWindow.setWatchSeriesModeAction(loaded && _service->watchSeriesMode());
    _mainWindow.setHalvoMonitorMode(_service->halvoMonitorMode());
    _mainWindow.setHalvoMonitorHost(_service->halvoMonitorHost(), _service->halvoMonitorPort(),
                                    _service->halvoMonitorMinPause());
}
