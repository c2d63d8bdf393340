// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ImagePrograms.h"

#include "gui/render/ShaderSource.h"
#include "logic/support/Assert.h"

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

/// A shader must live as long as the program that it is part of.
void addShader(QOpenGLShaderProgram& program, QOpenGLShader::ShaderType type,
               const QString& resource)
{
    auto* shader = new QOpenGLShader(type, &program);
    const bool added =
        shader->compileSourceCode(shaderSource(resource)) && program.addShader(shader);
    assert(added);
}

std::unique_ptr<ImageProgram> linked(PixelKind kind, ImageProgram::Use use,
                                     std::unique_ptr<QOpenGLShaderProgram> program)
{
    const bool linked = program->link();
    assert(linked);
    return std::make_unique<ImageProgram>(kind, use, std::move(program));
}

std::unique_ptr<ImageProgram> flatProgram(PixelKind kind, QOpenGLShader& vshader,
                                          const QString& fragmentResource)
{
    auto program = std::make_unique<QOpenGLShaderProgram>();
    const bool added = program->addShader(&vshader);
    assert(added);
    addShader(*program, QOpenGLShader::Fragment, fragmentResource);
    return linked(kind, ImageProgram::Use::FlatImage, std::move(program));
}

std::unique_ptr<ImageProgram> plotProgram(PixelKind kind, const QString& vertexResource,
                                          const QString& fragmentResource)
{
    auto program = std::make_unique<QOpenGLShaderProgram>();
    addShader(*program, QOpenGLShader::Vertex, vertexResource);
    addShader(*program, QOpenGLShader::Fragment, fragmentResource);
    return linked(kind, ImageProgram::Use::HeightMap, std::move(program));
}

}  // namespace

ImagePrograms::ImagePrograms()
{
    _vertexShader = std::make_unique<QOpenGLShader>(QOpenGLShader::Vertex);
    const bool compiled = _vertexShader->compileSourceCode(flatVertexSource);
    assert(compiled);
    _glslProgram2d =
        flatProgram(PixelKind::Int, *_vertexShader, QStringLiteral(":/fragment2d.glsl"));
    _glslProgram2dUInt =
        flatProgram(PixelKind::UInt, *_vertexShader, QStringLiteral(":/fragment2dUInt.glsl"));
    _glslProgram2dFloat =
        flatProgram(PixelKind::Float, *_vertexShader, QStringLiteral(":/fragment2dFloat.glsl"));
    _glslProgram3d = plotProgram(PixelKind::Int, QStringLiteral(":/vertex3d.glsl"),
                                 QStringLiteral(":/fragment3d.glsl"));
    _glslProgram3dUInt = plotProgram(PixelKind::UInt, QStringLiteral(":/vertex3dUInt.glsl"),
                                     QStringLiteral(":/fragment3dUInt.glsl"));
    _glslProgram3dFloat = plotProgram(PixelKind::Float, QStringLiteral(":/vertex3dFloat.glsl"),
                                      QStringLiteral(":/fragment3dFloat.glsl"));
}

ImageProgram& ImagePrograms::get(PixelKind kind, ImageProgram::Use use) const
{
    const bool flat = use == ImageProgram::Use::FlatImage;
    switch (kind) {
    case PixelKind::UInt:
        return flat ? *_glslProgram2dUInt : *_glslProgram3dUInt;
    case PixelKind::Float:
        return flat ? *_glslProgram2dFloat : *_glslProgram3dFloat;
    case PixelKind::Int:
        break;
    }
    return flat ? *_glslProgram2d : *_glslProgram3d;
}

}  // namespace render
