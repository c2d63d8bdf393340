// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The textures of one image view: image, mask and the two parts of the colour table.
#include "gui/render/ImageTextures.h"

#include "logic/support/Assert.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace render {

namespace {

QOpenGLFunctions& gl() { return *QOpenGLContext::currentContext()->functions(); }

/// Sets how pixels are read from memory, and puts back what was set.
class UnpackState {
public:
    explicit UnpackState(int rowLength)
    {
        for (std::size_t i = 0; i < names.size(); ++i)
            gl().glGetIntegerv(names[i], &_saved[i]);
        gl().glPixelStorei(GL_PACK_ALIGNMENT, 1);
        gl().glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        gl().glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
        gl().glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
        gl().glPixelStorei(GL_UNPACK_ROW_LENGTH, rowLength);
        gl().glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_FALSE);
        gl().glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
    }
    ~UnpackState()
    {
        for (std::size_t i = 0; i < names.size(); ++i)
            gl().glPixelStorei(names[i], _saved[i]);
    }
    UnpackState(const UnpackState&) = delete;
    UnpackState& operator=(const UnpackState&) = delete;

private:
    static constexpr std::array<GLenum, 6> names{GL_UNPACK_ALIGNMENT,  GL_UNPACK_SKIP_PIXELS,
                                                 GL_UNPACK_SKIP_ROWS,  GL_UNPACK_ROW_LENGTH,
                                                 GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST};
    std::array<GLint, 6> _saved{};
};

GLenum target(ImageTextures::Unit unit)
{
    return unit == ImageTextures::LinearTable || unit == ImageTextures::LogarithmicTable
               ? GL_TEXTURE_1D
               : GL_TEXTURE_2D;
}

void activate(int unit) { gl().glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit)); }

}  // namespace

void ImageTextures::uploadImage(const DisplayImage& image)
{
    release();
    _generate(Image, 2);
    const int width = image.size().width();
    const int height = image.size().height();
    const void* pixels = image.image().cdata();
    switch (image.kind()) {
    case PixelKind::Int:
        _upload2d(Image, GL_R32I, width, height, GL_RED_INTEGER, GL_INT, pixels);
        break;
    case PixelKind::UInt:
        _upload2d(Image, GL_R32UI, width, height, GL_RED_INTEGER, GL_UNSIGNED_INT, pixels);
        break;
    case PixelKind::Float:
        _upload2d(Image, GL_R32F, width, height, GL_RED, GL_FLOAT, pixels);
        break;
    }
    _upload2d(Mask, GL_R32UI, image.mask().width(), image.mask().height(), GL_RED_INTEGER,
              GL_UNSIGNED_INT, image.mask().cdata());
    unbind();
}

void ImageTextures::uploadTables(const MColorTable& table)
{
    gl().glDeleteTextures(2, &_texture[LinearTable]);
    _generate(LinearTable, 2);
    _upload1d(LinearTable, static_cast<int>(table.linDataSize()), table.linData());
    _upload1d(LogarithmicTable, static_cast<int>(table.logDataSize()), table.logData());
    unbind();
}

void ImageTextures::bind() const
{
    for (const Unit unit : {Image, Mask, LinearTable, LogarithmicTable}) {
        activate(unit);
        gl().glBindTexture(target(unit), _texture[unit]);
    }
    activate(0);
}

void ImageTextures::unbind() const
{
    for (const Unit unit : {LogarithmicTable, LinearTable, Mask, Image}) {
        activate(unit);
        gl().glBindTexture(target(unit), 0);
    }
}

void ImageTextures::release()
{
    gl().glDeleteTextures(static_cast<GLsizei>(_texture.size()), _texture.data());
    forget();
}

void ImageTextures::_generate(Unit first, int count)
{
    gl().glGenTextures(count, &_texture[first]);
}

void ImageTextures::_upload2d(Unit unit, int internalFormat, int width, int height,
                              unsigned int format, unsigned int type, const void* data) const
{
    const UnpackState state(width);
    activate(unit);
    gl().glBindTexture(GL_TEXTURE_2D, _texture[unit]);
    // An interpolated count means nothing.
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl().glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, width, height, 0, format, type, data);
}

void ImageTextures::_upload1d(Unit unit, int size, const unsigned char* data) const
{
    // Textures of one dimension are no part of OpenGL ES, so Qt's functions don't know them.
    using TexImage1D =
        void(QOPENGLF_APIENTRYP)(GLenum, GLint, GLint, GLsizei, GLint, GLenum, GLenum, const void*);
    const auto texImage1D = reinterpret_cast<TexImage1D>(
        QOpenGLContext::currentContext()->getProcAddress("glTexImage1D"));
    assert(texImage1D);
    const UnpackState state(size);
    activate(unit);
    gl().glBindTexture(GL_TEXTURE_1D, _texture[unit]);
    gl().glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    gl().glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    // Rounding may take an index to the very end, which must not be the beginning.
    gl().glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    if (size > 0)
        texImage1D(GL_TEXTURE_1D, 0, GL_RGBA, size, 0, GL_BGRA, GL_UNSIGNED_BYTE, data);
}

}  // namespace render
