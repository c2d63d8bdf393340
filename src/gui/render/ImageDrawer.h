// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The base of all widgets that show an image through OpenGL.
#pragma once

#include "gui/render/CpuColouring.h"
#include "gui/render/DisplayImage.h"
#include "gui/render/ReducedImages.h"
#include "gui/render/SampledColouring.h"
#include "gui/render/Surfaces.h"
#include "gui/render/geometry/ViewGeometry.h"
#include "imagelib/image/MImage.h"
#include "logic/records/ContrastData.h"
#include "logic/records/PlottingMode.h"
#include "logic/records/ViewportData.h"

#include <QColor>
#include <QElapsedTimer>
#include <QImage>
#include <QRect>
#include <QRectF>
#include <QWidget>

#include <limits>
#include <memory>

class QPainter;
class TarvikService;

namespace render {
class GlCanvas;
class SceneRenderer;
}  // namespace render

/// Shows one image of a service, coloured on the graphics card, and converts between widget and
/// image coordinates. A contrast change sets some numbers in a shader and never walks the image.
/// Without shaders the processor colours the visible part. The surface is a QOpenGLWidget that
/// fills the view; if OpenGL can't be used, or so many views have one already, there is none and
/// the view paints like any widget, by the rule of the shaders if they would be used.
///
/// A view without surface keeps no pixels but those on the screen, and lets the service pack the
/// image between looks, unless it is in use.
///
/// A view keeps no state of its own: gestures go to the service, and what its signals return is
/// shown. Positions are widget coordinates. Thread: GUI only.
class ImageDrawer : public QWidget, private render::Surfaces::Holder {
    Q_OBJECT
public:
    using MImage = morvend::imglib::MImage;

    /// Whether a view may take an OpenGL surface, see render/Surfaces.
    enum class SurfaceUse { IfThereIsOne, Never };

    /// @param service  not owned; lives as long as the view
    /// @param useGlsl  false colours on the processor even if shaders are available
    ImageDrawer(TarvikService* service, bool useGlsl, QWidget* parent = nullptr,
                SurfaceUse surfaceUse = SurfaceUse::IfThereIsOne);
    ~ImageDrawer() override;

    /// The last cursor position.
    int cursorX() const { return _cursorX; }
    int cursorY() const { return _cursorY; }
    /// Image coordinate under the cursor, or at a widget coordinate.
    double imgX() const { return imgX(_cursorX); }
    double imgY() const { return imgY(_cursorY); }
    double imgX(int x) const;
    double imgY(int y) const;
    /// Widget coordinate of an image coordinate, truncated.
    int screenX(double x) const;
    int screenY(double y) const;
    /// The visible part of the image, in image pixels; zero if there is none.
    QRectF visibleRange() const;
    /// The view in the viewport's coordinates; zero without image.
    QRectF windowToImage() const;
    /// The part of the widget that the image covers; null without image.
    QRect imageBoundary() const;
    QRect imageBoundary(const ViewportData& viewport) const;
    /// The colours of a part of the image, which must be in it (asserted): 32-bit ARGB.
    MImage rgbData(int x, int y, int width, int height) const;
    /// A picture of the whole scene, overlays included, of the widget's size times a number of
    /// pixels for each of the widget's; null before the first paint. Hides QWidget::grab(), which
    /// would take the same scene through a pixmap.
    QImage grab(double devicePixelRatio = 1.0);

    /// As for any widget, but including the surface: hide those of QWidget, which would omit it.
    void update();
    void repaint();

    PlottingMode plottingMode() const { return _plottingMode; }
    bool moveImage() const { return _moveImage; }
    /// True if a drag with the left button moves the image.
    void setMoveImage(bool move) { _moveImage = move; }
    QColor backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(const QColor& color);
    /// Whether shaders are used if available.
    bool wantsGlsl() const { return _glslWanted; }
    /// Does the user work with this view? Then its pixels stay at hand.
    void setInUse(bool inUse);
    /// Has it an OpenGL surface, see render/Surfaces?
    bool hasSurface() const { return _canvas != nullptr; }
    /// Can OpenGL draw height maps here, in this view or in another one of the same image?
    bool canPlot3d() const;
    /// True if shaders colour the image. Known once the view is initialized.
    bool usesGlsl() const { return _useGlsl && _onCard; }
    /// Limits the side of textures from the next image on, whatever the card allows.
    void limitTextureSize(int limit) { _textureLimit = limit; }

    /// The work done so far: pixels sent to the card, and pixels coloured on
    /// the processor.
    struct Work {
        int imageUploads = 0;
        int maskUploads = 0;
        int tableUploads = 0;
        std::size_t colouredPixels = 0;
    };
    Work work() const;

public slots:
    /// Takes over image and contrast of the service, and gives it a first viewport if it has none.
    virtual void newImageSlot();
    virtual void setContrastSlot(const ContrastData& contrast);
    virtual void setViewportSlot(const ViewportData& viewport);
    /// Shows the image flat on dark grey, or as a height map on black; without shaders always flat.
    void setPlottingMode(PlottingMode mode);

signals:
    /// Image coordinates; -1 and -1 when the cursor leaves the widget.
    void newCursorCoordinates(double x, double y);
    /// OpenGL is ready, with or without shaders.
    void initializedSignal();

protected:
    /// The image to show.
    virtual MImage baseImage() const = 0;
    /// Its size, without a look at the pixels.
    virtual QSize baseSize() const { return {baseImage().width(), baseImage().height()}; }
    /// Its largest pixels, which stand for it below 1:1; null for none.
    virtual std::shared_ptr<const morvend::imglib::BlockMaxima> baseMaxima() const { return {}; }
    virtual ViewportData defaultViewport() const = 0;
    /// The viewport to adopt if one is wanted.
    virtual ViewportData correctViewport(const ViewportData& wanted,
                                         const ViewportData& current) const = 0;
    /// The viewport for drawing and for coordinates.
    virtual ViewportData effectiveViewportData() const = 0;
    /// Pixels of the shown picture for each image pixel.
    virtual double imageScaleFactor() const = 0;
    /// May the pixels of the service's image be packed between looks at them?
    virtual void letPixelsBePacked(bool) {}
    /// Direction of a pan: +1 moves the image with the cursor.
    virtual int moveDirection() const = 0;

    /// Draws the rings of constant resolution, in both plotting modes, below all that paint()
    /// draws. Called only while the service has them defined and shown.
    virtual void paintRings(QPainter* painter);
    /// Draws over the image, in both plotting modes, in widget coordinates.
    virtual void paint(QPainter* painter);
    // Additions of a view to the events of the base.
    virtual void virtualMousePressEvent(QMouseEvent* event);
    virtual void virtualMouseReleaseEvent(QMouseEvent* event);
    virtual void virtualMouseMoveEvent(QMouseEvent* event);
    virtual void virtualWheelEvent(QWheelEvent* event);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;

    TarvikService& service() const { return *_service; }
    /// The view's own copy of the service's record, corrected.
    const ViewportData& viewport() const { return _viewportData; }
    /// Takes a viewport without correction.
    void adoptViewport(const ViewportData& viewport);
    const ContrastData& contrast() const { return _contrastData; }
    /// Conversions between widget and image under the effective viewport.
    render::ViewGeometry viewGeometry() const;

private slots:
    void _changedHeaderSlot();
    void _resolutionRingsSlot(bool show);
    void _maximaSlot();
    void _defectiveSlot(bool highlight);
    void _saturatedSlot(bool highlight);

private:
    render::ViewGeometry _geometry(const ViewportData& viewport) const;
    render::ViewGeometry _baseGeometry() const;
    render::Colouring _colouring() const;
    bool needsSurface() const override;
    void loseSurface() override;
    /// Takes a surface where there is one for it.
    void _takeSurface();
    /// Of many views, spread over the turns of the event loop.
    void _showSurfaceSoon();
    /// Colours the processor what shaders would?
    bool _samples() const;
    void _restPixels();
    /// What is shown at this number of screen pixels for each of the widget's.
    render::ReducedImage _reduced(double devicePixelRatio) const;
    void _takeMaxima();
    void _drawSample(QPainter& painter);
    void _sample(double devicePixelRatio);
    // Called by the canvas, with its context current.
    void _initializeGL();
    void _paintGL();
    void _releaseGL();
    void _uploadImage();
    void _makeCurrent();
    void _prepareScene();
    void _renderScene(QPainter& painter);
    void _renderNative(double devicePixelRatio);
    void _pan(const QPoint& position);

    TarvikService* _service;
    bool _initialized = false;
    bool _inUse = false;
    bool _resizing = false;
    render::DisplayImage _image;
    render::ReducedImages _reducedImages;
    render::CpuColouring _cpuColouring;
    render::SampledColouring _sampledColouring;
    ViewportData _viewportData;
    ContrastData _contrastData;
    std::unique_ptr<render::SceneRenderer> _scene;  // with shaders only
    QColor _backgroundColor = Qt::darkGray;
    PlottingMode _plottingMode = PlottingMode::Flat;
    int _cursorX = 0;
    int _cursorY = 0;
    int _lastMoveX = 0;
    int _lastMoveY = 0;
    QElapsedTimer _wheelTimer;
    bool _moveImage = true;
    const SurfaceUse _surfaceUse;
    bool _glslWanted;
    bool _useGlsl;
    bool _onCard = true;  // the image is on the card
    int _maxTextureSize = 0;
    int _textureLimit = std::numeric_limits<int>::max();
    // Null without OpenGL. Last, as its destruction releases the scene.
    std::unique_ptr<render::GlCanvas> _canvas;
};
