// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ImageProgram.h"

#include "gui/render/ImageTextures.h"
#include "logic/support/Assert.h"

#include <QColor>

namespace render {

ImageProgram::ImageProgram(PixelKind kind, Use use, std::unique_ptr<QOpenGLShaderProgram> program)
    : _kind(kind)
    , _program(std::move(program))
{
    _locate();
    if (use == Use::FlatImage)
        _assertFlatLocations();
}

void ImageProgram::bind() { _program->bind(); }

void ImageProgram::release() { _program->release(); }

void ImageProgram::setColouring(const Colouring& colouring)
{
    const morvend::imglib::MColorTable& table = *colouring.contrast.colorTable;
    _program->setUniformValue(_glslLinData, GLint(ImageTextures::LinearTable));
    _program->setUniformValue(_glslLogData, GLint(ImageTextures::LogarithmicTable));
    _program->setUniformValue(_glslLogDataSize, GLint(table.logDataSize()));
    _program->setUniformValue(_glslSaturatedColor, QColor(table.saturatedColor()));
    _program->setUniformValue(_glslDefectiveColor, QColor(table.defectiveColor()));
    if (colouring.saturation) {
        // The float program's cutoff is a float, which can't be set as an integer.
        if (_kind == PixelKind::Float)
            _program->setUniformValue(_glslCountCutoff, GLfloat(*colouring.saturation));
        else
            _program->setUniformValue(_glslCountCutoff, GLint(*colouring.saturation));
    }
    _program->setUniformValue(_glslHighlightSaturated, GLint(colouring.saturation ? 1 : 0));
    _program->setUniformValue(_glslHighlightDefective, GLint(colouring.highlightDefective ? 1 : 0));
    _setLevels(
        TransferFunction::of(colouring.contrast, _kind, table.linDataSize(), table.logDataSize()));
}

void ImageProgram::_setLevels(const TransferFunction& levels)
{
    const auto set = [this](int location, double level) {
        switch (_kind) {
        case PixelKind::Int:
            _program->setUniformValue(location, static_cast<GLint>(level));
            break;
        case PixelKind::UInt:
            _program->setUniformValue(location, static_cast<GLuint>(level));
            break;
        case PixelKind::Float:
            _program->setUniformValue(location, static_cast<GLfloat>(level));
            break;
        }
    };
    set(_glslForeground, levels.foreground);
    set(_glslBackground, levels.background);
    set(_glslLogForeground, levels.logForeground);
    _program->setUniformValue(_glslSlope, static_cast<GLfloat>(levels.slope));
    _program->setUniformValue(_glslLogSlope, static_cast<GLfloat>(levels.logSlope));
    _program->setUniformValue(_glslLogOffset, static_cast<GLfloat>(levels.logOffset));
}

void ImageProgram::setScene(const QMatrix4x4& transformation, const QMatrix4x4& selectRegion)
{
    _program->setUniformValue(_glslTextureImg, GLint(ImageTextures::Image));
    _program->setUniformValue(_glslTextureMask, GLint(ImageTextures::Mask));
    _program->setUniformValue(_glslTransformationMatrix, transformation);
    _program->setUniformValue(_glslSelectRegionMatrix, selectRegion);
}

void ImageProgram::setPixels(const ScreenPixels& screen, const QRect& target, const QRect& tile)
{
    constexpr QPointF half(0.5, 0.5);
    const QPoint first(screen.column(target.x()), screen.row(target.y()));
    _program->setUniformValue(_glslFirstCentre, first - tile.topLeft() + half);
    _program->setUniformValue(_glslStart, screen.remainder(target.topLeft()) + half);
    _program->setUniformValue(_glslInverseSize, 1 / GLfloat(tile.width()),
                              1 / GLfloat(tile.height()));
    _program->setUniformValue(_glslPixelStep, GLfloat(screen.step()));
    _program->setUniformValue(_glslInverseDivisor, 1 / GLfloat(screen.divisor()));
}

void ImageProgram::_locate()
{
    _glslCoord2d = _program->attributeLocation("coord2d");
    _glslTransformationMatrix = _program->uniformLocation("transformationMatrix");
    _glslSelectRegionMatrix = _program->uniformLocation("selectRegionMatrix");
    _glslTextureImg = _program->uniformLocation("textureImg");
    _glslTextureMask = _program->uniformLocation("textureMask");
    _glslFirstCentre = _program->uniformLocation("firstCentre");
    _glslStart = _program->uniformLocation("start");
    _glslPixelStep = _program->uniformLocation("pixelStep");
    _glslInverseDivisor = _program->uniformLocation("inverseDivisor");
    _glslInverseSize = _program->uniformLocation("inverseSize");
    _glslLogForeground = _program->uniformLocation("logForeground");
    _glslForeground = _program->uniformLocation("foreground");
    _glslBackground = _program->uniformLocation("background");
    _glslSlope = _program->uniformLocation("slope");
    _glslLogSlope = _program->uniformLocation("logSlope");
    _glslLogOffset = _program->uniformLocation("logOffset");
    _glslLinData = _program->uniformLocation("linData");
    _glslLogData = _program->uniformLocation("logData");
    _glslLogDataSize = _program->uniformLocation("logDataSize");
    _glslSaturatedColor = _program->uniformLocation("saturatedColor");
    _glslDefectiveColor = _program->uniformLocation("defectiveColor");
    _glslCountCutoff = _program->uniformLocation("countCutoff");
    _glslHighlightDefective = _program->uniformLocation("highlightDefective");
    _glslHighlightSaturated = _program->uniformLocation("highlightSaturated");

    // The height map uses no others, so a compiler may drop them; setting a location of -1 is
    // harmless.
    assert(_glslCoord2d != -1);
    assert(_glslTransformationMatrix != -1);
    assert(_glslSelectRegionMatrix != -1);
    assert(_glslTextureImg != -1);
    assert(_glslForeground != -1);
    assert(_glslBackground != -1);
}

void ImageProgram::_assertFlatLocations() const
{
    assert(_glslTextureMask != -1);
    assert(_glslFirstCentre != -1);
    assert(_glslStart != -1);
    assert(_glslPixelStep != -1);
    assert(_glslInverseDivisor != -1);
    assert(_glslInverseSize != -1);
    assert(_glslLinData != -1);
    assert(_glslLogData != -1);
    assert(_glslLogDataSize != -1);
    assert(_glslSaturatedColor != -1);
    assert(_glslDefectiveColor != -1);
    assert(_glslCountCutoff != -1);
    assert(_glslHighlightDefective != -1);
    assert(_glslHighlightSaturated != -1);
    assert(_glslSlope != -1);
    assert(_glslLogSlope != -1);
    assert(_glslLogOffset != -1);
    // The matrices of the vertex shader come first, so this one is not at location 0 with known
    // drivers.
    assert(_glslLogForeground);
}

}  // namespace render
