// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The shader programs of a view, one for each pixel type and plotting mode.
#pragma once

#include "gui/render/ImageProgram.h"

#include <QOpenGLShader>

#include <memory>

namespace render {

/// Compiled and linked in the view's context, which must be current wherever this is used. A shader
/// that does not compile is a programmer's error and ends in an assertion.
class ImagePrograms {
public:
    ImagePrograms();

    ImageProgram& get(PixelKind kind, ImageProgram::Use use) const;

private:
    std::unique_ptr<QOpenGLShader> _vertexShader;
    std::unique_ptr<ImageProgram> _glslProgram2d;
    std::unique_ptr<ImageProgram> _glslProgram2dUInt;
    std::unique_ptr<ImageProgram> _glslProgram2dFloat;
    std::unique_ptr<ImageProgram> _glslProgram3d;
    std::unique_ptr<ImageProgram> _glslProgram3dUInt;
    std::unique_ptr<ImageProgram> _glslProgram3dFloat;
};

}  // namespace render
