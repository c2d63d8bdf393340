// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One shader program that colours images, with its uniforms.
#pragma once

#include "gui/render/Colouring.h"
#include "gui/render/PixelKind.h"
#include "gui/render/ScreenPixels.h"
#include "gui/render/TransferFunction.h"

#include <QMatrix4x4>
#include <QOpenGLShaderProgram>

#include <memory>

namespace render {

/// A linked program for one pixel type. Use it only with the view's context current.
class ImageProgram {
public:
    enum class Use { FlatImage, HeightMap };

    /// @param program  linked; the uniforms of its use must be in it (asserted): all of them for
    /// the flat image, those of matrices, image and levels for the height map
    ImageProgram(PixelKind kind, Use use, std::unique_ptr<QOpenGLShaderProgram> program);

    void bind();
    void release();

    // Call these with the program bound:
    /// Levels, table sizes and special colours.
    void setColouring(const Colouring& colouring);
    /// Matrices and texture units, as ImageTextures binds them.
    void setScene(const QMatrix4x4& transformation, const QMatrix4x4& selectRegion);
    /// Where the pixels of the bound tile are drawn, for the flat image.
    /// @param target  the screen pixels of the quad
    /// @param tile  in pixels of the image
    void setPixels(const ScreenPixels& screen, const QRect& target, const QRect& tile);
    /// The attribute for the vertices, two floats each.
    int coord2d() const { return _glslCoord2d; }

private:
    void _locate();
    void _assertFlatLocations() const;
    void _setLevels(const TransferFunction& levels);

    PixelKind _kind;
    std::unique_ptr<QOpenGLShaderProgram> _program;
    int _glslCoord2d = -1;
    int _glslTransformationMatrix = -1;
    int _glslSelectRegionMatrix = -1;
    int _glslTextureImg = -1;
    int _glslTextureMask = -1;
    int _glslFirstCentre = -1;
    int _glslStart = -1;
    int _glslPixelStep = -1;
    int _glslInverseDivisor = -1;
    int _glslInverseSize = -1;
    int _glslLogForeground = -1;
    int _glslForeground = -1;
    int _glslBackground = -1;
    int _glslSlope = -1;
    int _glslLogSlope = -1;
    int _glslLogOffset = -1;
    int _glslLinData = -1;
    int _glslLogData = -1;
    int _glslLogDataSize = -1;
    int _glslSaturatedColor = -1;
    int _glslDefectiveColor = -1;
    int _glslCountCutoff = -1;
    int _glslHighlightDefective = -1;
    int _glslHighlightSaturated = -1;
};

}  // namespace render
