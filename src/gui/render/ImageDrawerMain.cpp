// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ImageDrawerMain.h"

#include "gui/kit/PressedKeys.h"
#include "gui/render/gestures/ZoomPan.h"
#include "gui/render/overlays/BeamCentre.h"
#include "gui/render/overlays/CursorBox.h"
#include "gui/render/overlays/PaintList.h"
#include "gui/render/overlays/Peaks.h"
#include "gui/render/overlays/PixelValues.h"
#include "gui/render/overlays/Region.h"
#include "logic/service/TarvikService.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QWheelEvent>

ImageDrawerMain::ImageDrawerMain(TarvikService* service, bool useGlsl, QWidget* parent)
    : ImageDrawer(service, useGlsl, parent)
    , _cursorInfo(service, -1, -1)
    , _statisticsData(service->statisticsData())
    , _paintList(service->paintList())
{
    setInUse(false);
    setCursor(_cursors.cross());
    setPlottingMode(service->plottingMode());
    _setPeakData(service->peakData());
    connect(service, &TarvikService::newStatisticsSignal, this,
            &ImageDrawerMain::_setStatisticsSlot);
    connect(service, &TarvikService::newPeakSignal, this, &ImageDrawerMain::_setPeakData);
    connect(service, &TarvikService::peaksComputedSignal, this, &ImageDrawerMain::_takePeaks);
    connect(service, &TarvikService::plottingModeSignal, this, &ImageDrawer::setPlottingMode);
    connect(service, &TarvikService::paintListSignal, this, &ImageDrawerMain::updatePaintListSlot);
    connect(this, &ImageDrawer::newCursorCoordinates, service,
            &TarvikService::setCursorCoordinates);
    connect(service, &TarvikService::partInViewWantedSignal, this,
            [this] { this->service().chooseContrastOf(visibleRange().toAlignedRect()); });
    connect(service, &TarvikService::cursorInfoSignal, this, &ImageDrawerMain::_setCursorInfo);
}

void ImageDrawerMain::zoom(int step)
{
    if (!service().imageLoaded())
        return;
    const QPoint centre(width() / 2, height() / 2);
    service().setViewportData(render::zoomedAbout(
        viewport(), QPointF(imgX(centre.x()), imgY(centre.y())), centre, step > 0 ? 1 : -1));
}

void ImageDrawerMain::fit()
{
    if (service().imageLoaded())
        service().setViewportData(
            render::fittedViewport(viewport(), service().imageSize(), size()));
}

void ImageDrawerMain::oneToOne(const QPoint& about)
{
    if (service().imageLoaded())
        service().setViewportData(render::zoomedAbout(
            viewport(), QPointF(imgX(about.x()), imgY(about.y())), about, -viewport().zoomPower));
}

std::optional<CursorInfo> ImageDrawerMain::infoAtCursor() const
{
    if (!service().imageLoaded() || !_cursorInside || !_cursorOnImage())
        return {};
    return CursorInfo(&service(), imgX(), imgY());
}

ImageDrawer::MImage ImageDrawerMain::baseImage() const { return service().image(); }

std::shared_ptr<const morvend::imglib::BlockMaxima> ImageDrawerMain::baseMaxima() const
{
    return service().blockMaxima();
}

QSize ImageDrawerMain::baseSize() const { return service().imageSize(); }

ViewportData ImageDrawerMain::defaultViewport() const
{
    return render::centredViewport(service().imageSize(), size());
}

ViewportData ImageDrawerMain::correctViewport(const ViewportData& wanted,
                                              const ViewportData& current) const
{
    return render::withoutWiderBorder(wanted, current, service().imageSize(), size());
}

void ImageDrawerMain::letPixelsBePacked(bool may) { service().setPixelsPacked(may); }

void ImageDrawerMain::setViewportSlot(const ViewportData& viewport)
{
    ImageDrawer::setViewportSlot(viewport);
    _viewportSize = isVisible() ? std::optional(size()) : std::nullopt;
    _tellCursor();
}

void ImageDrawerMain::_tellCursor()
{
    if (_cursorInside && service().imageLoaded())
        emit newCursorCoordinates(imgX(), imgY());
}

void ImageDrawerMain::resizeEvent(QResizeEvent* event)
{
    ImageDrawer::resizeEvent(event);
    if (!service().imageLoaded() || !viewport().defined || !_viewportSize)
        return;
    adoptViewport(render::resized(viewport(), *_viewportSize, size()));
    _viewportSize = size();
    _tellCursor();
    if (_viewportBeforeResize)
        return;
    _viewportBeforeResize = service().viewportData();
    // Only when all views have their new sizes: a view that took over another's move and then
    // moved by its own resize would move twice.
    QMetaObject::invokeMethod(this, &ImageDrawerMain::_shareResize, Qt::QueuedConnection);
}

/// If views of a group are resized together, the first one decides: what was set since the
/// resize stays.
void ImageDrawerMain::_shareResize()
{
    const auto before = std::exchange(_viewportBeforeResize, std::nullopt);
    if (before && service().viewportData() == *before && !size().isEmpty())
        service().setViewportData(viewport());
}

void ImageDrawerMain::newImageSlot()
{
    _shareResize();
    _setStatisticsSlot(service().statisticsData());
    ImageDrawer::newImageSlot();
}

void ImageDrawerMain::updatePaintListSlot()
{
    _paintList = service().paintList();
    update();
}

void ImageDrawerMain::_setStatisticsSlot(const StatisticsData& region)
{
    if (_statisticsData == region)
        return;
    _statisticsData = region;
    update();
}

void ImageDrawerMain::_setPeakData(const PeakData& selection)
{
    _peakData = selection;
    _takePeaks();
}

void ImageDrawerMain::_takePeaks()
{
    _imagePeaks = service().computedPeaks();
    update();
}

void ImageDrawerMain::_setCursorInfo(const CursorInfo& info) { _cursorInfo = info; }

void ImageDrawerMain::paintRings(QPainter* painter)
{
    _rings.draw(*painter, viewGeometry(), imageBoundary(), service());
}

void ImageDrawerMain::paint(QPainter* painter)
{
    if (!service().imageLoaded() || plottingMode() != PlottingMode::Flat)
        return;
    const render::ViewGeometry geometry = viewGeometry();
    if (service().viewportData().zoomPower == ViewportData::maximumZoomPower)
        _paintPixelValues(*painter, geometry);
    double beamX = 0;
    double beamY = 0;
    service().beamCentre(beamX, beamY);
    render::drawBeamCentre(*painter, geometry, beamX, beamY);
    render::drawPeaks(*painter, geometry, _peakData, _imagePeaks);
    render::drawPaintList(*painter, geometry, _paintList);
    render::drawRegion(*painter, geometry, _statisticsData);
    if (_cursorInside && _cursorOnImage())
        render::drawCursorBox(*painter, _cursor(), size(), _cursorInfo);
}

void ImageDrawerMain::_paintPixelValues(QPainter& painter,
                                        const render::ViewGeometry& geometry) const
{
    render::PixelSource source;
    source.text = [this](int x, int y) { return service().intensityString(x, y); };
    source.colours = [this](int x, int y, int w, int h) { return rgbData(x, y, w, h); };
    render::drawPixelValues(painter, geometry, source);
}

bool ImageDrawerMain::_cursorOnImage() const
{
    const QPoint pixel = render::NewRegion::pixelOf(QPointF(imgX(), imgY()));
    return QRect(QPoint(), service().imageSize()).contains(pixel);
}

bool ImageDrawerMain::_drawsRegion(Qt::MouseButtons buttons) const
{
    return buttons.testFlag(Qt::RightButton) && _statisticsData.roiType != StatisticsData::None &&
           !_rotateSelection && !_moveSelection;
}

void ImageDrawerMain::virtualMousePressEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    _last = position;
    _regionDrag = render::RegionDrag(position);
    if (!service().imageLoaded() || !_drawsRegion(event->buttons()))
        return;
    setCursor(_cursors.cross());
    const QPointF point = viewGeometry().imagePoint(position);
    const bool roundCursor =
        PressedKeys::pressed(Qt::Key_Control) || event->modifiers().testFlag(Qt::ControlModifier);
    render::NewRegion::PowderStart powder{point, 0};
    if (!roundCursor) {
        const QPoint pixel = render::NewRegion::pixelOf(point);
        powder.radius = service().computePowderRadius(pixel.x(), pixel.y());
        service().beamCentre(powder.centre.rx(), powder.centre.ry());
    }
    service().setStatisticsData(_newRegion.begin(service().statisticsData(), point, powder));
}

void ImageDrawerMain::virtualMouseMoveEvent(QMouseEvent* event)
{
    if (!service().imageLoaded())
        return;
    if (event->buttons() == Qt::NoButton)
        _hover();
    else
        _drag(event->buttons());
    _last = _cursor();
}

void ImageDrawerMain::_hover()
{
    const render::ViewGeometry geometry = viewGeometry();
    const auto handle = _statisticsData.roiActive
                            ? render::regionHandleAt(_statisticsData, geometry, _cursor())
                            : std::nullopt;
    _rotateSelection = handle && render::nextToDiameter(_statisticsData, geometry, _cursor());
    _moveSelection = handle && !_rotateSelection;
    _handle = handle.value_or(render::RegionHandle::Body);
    setMoveImage(!handle);
    if (_rotateSelection)
        setCursor(_cursors.rotation());
    else
        setCursor(handle ? _cursors.of(_handle) : _cursors.cross());
}

void ImageDrawerMain::_drag(Qt::MouseButtons buttons)
{
    if (moveImage() && buttons.testFlag(Qt::MiddleButton) &&
        plottingMode() == PlottingMode::ThreeDimensional)
        _rotatePlot(_cursor() - _last);
    if (_drawsRegion(buttons))
        _extendRegion();
    if (_rotateSelection)
        service().setStatisticsData(
            render::turned(service().statisticsData(), viewGeometry(), _cursor()));
    else if (_moveSelection)
        _moveRegion();
}

void ImageDrawerMain::_rotatePlot(QPoint move)
{
    constexpr float degreesPerPixel = 0.5F;
    ViewportData rotated = viewport();
    rotated.defined = true;
    rotated.rotationX += degreesPerPixel * static_cast<float>(move.y());
    rotated.rotationY += degreesPerPixel * static_cast<float>(move.x());
    service().setViewportData(rotated);
}

void ImageDrawerMain::_extendRegion()
{
    const QPoint pixel = render::NewRegion::pixelOf(QPointF(imgX(), imgY()));
    service().setStatisticsData(
        _newRegion.extend(service().statisticsData(), viewGeometry(), _cursor(),
                          service().computePowderRadius(pixel.x(), pixel.y())));
}

void ImageDrawerMain::_moveRegion()
{
    const StatisticsData region = service().statisticsData();
    const bool centre = region.roiType == StatisticsData::CentredCircle &&
                        _handle == render::RegionHandle::PowderCentre;
    const auto moved = centre ? render::recentred(region, viewGeometry(), _cursor())
                              : _regionDrag.move(region, viewGeometry(), _cursor(), _handle);
    if (moved)
        service().setStatisticsData(*moved);
}

const std::vector<ImageDrawerMain::Gesture>& ImageDrawerMain::gestures()
{
    static const std::vector<Gesture> all{
        {"Wheel", "Zoom in or out about the cursor"},
        {"Left drag", "Move the image"},
        {"Double click", "Between the whole image and 1:1"},
        {"Right drag", "Draw a region of the chosen kind"},
        {"Ctrl+Right drag", "Draw a powder ring around the cursor, if rings are chosen"},
        {"Drag of a region", "Move it, or the edge or corner under the cursor"},
        {"Middle drag", "Turn the height map"}};
    return all;
}

void ImageDrawerMain::virtualWheelEvent(QWheelEvent* event)
{
    const int step = render::wheelStep(event->angleDelta());
    if (!service().imageLoaded() || step == 0)
        return;
    service().setViewportData(
        render::zoomedAbout(viewport(), QPointF(imgX(), imgY()), _cursor(), step));
}

void ImageDrawerMain::mouseDoubleClickEvent(QMouseEvent* event)
{
    // It is a press too, from which a drag may follow.
    mousePressEvent(event);
    if (event->button() != Qt::LeftButton || !moveImage() || !service().imageLoaded())
        return;
    const bool fitted =
        viewport() == render::fittedViewport(viewport(), service().imageSize(), size());
    if (fitted && viewport().zoomPower != 0)
        oneToOne(event->position().toPoint());
    else
        fit();
}

void ImageDrawerMain::enterEvent(QEnterEvent* event)
{
    ImageDrawer::enterEvent(event);
    _cursorInside = true;
    // Without this the box would appear where the cursor left the view.
    if (QGuiApplication::mouseButtons() == Qt::NoButton) {
        QMouseEvent arrival(QEvent::MouseMove, event->position(), event->globalPosition(),
                            Qt::NoButton, Qt::NoButton, event->modifiers());
        mouseMoveEvent(&arrival);
    }
    repaint();
}

void ImageDrawerMain::leaveEvent(QEvent* event)
{
    ImageDrawer::leaveEvent(event);
    _cursorInside = false;
    repaint();
}
