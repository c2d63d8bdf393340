// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The shader programs of a view, one for each pixel type.
#include "gui/render/ImagePrograms.h"

#include "gui/kit/Resources.h"
#include "logic/support/Assert.h"

#include <QFile>

namespace render {

namespace {

const char* const flatVertexSource = R"(#version 130
uniform mat4 transformationMatrix;
uniform mat4 selectRegionMatrix;
in vec2 coord2d;
out vec2 f_texcoord;
void main()
{
    vec4 coord4d = selectRegionMatrix * vec4(coord2d, 0.0, 1.0);
    gl_Position = transformationMatrix * coord4d;
    f_texcoord = coord4d.xy;
}
)";

QByteArray resourceText(const QString& name)
{
    QFile file(name);
    const bool opened = file.open(QIODevice::ReadOnly | QIODevice::Text);
    assert(opened);
    return file.readAll();
}

std::unique_ptr<ImageProgram> flatProgram(PixelKind kind, QOpenGLShader& vshader,
                                          const QString& fragmentResource)
{
    auto program = std::make_unique<QOpenGLShaderProgram>();
    // A shader must live as long as the program that it is part of.
    auto* fshader = new QOpenGLShader(QOpenGLShader::Fragment, program.get());
    const bool compiled = fshader->compileSourceCode(resourceText(fragmentResource));
    assert(compiled);
    const bool added = program->addShader(&vshader) && program->addShader(fshader);
    assert(added);
    const bool linked = program->link();
    assert(linked);
    return std::make_unique<ImageProgram>(kind, std::move(program));
}

}  // namespace

ImagePrograms::ImagePrograms()
{
    initResources();
    _vertexShader = std::make_unique<QOpenGLShader>(QOpenGLShader::Vertex);
    const bool compiled = _vertexShader->compileSourceCode(flatVertexSource);
    assert(compiled);
    _glslProgram2d =
        flatProgram(PixelKind::Int, *_vertexShader, QStringLiteral(":/fragment2d.glsl"));
    _glslProgram2dUInt =
        flatProgram(PixelKind::UInt, *_vertexShader, QStringLiteral(":/fragment2dUInt.glsl"));
    _glslProgram2dFloat =
        flatProgram(PixelKind::Float, *_vertexShader, QStringLiteral(":/fragment2dFloat.glsl"));
}

ImageProgram& ImagePrograms::flat(PixelKind kind) const
{
    switch (kind) {
    case PixelKind::UInt:
        return *_glslProgram2dUInt;
    case PixelKind::Float:
        return *_glslProgram2dFloat;
    case PixelKind::Int:
        break;
    }
    return *_glslProgram2d;
}

}  // namespace render
