// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The base of all widgets that show an image through OpenGL.
#include "gui/imagedrawer.h"

#include "gui/render/GlInfo.h"
#include "gui/render/SceneRenderer.h"
#include "gui/render/gestures/ZoomPan.h"
#include "logic/TarvikService.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLPaintDevice>
#include <QPainter>
#include <QWheelEvent>

namespace {

/// Milliseconds between two wheel events that both count.
constexpr qint64 wheelPause = 20;

}  // namespace

ImageDrawer::ImageDrawer(TarvikService* service, bool useGlsl, QWidget* parent)
    : QOpenGLWidget(parent)
    , _service(service)
    , _viewportData(service->viewportData())
    , _contrastData(service->contrastData())
    , _glslWanted(useGlsl)
    , _useGlsl(useGlsl)
{
    setMouseTracking(true);
    setAutoFillBackground(false);
    _wheelTimer.start();
    connect(service, &TarvikService::newImageSignal, this, &ImageDrawer::newImageSlot);
    connect(service, &TarvikService::headerChangedSignal, this, &ImageDrawer::_changedHeaderSlot);
    connect(service, &TarvikService::newContrastSignal, this, &ImageDrawer::setContrastSlot);
    connect(service, &TarvikService::newViewportSignal, this, &ImageDrawer::setViewportSlot);
    connect(service, &TarvikService::resolutionRingsSignal, this,
            &ImageDrawer::_resolutionRingsSlot);
    connect(service, &TarvikService::defectiveSignal, this, &ImageDrawer::_defectiveSlot);
    connect(service, &TarvikService::saturatedSignal, this, &ImageDrawer::_saturatedSlot);
}

ImageDrawer::~ImageDrawer() { _releaseContext(); }

double ImageDrawer::imgX(int x) const { return viewGeometry().imageX(x); }

double ImageDrawer::imgY(int y) const { return viewGeometry().imageY(y); }

int ImageDrawer::screenX(double x) const { return viewGeometry().screenX(x); }

int ImageDrawer::screenY(double y) const { return viewGeometry().screenY(y); }

QRectF ImageDrawer::visibleRange() const { return viewGeometry().visibleRange(); }

QRectF ImageDrawer::windowToImage() const { return viewGeometry().windowToImage(); }

QRect ImageDrawer::imageBoundary() const { return imageBoundary(effectiveViewportData()); }

QRect ImageDrawer::imageBoundary(const ViewportData& viewport) const
{
    return _geometry(viewport).imageBoundary();
}

ImageDrawer::MImage ImageDrawer::rgbData(int x, int y, int width, int height) const
{
    return render::CpuColouring::rgb(_image, _colouring(), QRect(x, y, width, height));
}

QImage ImageDrawer::grab()
{
    if (!_initialized)
        return {};
    makeCurrent();
    _prepareScene();
    QOpenGLFramebufferObject buffer(size(), QOpenGLFramebufferObject::CombinedDepthStencil,
                                    GL_TEXTURE_2D, GL_RGBA8);
    buffer.bind();
    {
        QOpenGLPaintDevice device(size());
        QPainter painter(&device);
        _renderScene(painter);
    }
    QImage picture = buffer.toImage();
    buffer.release();
    doneCurrent();
    return picture;
}

void ImageDrawer::setBackgroundColor(const QColor& color)
{
    _backgroundColor = color;
    update();
}

void ImageDrawer::newImageSlot()
{
    if (!_initialized || !_service->imageLoaded())
        return;
    _image = render::DisplayImage(baseImage());
    _cpuColouring.invalidate();
    // A picture that the card can't hold is left to the processor.
    const bool fits = std::max(_image.size().width(), _image.size().height()) <= _maxTextureSize;
    makeCurrent();
    if (_scene) {
        _scene->textures().release();
        _useGlsl = fits;
    }
    if (_useGlsl) {
        QElapsedTimer clock;
        clock.start();
        _scene->textures().uploadImage(_image);
        console::printTime("TIME UPLOADING IMAGE AND MASK TO GPU:", clock.elapsed());
    }
    const ContrastData contrast = _service->contrastData();
    if (contrast.defined)
        setContrastSlot(contrast);
    else
        _service->setContrastData(defaultContrast());
    const ViewportData viewport = _service->viewportData();
    if (viewport.defined)
        setViewportSlot(viewport);
    else
        _service->setViewportData(defaultViewport());
    emit newCursorCoordinates(imgX(), imgY());
    update();
}

void ImageDrawer::setContrastSlot(const ContrastData& contrast)
{
    if (!_service->imageLoaded() || !_initialized || _image.empty())
        return;
    _contrastData = contrast;
    _cpuColouring.invalidate();
    if (_useGlsl && _scene->textures().hasImage()) {
        makeCurrent();
        const auto* c = contrast.colorTable;
        assert(c);
        _scene->setColouring(_image.kind(), _colouring());
    }
    update();
}

void ImageDrawer::setViewportSlot(const ViewportData& viewport)
{
    _viewportData = correctViewport(viewport, _viewportData);
    update();
}

void ImageDrawer::setPlottingMode(PlottingMode mode)
{
    _plottingMode = mode;
    if (mode == PlottingMode::Flat)
        setBackgroundColor(Qt::darkGray);
    else if (mode == PlottingMode::ThreeDimensional)
        setBackgroundColor(Qt::black);
    setContrastSlot(_contrastData);
}

void ImageDrawer::paintRings(QPainter*) {}
void ImageDrawer::paint(QPainter*) {}
void ImageDrawer::virtualMousePressEvent(QMouseEvent*) {}
void ImageDrawer::virtualMouseReleaseEvent(QMouseEvent*) {}
void ImageDrawer::virtualMouseMoveEvent(QMouseEvent*) {}
void ImageDrawer::virtualWheelEvent(QWheelEvent*) {}

void ImageDrawer::initializeGL()
{
    // A view that moved to a window with a context of its own starts anew.
    _releaseContext();
    _initialized = true;
    _contextEnd = connect(context(), &QOpenGLContext::aboutToBeDestroyed, this,
                          &ImageDrawer::_releaseContext);
    const render::GlInfo info = render::GlInfo::ofCurrentContext();
    console::print(info.lines());
    _maxTextureSize = info.maxTextureSize;
    _useGlsl = _glslWanted && info.glslPossible();
    if (_useGlsl)
        _scene = std::make_unique<render::SceneRenderer>();
    emit initializedSignal();
}

void ImageDrawer::paintGL()
{
    // The size is a passing one while windows are being laid out: no first viewport for it.
    if (!_initialized || _resizing)
        return;
    _prepareScene();
    QPainter painter(this);
    _renderScene(painter);
}

void ImageDrawer::resizeEvent(QResizeEvent* event)
{
    _resizing = true;
    QOpenGLWidget::resizeEvent(event);
    _resizing = false;
    setViewportSlot(_viewportData);
}

void ImageDrawer::mousePressEvent(QMouseEvent* event)
{
    _lastMoveX = event->position().toPoint().x();
    _lastMoveY = event->position().toPoint().y();
    virtualMousePressEvent(event);
    // The press goes on to the frame, which takes the focus.
    event->ignore();
}

void ImageDrawer::mouseReleaseEvent(QMouseEvent* event) { virtualMouseReleaseEvent(event); }

void ImageDrawer::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    _cursorX = position.x();
    _cursorY = position.y();
    virtualMouseMoveEvent(event);
    if (_service->imageLoaded()) {
        emit newCursorCoordinates(imgX(), imgY());
        if (_moveImage && event->buttons().testFlag(Qt::LeftButton))
            _pan(position);
    }
    update();
}

void ImageDrawer::_pan(const QPoint& position)
{
    const QPoint drag = position - QPoint(_lastMoveX, _lastMoveY);
    _lastMoveX = position.x();
    _lastMoveY = position.y();
    _service->setViewportData(
        render::panned(effectiveViewportData(), drag, imageScaleFactor(), moveDirection()));
}

void ImageDrawer::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (_wheelTimer.restart() < wheelPause)
        return;
    virtualWheelEvent(event);
    update();
}

void ImageDrawer::leaveEvent(QEvent* event)
{
    QOpenGLWidget::leaveEvent(event);
    emit newCursorCoordinates(-1.0, -1.0);
}

void ImageDrawer::_changedHeaderSlot() { update(); }

void ImageDrawer::_resolutionRingsSlot(bool) { update(); }

void ImageDrawer::_defectiveSlot(bool) { newImageSlot(); }

void ImageDrawer::_saturatedSlot(bool) { newImageSlot(); }

render::ViewGeometry ImageDrawer::viewGeometry() const
{
    return _geometry(effectiveViewportData());
}

render::ViewGeometry ImageDrawer::_geometry(const ViewportData& viewport) const
{
    return {_image.size(), size(), viewport, imageScaleFactor()};
}

render::Colouring ImageDrawer::_colouring() const
{
    render::Colouring colouring{_contrastData, {}, _service->highlightDefective()};
    const auto& saturation = _image.image().optionalData().saturation_value();
    if (_service->highlightSaturated() && saturation)
        colouring.saturation = *saturation;
    return colouring;
}

void ImageDrawer::_prepareScene()
{
    // An image that came before the view was ready, or a new context.
    if (_service->imageLoaded() && (_image.empty() || (_useGlsl && !_scene->textures().hasImage())))
        newImageSlot();
}

void ImageDrawer::_renderScene(QPainter& painter)
{
    painter.beginNativePainting();
    _renderNative(painter.device()->devicePixelRatioF());
    painter.endNativePainting();
    if (!_service->imageLoaded() || _image.empty())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    if (!_useGlsl && _contrastData.colorTable)
        _cpuColouring.draw(painter, _image, _colouring(), visibleRange(), imageBoundary());
    if (_service->resolutionDefined() && _service->showResolutionRings())
        paintRings(&painter);
    paint(&painter);
}

void ImageDrawer::_renderNative(double devicePixelRatio)
{
    QOpenGLFunctions& gl = *QOpenGLContext::currentContext()->functions();
    gl.glViewport(0, 0, qRound(width() * devicePixelRatio), qRound(height() * devicePixelRatio));
    gl.glClearColor(static_cast<float>(_backgroundColor.redF()),
                    static_cast<float>(_backgroundColor.greenF()),
                    static_cast<float>(_backgroundColor.blueF()), 1.0F);
    gl.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (_useGlsl && _scene->textures().hasImage() && _scene->textures().hasTables())
        _scene->drawFlat(_image.kind(), viewGeometry());
}

void ImageDrawer::_releaseContext()
{
    disconnect(_contextEnd);
    if (_initialized) {
        makeCurrent();
        _scene.reset();
        doneCurrent();
    }
    _initialized = false;
}
