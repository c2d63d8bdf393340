// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/SceneRenderer.h"

#include "gui/render/MeshGrid.h"
#include "gui/render/PlotSample.h"
#include "logic/support/Assert.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <array>

#ifndef GL_LINE_SMOOTH
#define GL_LINE_SMOOTH 0x0B20
#endif

namespace render {

namespace {

constexpr std::array<GLfloat, 8> quadVertices{0, 0, 1, 0, 1, 1, 0, 1};
constexpr std::array<GLuint, 6> quadIndices{0, 1, 2, 2, 3, 0};

QOpenGLFunctions& gl() { return *QOpenGLContext::currentContext()->functions(); }

template <class Values>
void fill(QOpenGLBuffer& buffer, const Values& values)
{
    const bool created = buffer.create() && buffer.bind();
    assert(created);
    buffer.allocate(values.data(), static_cast<int>(values.size() * sizeof(values[0])));
    buffer.release();
}

ImageProgram::Use useOf(PlottingMode mode)
{
    return mode == PlottingMode::ThreeDimensional ? ImageProgram::Use::HeightMap
                                                  : ImageProgram::Use::FlatImage;
}

}  // namespace

SceneRenderer::SceneRenderer()
{
    // Core profiles draw nothing without one; older contexts neither have nor need it.
    _vertexArray.create();
    fill(_quadIndices, quadIndices);
    fill(_quadVertices, quadVertices);
    fill(_gridVertices, VERTEX_GRID.vertices);
    fill(_gridLineIndices, VERTEX_GRID.lineIndices);
    fill(_gridTriangleIndices, VERTEX_GRID.triangleIndices);
}

SceneRenderer::~SceneRenderer() { _context.enter(); }

void SceneRenderer::setColouring(PixelKind kind, PlottingMode mode, const Colouring& colouring)
{
    if (!colouring.contrast.dragUpdate || !_textures.hasTables())
        _textures.uploadTables(*colouring.contrast.colorTable);
    ImageProgram& program = _programs.get(kind, useOf(mode));
    program.bind();
    program.setColouring(colouring);
    program.release();
}

const ImageTextures* SceneRenderer::_reducedTextures(const ReducedImage& reduced)
{
    Reduced& held = _reduced[reduced.side];
    const std::uint64_t identity = reduced.image->image().identity();
    if (held.identity != identity)
        held.textures.uploadImage(*reduced.image, _textureLimit);
    held.identity = identity;
    return held.textures.hasImage() ? &held.textures : nullptr;
}

void SceneRenderer::releaseReduced() { _reduced.clear(); }

void SceneRenderer::draw(const DisplayImage& image, const ReducedImage& reduced, PlottingMode mode,
                         const ViewGeometry& geometry, double devicePixelRatio)
{
    gl().glDisable(GL_STENCIL_TEST);
    gl().glDisable(GL_SCISSOR_TEST);
    gl().glDisable(GL_CULL_FACE);
    const ImageProgram::Use use = useOf(mode);
    ImageProgram& program = _programs.get(image.kind(), use);
    const bool flat = use == ImageProgram::Use::FlatImage;
    const ImageTextures* small = flat && reduced.image ? _reducedTextures(reduced) : nullptr;
    program.bind();
    if (flat)
        _drawFlat(program, small ? *small : _textures,
                  ScreenPixels(geometry.view(), geometry.viewport(), devicePixelRatio)
                      .ofBlocks(small ? reduced.side : 1));
    else
        _drawPlot(program, image, geometry);
    _textures.unbind();
    program.release();
}

void SceneRenderer::_drawFlat(ImageProgram& program, const ImageTextures& pixels,
                              const ScreenPixels& screen)
{
    gl().glDisable(GL_DEPTH_TEST);
    gl().glDisable(GL_BLEND);
    QMatrix4x4 screenToClip;
    screenToClip.ortho(QRect(QPoint(), screen.size()));
    _textures.bindTables();
    for (std::size_t i = 0; i < pixels.tiles().size(); ++i) {
        const QRect& tile = pixels.tiles()[i];
        const QRect target = screen.showing(tile);
        if (target.isEmpty())
            continue;
        pixels.bindPixels(i);
        // The quad covers whole pixels of the screen: their centres are far from its edges, so that
        // no rounding decides which are drawn.
        QMatrix4x4 targetToClip = screenToClip;
        targetToClip.translate(float(target.x()), float(target.y()));
        QMatrix4x4 quadToTarget;
        quadToTarget.scale(float(target.width()), float(target.height()));
        program.setScene(targetToClip, quadToTarget);
        program.setPixels(screen, target, tile);
        _drawElements(program, GL_TRIANGLES, static_cast<int>(quadIndices.size()), _quadVertices,
                      _quadIndices);
    }
}

void SceneRenderer::_drawPlot(ImageProgram& program, const DisplayImage& image,
                              const ViewGeometry& geometry)
{
    const QRectF visible = geometry.visibleRange();
    if (visible.isEmpty())
        return;
    _textures.bind(0);
    if (_textures.tiles().size() == 1) {
        program.setScene(geometry.plotMatrix(), geometry.selectRegionMatrix());
    } else {
        // The mesh reads one texture, so its pixels are picked out of the whole image here.
        _textures.bindSample(plotSample(image.image(), visible));
        program.setScene(geometry.plotMatrix() * geometry.selectRegionMatrix(), {});
    }
    gl().glEnable(GL_DEPTH_TEST);
    gl().glEnable(GL_BLEND);
    // Smooth lines blend their colours, but the picture stays opaque.
    gl().glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    gl().glEnable(GL_LINE_SMOOTH);
    _drawElements(program, GL_LINES, static_cast<int>(VERTEX_GRID.lineIndices.size()),
                  _gridVertices, _gridLineIndices);
    gl().glDisable(GL_LINE_SMOOTH);
    gl().glDisable(GL_BLEND);
    gl().glDisable(GL_DEPTH_TEST);
}

void SceneRenderer::_drawElements(const ImageProgram& program, unsigned int mode, int count,
                                  QOpenGLBuffer& vertices, QOpenGLBuffer& indices)
{
    const QOpenGLVertexArrayObject::Binder vertexArray(&_vertexArray);
    const auto coord2d = static_cast<GLuint>(program.coord2d());
    vertices.bind();
    indices.bind();
    gl().glEnableVertexAttribArray(coord2d);
    gl().glVertexAttribPointer(coord2d, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    gl().glDrawElements(mode, count, GL_UNSIGNED_INT, nullptr);
    gl().glDisableVertexAttribArray(coord2d);
    vertices.release();
    indices.release();
}

}  // namespace render
