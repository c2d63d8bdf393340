// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/GlInfo.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <cstdio>

namespace render {

namespace {

std::string text(QOpenGLFunctions& gl, GLenum name)
{
    const GLubyte* value = gl.glGetString(name);
    return value ? reinterpret_cast<const char*>(value) : "";
}

int number(QOpenGLFunctions& gl, GLenum name)
{
    GLint value = 0;
    gl.glGetIntegerv(name, &value);
    return value;
}

std::string joined(const std::array<int, 4>& numbers)
{
    std::string result;
    for (const int value : numbers)
        result += (result.empty() ? "" : " ") + std::to_string(value);
    return result;
}

}  // namespace

GlInfo GlInfo::ofCurrentContext()
{
    const QOpenGLContext& context = *QOpenGLContext::currentContext();
    QOpenGLFunctions& gl = *context.functions();
    GlInfo info;
    info.parseVersion(text(gl, GL_VERSION));
    info.shadingLanguage = text(gl, GL_SHADING_LANGUAGE_VERSION);
    info.colorBits = {number(gl, GL_RED_BITS), number(gl, GL_GREEN_BITS), number(gl, GL_BLUE_BITS),
                      number(gl, GL_ALPHA_BITS)};
    info.depthBits = number(gl, GL_DEPTH_BITS);
    info.stencilBits = number(gl, GL_STENCIL_BITS);
    info.accumulationBits = {number(gl, GL_ACCUM_RED_BITS), number(gl, GL_ACCUM_GREEN_BITS),
                             number(gl, GL_ACCUM_BLUE_BITS), number(gl, GL_ACCUM_ALPHA_BITS)};
    // Reads GL_EXTENSIONS as one text or, in a core profile, one by one.
    info.textureRg = context.hasExtension("GL_ARB_texture_rg");
    info.maxTextureSize = number(gl, GL_MAX_TEXTURE_SIZE);
    // A core profile can't report the bits; the queries leave behind errors. A context that
    // is lost returns errors for ever.
    for (int i = 0; i < 16 && gl.glGetError() != GL_NO_ERROR; ++i) {
    }
    return info;
}

void GlInfo::parseVersion(const std::string& text)
{
    version = text;
    major = 0;
    minor = 0;
    if (std::sscanf(text.c_str(), "%d.%d", &major, &minor) != 2) {
        major = 0;
        minor = 0;
    }
}

std::string GlInfo::lines() const
{
    std::string result = "\nOpenGL info:\n";
    result += "OpenGL version: " + std::to_string(major) + "." + std::to_string(minor) + "\n";
    result += "OpenGL version string: " + version + "\n";
    if (major >= 2)
        result += "Shading language version: " + shadingLanguage + "\n";
    result += "Number of bits in color buffer (r,g,b,a): " + joined(colorBits) + "\n";
    result += "Number of bits in depth buffer " + std::to_string(depthBits) + "\n";
    result += "Number of bits in stencil buffer " + std::to_string(stencilBits) + "\n";
    result += "Number of bits in accumulation buffer (r,g,b,a): " + joined(accumulationBits) + "\n";
    if (textureRg)
        result += "GL_ARB_texture_rg extension supported \n";
    return result + "\n";
}

}  // namespace render
