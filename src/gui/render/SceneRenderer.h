// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Draws the image of a view by its shaders.
#pragma once

#include "gui/render/ImagePrograms.h"
#include "gui/render/ImageTextures.h"
#include "gui/render/OwnContext.h"
#include "gui/render/ReducedImages.h"
#include "gui/render/geometry/ViewGeometry.h"
#include "logic/records/PlottingMode.h"

#include <QOpenGLBuffer>
#include <QOpenGLVertexArrayObject>

#include <cstdint>
#include <map>

namespace render {

/// Programs, textures and buffers of one view in one context, which must be current wherever this
/// is used; on destruction any or none may be.
class SceneRenderer {
public:
    SceneRenderer();
    ~SceneRenderer();

    ImageTextures& textures() { return _textures; }
    const ImageTextures& textures() const { return _textures; }
    /// Sets the uniforms of the program for a pixel type and a plotting mode, and the tables: again
    /// if they are missing or the contrast is not being dragged.
    void setColouring(PixelKind kind, PlottingMode mode, const Colouring& colouring);
    /// Draws the visible part into the current frame buffer and viewport, and leaves no state
    /// that would disturb a painter.
    /// @param image  the one that the textures hold
    /// @param reduced  shown in its place where it is flat; sent to the card when first drawn
    /// @param devicePixelRatio  pixels of the frame buffer for each one of the geometry's
    void draw(const DisplayImage& image, const ReducedImage& reduced, PlottingMode mode,
              const ViewGeometry& geometry, double devicePixelRatio);
    /// Deletes the textures of reduced images.
    void releaseReduced();
    /// @param limit  longest side of a texture
    void setTextureLimit(int limit) { _textureLimit = limit; }

private:
    void _drawFlat(ImageProgram& program, const ImageTextures& pixels, const ScreenPixels& screen);
    /// The textures of a reduced image; null if the card can't hold it.
    const ImageTextures* _reducedTextures(const ReducedImage& reduced);
    void _drawPlot(ImageProgram& program, const DisplayImage& image, const ViewGeometry& geometry);
    void _drawElements(const ImageProgram& program, unsigned int mode, int count,
                       QOpenGLBuffer& vertices, QOpenGLBuffer& indices);

    OwnContext _context;
    ImagePrograms _programs;
    ImageTextures _textures;
    struct Reduced {
        ImageTextures textures;
        std::uint64_t identity = 0;  ///< of the image that is in them
    };
    std::map<int, Reduced> _reduced;  // by the side of a block
    int _textureLimit = 0;
    QOpenGLVertexArrayObject _vertexArray;
    QOpenGLBuffer _quadIndices{QOpenGLBuffer::IndexBuffer};
    QOpenGLBuffer _quadVertices{QOpenGLBuffer::VertexBuffer};
    QOpenGLBuffer _gridVertices{QOpenGLBuffer::VertexBuffer};
    QOpenGLBuffer _gridLineIndices{QOpenGLBuffer::IndexBuffer};
    /// Filled but not drawn: the plot is a wire frame.
    QOpenGLBuffer _gridTriangleIndices{QOpenGLBuffer::IndexBuffer};
};

}  // namespace render
