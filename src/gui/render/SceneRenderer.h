// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Draws the image of a view by its shaders.
#pragma once

#include "gui/render/ImagePrograms.h"
#include "gui/render/ImageTextures.h"
#include "gui/render/ViewGeometry.h"

#include <QOpenGLBuffer>
#include <QOpenGLVertexArrayObject>

namespace render {

/// Programs, textures and buffers of one view in one context, which is current wherever this is
/// used, also at its end.
class SceneRenderer {
public:
    SceneRenderer();
    ~SceneRenderer();

    ImageTextures& textures() { return _textures; }
    /// Sets the uniforms of the program for a pixel type, and the tables: anew where they are
    /// missing or when the contrast is not in the course of a drag.
    void setColouring(PixelKind kind, const Colouring& colouring);
    /// Draws the visible part into the current frame buffer and viewport, and leaves no state
    /// behind that would disturb a painter.
    void drawFlat(PixelKind kind, const ViewGeometry& geometry);

private:
    ImagePrograms _programs;
    ImageTextures _textures;
    QOpenGLVertexArrayObject _vertexArray;
    QOpenGLBuffer _quadIndices{QOpenGLBuffer::IndexBuffer};
    QOpenGLBuffer _quadVertices{QOpenGLBuffer::VertexBuffer};
};

}  // namespace render
