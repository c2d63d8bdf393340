// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Draws the image of a view by its shaders.
#include "gui/render/SceneRenderer.h"

#include "logic/support/Assert.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <array>

namespace render {

namespace {

constexpr std::array<GLfloat, 8> quadVertices{0, 0, 1, 0, 1, 1, 0, 1};
constexpr std::array<GLuint, 6> quadIndices{0, 1, 2, 2, 3, 0};

template <class Array>
void fill(QOpenGLBuffer& buffer, const Array& values)
{
    const bool created = buffer.create() && buffer.bind();
    assert(created);
    buffer.allocate(values.data(), static_cast<int>(sizeof values));
    buffer.release();
}

}  // namespace

SceneRenderer::SceneRenderer()
{
    // Core profiles draw nothing without one; older contexts know none and need none.
    _vertexArray.create();
    fill(_quadIndices, quadIndices);
    fill(_quadVertices, quadVertices);
}

SceneRenderer::~SceneRenderer() { _textures.release(); }

void SceneRenderer::setColouring(PixelKind kind, const Colouring& colouring)
{
    if (!colouring.contrast.dragUpdate || !_textures.hasTables())
        _textures.uploadTables(*colouring.contrast.colorTable);
    ImageProgram& program = _programs.flat(kind);
    program.bind();
    program.setColouring(colouring);
    program.release();
}

void SceneRenderer::drawFlat(PixelKind kind, const ViewGeometry& geometry)
{
    QOpenGLFunctions& gl = *QOpenGLContext::currentContext()->functions();
    gl.glDisable(GL_DEPTH_TEST);
    gl.glDisable(GL_STENCIL_TEST);
    gl.glDisable(GL_SCISSOR_TEST);
    gl.glDisable(GL_CULL_FACE);
    gl.glDisable(GL_BLEND);

    ImageProgram& program = _programs.flat(kind);
    program.bind();
    _textures.bind();
    program.setScene(geometry.transformationMatrix(), geometry.selectRegionMatrix());

    const QOpenGLVertexArrayObject::Binder vertexArray(&_vertexArray);
    const auto coord2d = static_cast<GLuint>(program.coord2d());
    _quadVertices.bind();
    _quadIndices.bind();
    gl.glEnableVertexAttribArray(coord2d);
    gl.glVertexAttribPointer(coord2d, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    gl.glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(quadIndices.size()), GL_UNSIGNED_INT,
                      nullptr);
    gl.glDisableVertexAttribArray(coord2d);
    _quadVertices.release();
    _quadIndices.release();

    _textures.unbind();
    program.release();
}

}  // namespace render
