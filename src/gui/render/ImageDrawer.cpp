// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ImageDrawer.h"

#include "gui/render/GlCanvas.h"
#include "gui/render/OpenGlSupport.h"
#include "gui/render/SceneRenderer.h"
#include "gui/render/gestures/ZoomPan.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Console.h"
#include "logic/support/PacedCalls.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLPaintDevice>
#include <QPainter>
#include <QPointer>
#include <QSet>
#include <QWheelEvent>
#include <QWindow>

namespace {

/// Milliseconds between two wheel events that both count.
constexpr qint64 WheelPause = 20;

}  // namespace

ImageDrawer::ImageDrawer(TarvikService* service, bool useGlsl, QWidget* parent,
                         SurfaceUse surfaceUse)
    : QWidget(parent)
    , _service(service)
    , _viewportData(service->viewportData())
    , _contrastData(service->contrastData())
    , _surfaceUse(surfaceUse)
    , _glslWanted(useGlsl)
    , _useGlsl(useGlsl)
{
    setMouseTracking(true);
    setAutoFillBackground(false);
    _wheelTimer.start();
    _takeSurface();
    connect(service, &TarvikService::newImageSignal, this, &ImageDrawer::newImageSlot);
    connect(service, &TarvikService::headerChangedSignal, this, &ImageDrawer::_changedHeaderSlot);
    connect(service, &TarvikService::newContrastSignal, this, &ImageDrawer::setContrastSlot);
    connect(service, &TarvikService::newViewportSignal, this, &ImageDrawer::setViewportSlot);
    connect(service, &TarvikService::resolutionRingsSignal, this,
            &ImageDrawer::_resolutionRingsSlot);
    connect(service, &TarvikService::defectiveSignal, this, &ImageDrawer::_defectiveSlot);
    connect(service, &TarvikService::blockMaximaSignal, this, &ImageDrawer::_maximaSlot);
    connect(service, &TarvikService::saturatedSignal, this, &ImageDrawer::_saturatedSlot);
}

ImageDrawer::~ImageDrawer() { render::Surfaces::ofThisProcess().giveBack(*this); }

bool ImageDrawer::needsSurface() const
{
    return _glslWanted && _plottingMode == PlottingMode::ThreeDimensional;
}

void ImageDrawer::_takeSurface()
{
    if (_canvas || _surfaceUse == SurfaceUse::Never ||
        !render::OpenGlSupport::ofThisProcess().usable ||
        !render::Surfaces::ofThisProcess().take(*this))
        return;
    _initialized = false;  // until there is a context
    _sampledColouring.forget();
    _canvas = std::make_unique<render::GlCanvas>(
        this, render::GlCanvas::Client{[this] { _initializeGL(); }, [this] { _paintGL(); },
                                       [this] { _releaseGL(); }});
    _canvas->lower();  // below the lines of text
    _canvas->resize(size().expandedTo(QSize(1, 1)));
    _canvas->hide();
    _showSurfaceSoon();
    _restPixels();
}

void ImageDrawer::_showSurfaceSoon()
{
    // Only then it gets its context, which takes long.
    if (!_canvas || !_canvas->isHidden() || !isVisible())
        return;
    PacedCalls::ofThisProcess().call(this, [this] {
        if (_canvas && isVisible())
            _canvas->show();
    });
}

void ImageDrawer::loseSurface()
{
    _canvas.reset();
    _restPixels();
    update();
}

void ImageDrawer::setInUse(bool inUse)
{
    _inUse = inUse;
    _restPixels();
}

void ImageDrawer::_restPixels() { letPixelsBePacked(_samples() && !_inUse); }

double ImageDrawer::imgX(int x) const { return viewGeometry().imageX(x); }

double ImageDrawer::imgY(int y) const { return viewGeometry().imageY(y); }

int ImageDrawer::screenX(double x) const { return viewGeometry().screenX(x); }

int ImageDrawer::screenY(double y) const { return viewGeometry().screenY(y); }

QRectF ImageDrawer::visibleRange() const { return _baseGeometry().visibleRange(); }

QRectF ImageDrawer::windowToImage() const { return _baseGeometry().windowToImage(); }

QRect ImageDrawer::imageBoundary() const { return imageBoundary(effectiveViewportData()); }

QRect ImageDrawer::imageBoundary(const ViewportData& viewport) const
{
    return _geometry(viewport).imageBoundary();
}

ImageDrawer::MImage ImageDrawer::rgbData(int x, int y, int width, int height) const
{
    return render::CpuColouring::rgb(_image.hasPixels() ? _image
                                                        : render::DisplayImage(baseImage()),
                                     _colouring(), QRect(x, y, width, height));
}

QImage ImageDrawer::grab(double devicePixelRatio)
{
    const QSize pixels(qRound(width() * devicePixelRatio), qRound(height() * devicePixelRatio));
    if (!_initialized || pixels.isEmpty())
        return {};
    _prepareScene();
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    if (_canvas) {
        QOpenGLFramebufferObject buffer(pixels, QOpenGLFramebufferObject::CombinedDepthStencil,
                                        GL_TEXTURE_2D, GL_RGBA8);
        buffer.bind();
        QOpenGLPaintDevice device(pixels);
        device.setDevicePixelRatio(devicePixelRatio);
        QPainter painter(&device);
        _renderScene(painter);
        painter.end();
        picture = buffer.toImage();
        buffer.release();
        _canvas->doneCurrent();
    } else {
        picture.setDevicePixelRatio(devicePixelRatio);
        QPainter painter(&picture);
        _renderScene(painter);
    }
    picture.setDevicePixelRatio(devicePixelRatio);
    return picture;
}

void ImageDrawer::update()
{
    if (_canvas)
        _canvas->update();
    else
        QWidget::update();
}

void ImageDrawer::repaint()
{
    if (_canvas)
        _canvas->repaint();
    else
        QWidget::repaint();
}

ImageDrawer::Work ImageDrawer::work() const
{
    Work work;
    work.colouredPixels = _cpuColouring.colouredPixels() + _sampledColouring.colouredPixels();
    if (_scene) {
        const render::ImageTextures::Uploads& uploads = _scene->textures().uploads();
        work.imageUploads = uploads.images;
        work.maskUploads = uploads.masks;
        work.tableUploads = uploads.tables;
    }
    return work;
}

void ImageDrawer::setBackgroundColor(const QColor& color)
{
    _backgroundColor = color;
    update();
}

void ImageDrawer::newImageSlot()
{
    if (!_service->imageLoaded())
        return;
    if (!_initialized)
        return _restPixels();
    _image = render::DisplayImage(baseImage());
    _cpuColouring.invalidate();
    _takeMaxima();
    if (_useGlsl)
        _uploadImage();
    setContrastSlot(_service->contrastData());
    const ViewportData viewport = _service->viewportData();
    if (viewport.defined)
        setViewportSlot(viewport);
    else
        _service->setViewportData(defaultViewport());
    emit newCursorCoordinates(imgX(), imgY());
    if (_samples() && !size().isEmpty())
        _sample(devicePixelRatioF());
    update();
}

bool ImageDrawer::canPlot3d() const
{
    const render::OpenGlSupport& openGl = render::OpenGlSupport::ofThisProcess();
    return _glslWanted && openGl.usable && openGl.info->glslPossible();
}

bool ImageDrawer::_samples() const { return !_canvas && canPlot3d(); }

void ImageDrawer::_sample(double devicePixelRatio)
{
    const ViewportData viewport = effectiveViewportData();
    if (_sampledColouring.holds(viewport, size(), devicePixelRatio))
        return;
    const render::ReducedImage reduced = _reduced(devicePixelRatio);
    if (!reduced.image && !_image.hasPixels())
        _image = render::DisplayImage(baseImage());
    _sampledColouring.take(reduced.image ? *reduced.image : _image, viewport, size(),
                           devicePixelRatio, reduced.side);
    if (_samples())
        _image.letPixelsGo();
    _restPixels();
}

render::ReducedImage ImageDrawer::_reduced(double devicePixelRatio) const
{
    return _reducedImages.forScale(effectiveViewportData().zoom() * devicePixelRatio);
}

void ImageDrawer::_takeMaxima()
{
    _reducedImages = render::ReducedImages(baseMaxima());
    _sampledColouring.forget();
}

void ImageDrawer::_maximaSlot()
{
    _takeMaxima();
    if (_scene && !baseMaxima()) {
        _makeCurrent();
        _scene->releaseReduced();
    }
    update();
}

void ImageDrawer::_drawSample(QPainter& painter)
{
    _sample(painter.device()->devicePixelRatioF());
    _sampledColouring.draw(painter, _colouring());
}

void ImageDrawer::_uploadImage()
{
    _makeCurrent();
    QElapsedTimer clock;
    clock.start();
    const int limit = std::min(_maxTextureSize, _textureLimit);
    _scene->setTextureLimit(limit);
    _onCard = _scene->textures().uploadImage(_image, limit);
    console::printTime("TIME UPLOADING IMAGE AND MASK TO GPU:", clock.elapsed());
    if (!_onCard && !_image.empty())
        console::warn("WARNING: The graphics card can't hold an image of " +
                      std::to_string(_image.size().width()) + " x " +
                      std::to_string(_image.size().height()) + " pixels: the processor draws it\n");
}

void ImageDrawer::setContrastSlot(const ContrastData& contrast)
{
    if (!_service->imageLoaded() || !_initialized || _image.empty())
        return;
    _contrastData = contrast;
    _cpuColouring.invalidate();
    _sampledColouring.invalidate();
    if (usesGlsl() && _scene->textures().hasImage()) {
        _makeCurrent();
        _scene->setColouring(_image.kind(), _plottingMode, _colouring());
    }
    update();
}

void ImageDrawer::setViewportSlot(const ViewportData& viewport)
{
    adoptViewport(correctViewport(viewport, _viewportData));
}

void ImageDrawer::adoptViewport(const ViewportData& viewport)
{
    _viewportData = viewport;
    update();
}

void ImageDrawer::setPlottingMode(PlottingMode mode)
{
    _plottingMode = mode;
    if (needsSurface())
        _takeSurface();
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

void ImageDrawer::_initializeGL()
{
    _initialized = true;
    const render::GlInfo info = render::GlInfo::ofCurrentContext();
    console::print(info.lines());
    _maxTextureSize = info.maxTextureSize;
    _useGlsl = _glslWanted && info.glslPossible();
    if (_useGlsl)
        _scene = std::make_unique<render::SceneRenderer>();
    emit initializedSignal();
}

void ImageDrawer::_releaseGL()
{
    _scene.reset();
    _initialized = false;
}

void ImageDrawer::_paintGL()
{
    // While windows are being laid out the size is temporary: no first viewport for it.
    if (!_initialized || _resizing || size().isEmpty())
        return;
    _prepareScene();
    QPainter painter(_canvas.get());
    _renderScene(painter);
}

void ImageDrawer::paintEvent(QPaintEvent*)
{
    if (_canvas && _canvas->isHidden())
        QPainter(this).fillRect(rect(), _backgroundColor);
    if (_canvas || size().isEmpty())
        return;
    if (!_initialized) {
        _initialized = true;
        _useGlsl = false;
        if (const auto& info = render::OpenGlSupport::ofThisProcess().info)
            console::print(info->lines());
        emit initializedSignal();
    }
    _prepareScene();
    QPainter painter(this);
    _renderScene(painter);
}

void ImageDrawer::resizeEvent(QResizeEvent* event)
{
    _resizing = true;
    QWidget::resizeEvent(event);
    _takeSurface();
    // Qt shows black for ever if a QOpenGLWidget has ever been resized to nothing.
    if (_canvas)
        _canvas->resize(size().expandedTo(QSize(1, 1)));
    _resizing = false;
    update();
}

void ImageDrawer::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    _showSurfaceSoon();
    if (QWindow* handle = window()->windowHandle(); handle && _canvas)
        handle->installEventFilter(this);
}

bool ImageDrawer::eventFilter(QObject* watched, QEvent* event)
{
    // An update requested while the window was hidden stays pending, and later ones are
    // merged into it: only a repaint of a visible window ends this. One serves all views.
    static QSet<const QObject*> repainting;
    if (event->type() == QEvent::Expose && watched == window()->windowHandle()) {
        update();
        if (!repainting.contains(watched)) {
            repainting.insert(watched);
            QMetaObject::invokeMethod(
                qApp,
                [watched, view = QPointer(this)] {
                    repainting.remove(watched);
                    if (view)
                        view->repaint();
                },
                Qt::QueuedConnection);
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ImageDrawer::mousePressEvent(QMouseEvent* event)
{
    _lastMoveX = event->position().toPoint().x();
    _lastMoveY = event->position().toPoint().y();
    virtualMousePressEvent(event);
    // The press is passed on to the frame, which takes the focus.
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
    const double pixelSize = effectiveViewportData().zoom() * imageScaleFactor();
    _service->setViewportData(render::panned(_viewportData, drag, pixelSize, moveDirection()));
}

void ImageDrawer::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (_wheelTimer.restart() < WheelPause)
        return;
    virtualWheelEvent(event);
    update();
}

void ImageDrawer::leaveEvent(QEvent* event)
{
    QWidget::leaveEvent(event);
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

render::ViewGeometry ImageDrawer::_baseGeometry() const
{
    const QSize image = _service->imageLoaded() ? baseSize() : QSize();
    return {image, size(), effectiveViewportData(), imageScaleFactor()};
}

render::Colouring ImageDrawer::_colouring() const
{
    render::Colouring colouring{_contrastData, {}, _service->highlightDefective()};
    const auto*& table = colouring.contrast.colorTable;
    if (!table)
        table = _service->defaultColorTable();
    if (!table)
        table = morvend::imglib::MColorTable::hdr();
    if (_service->highlightSaturated())
        colouring.saturation = _image.saturation();
    return colouring;
}

void ImageDrawer::_makeCurrent()
{
    if (_canvas)
        _canvas->makeCurrent();
}

void ImageDrawer::_prepareScene()
{
    // An image that came before the view was ready, or a new context.
    const bool onCard = !usesGlsl() || _scene->textures().hasImage();
    // The reduced picture of a very long image is empty, and stays empty.
    if (_service->imageLoaded() && (_image.empty() || !onCard) && !baseSize().isEmpty())
        newImageSlot();
    // Other views that received the signal have made their contexts current.
    _makeCurrent();
}

void ImageDrawer::_renderScene(QPainter& painter)
{
    if (_canvas) {
        painter.beginNativePainting();
        _renderNative(painter.device()->devicePixelRatioF());
        painter.endNativePainting();
    } else {
        painter.fillRect(rect(), _backgroundColor);
    }
    if (!_service->imageLoaded() || _image.empty())
        return;
    const bool reduced = _reduced(painter.device()->devicePixelRatioF()).image != nullptr;
    if (_samples() || (!usesGlsl() && reduced))
        _drawSample(painter);
    else if (!usesGlsl())
        _cpuColouring.draw(painter, _image, _colouring(), effectiveViewportData(), size());
    painter.setRenderHint(QPainter::Antialiasing);
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
    if (usesGlsl() && _scene->textures().hasImage() && _scene->textures().hasTables())
        _scene->draw(_image, _reduced(devicePixelRatio), _plottingMode, viewGeometry(),
                     devicePixelRatio);
}
