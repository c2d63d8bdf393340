// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The shader programs of a view, one for each pixel type.
#pragma once

#include "gui/render/ImageProgram.h"

#include <QOpenGLShader>

#include <memory>

namespace render {

/// Compiled and linked in the view's context, which is current wherever this is used. A shader
/// that does not compile is a programmer's error and ends in an assertion.
class ImagePrograms {
public:
    ImagePrograms();

    ImageProgram& flat(PixelKind kind) const;

private:
    std::unique_ptr<QOpenGLShader> _vertexShader;
    std::unique_ptr<ImageProgram> _glslProgram2d;
    std::unique_ptr<ImageProgram> _glslProgram2dUInt;
    std::unique_ptr<ImageProgram> _glslProgram2dFloat;
};

}  // namespace render
