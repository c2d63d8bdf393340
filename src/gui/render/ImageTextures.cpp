// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ImageTextures.h"

#include "gui/render/TileGrid.h"
#include "gui/render/UnpackState.h"
#include "logic/support/Assert.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <algorithm>

namespace render {

namespace {

QOpenGLFunctions& gl() { return *QOpenGLContext::currentContext()->functions(); }

void activate(ImageTextures::Unit unit)
{
    gl().glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
}

/// An interpolated count means nothing; rounding may move an index to the very end of a table,
/// which must not wrap to its start.
void setNearest(GLenum target)
{
    gl().glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    gl().glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    gl().glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl().glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

/// Clears earlier errors; true if there were any.
bool takeErrors()
{
    bool any = false;
    // A context that is lost returns errors for ever.
    for (int i = 0; i < 16 && gl().glGetError() != GL_NO_ERROR; ++i)
        any = true;
    return any;
}

void uploadTable(unsigned int texture, std::size_t size, const unsigned char* entries)
{
    // Textures of one dimension are not part of OpenGL ES, so Qt's functions lack them.
    using TexImage1D =
        void(QOPENGLF_APIENTRYP)(GLenum, GLint, GLint, GLsizei, GLint, GLenum, GLenum, const void*);
    const auto texImage1D = reinterpret_cast<TexImage1D>(
        QOpenGLContext::currentContext()->getProcAddress("glTexImage1D"));
    assert(texImage1D);
    const UnpackState state(static_cast<int>(size));
    gl().glBindTexture(GL_TEXTURE_1D, texture);
    setNearest(GL_TEXTURE_1D);
    if (size > 0)
        texImage1D(GL_TEXTURE_1D, 0, GL_RGBA, static_cast<GLsizei>(size), 0, GL_BGRA,
                   GL_UNSIGNED_BYTE, entries);
}

}  // namespace

ImageTextures::~ImageTextures()
{
    if (_context.enter())
        release();
}

bool ImageTextures::uploadImage(const DisplayImage& image, int limit)
{
    _releaseTables();
    const std::vector<QRect> tiles = tilesOf(image.size(), limit);
    if (tiles != _tiles)
        _releaseImage();
    if (tiles.empty())
        return false;
    takeErrors();
    _tiles = tiles;
    const MImage& pixels = image.image();
    const MImage& mask = image.mask();
    _upload(_image, Image, pixels, TextureFormat::ofImage(pixels.type(), pixels.typeBits()));
    _upload(_mask, Mask, mask, TextureFormat::ofMask(mask.type(), mask.typeBits()));
    unbind();
    if (!takeErrors())
        return true;
    _releaseImage();
    return false;
}

void ImageTextures::_upload(Layer& layer, Unit unit, const MImage& pixels,
                            const TextureFormat& format)
{
    if (layer.identity == pixels.identity() && layer.format == format)
        return;
    // Reuses the storage of the last image: fresh memory costs more than the copy into it.
    const bool isNew = layer.textures.empty() || layer.format != format;
    if (isNew) {
        gl().glDeleteTextures(static_cast<GLsizei>(layer.textures.size()), layer.textures.data());
        layer.textures.resize(_tiles.size());
        gl().glGenTextures(static_cast<GLsizei>(_tiles.size()), layer.textures.data());
    }
    layer.format = format;
    layer.identity = pixels.identity();
    activate(unit);
    for (std::size_t i = 0; i < _tiles.size(); ++i) {
        gl().glBindTexture(GL_TEXTURE_2D, layer.textures[i]);
        _uploadTile(unit, pixels, format, _tiles[i], isNew);
    }
    ++(unit == Mask ? _uploads.masks : _uploads.images);
}

void ImageTextures::_uploadTile(Unit unit, const MImage& pixels, const TextureFormat& format,
                                const QRect& tile, bool isNew)
{
    const auto send = [&](const QRect& part, int rowLength, const void* data) {
        const UnpackState state(rowLength);
        gl().glTexSubImage2D(GL_TEXTURE_2D, 0, part.x() - tile.x(), part.y() - tile.y(),
                             part.width(), part.height(), format.format, format.type, data);
    };
    if (isNew) {
        setNearest(GL_TEXTURE_2D);
        gl().glTexImage2D(GL_TEXTURE_2D, 0, format.internalFormat, tile.width(), tile.height(), 0,
                          format.format, format.type, nullptr);
    }
    if (format.direct) {
        const std::size_t first =
            static_cast<std::size_t>(tile.y()) * static_cast<std::size_t>(pixels.width()) +
            static_cast<std::size_t>(tile.x());
        send(tile, pixels.width(),
             static_cast<const std::byte*>(pixels.cdata()) + first * format.bytes);
        return;
    }
    // In bands, which stay in the cache between conversion and upload.
    constexpr int bandPixels = 1 << 18;
    const int rows = std::max(1, bandPixels / tile.width());
    std::vector<std::byte> band(static_cast<std::size_t>(rows) *
                                static_cast<std::size_t>(tile.width()) * format.bytes);
    for (int y = tile.top(); y <= tile.bottom(); y += rows) {
        const QRect part(tile.x(), y, tile.width(), std::min(rows, tile.bottom() + 1 - y));
        if (unit == Mask)
            maskPixels(pixels, part, band.data());
        else
            displayPixels(pixels, part, band.data());
        send(part, part.width(), band.data());
    }
}

void ImageTextures::uploadTables(const MColorTable& table)
{
    _releaseTables();
    gl().glGenTextures(2, _tables);
    activate(LinearTable);
    uploadTable(_tables[0], table.linDataSize(), table.linData());
    uploadTable(_tables[1], table.logDataSize(), table.logData());
    ++_uploads.tables;
    unbind();
}

void ImageTextures::bind(std::size_t tile) const
{
    bindTables();
    bindPixels(tile);
}

void ImageTextures::bindTables() const
{
    activate(LogarithmicTable);
    gl().glBindTexture(GL_TEXTURE_1D, _tables[1]);
    activate(LinearTable);
    gl().glBindTexture(GL_TEXTURE_1D, _tables[0]);
}

void ImageTextures::bindPixels(std::size_t tile) const
{
    activate(Mask);
    gl().glBindTexture(GL_TEXTURE_2D, _mask.textures[tile]);
    activate(Image);
    gl().glBindTexture(GL_TEXTURE_2D, _image.textures[tile]);
}

void ImageTextures::unbind() const
{
    for (const Unit unit : {LogarithmicTable, LinearTable, Mask, Image}) {
        activate(unit);
        gl().glBindTexture(GL_TEXTURE_1D, 0);
        gl().glBindTexture(GL_TEXTURE_2D, 0);
    }
}

void ImageTextures::bindSample(const MImage& sample)
{
    if (!_sample)
        gl().glGenTextures(1, &_sample);
    activate(Image);
    gl().glBindTexture(GL_TEXTURE_2D, _sample);
    _uploadTile(Image, sample, TextureFormat::ofImage(sample.type(), sample.typeBits()),
                QRect(0, 0, sample.width(), sample.height()), true);
}

void ImageTextures::release()
{
    _releaseImage();
    _releaseTables();
    gl().glDeleteTextures(1, &_sample);
    _sample = 0;
}

void ImageTextures::_releaseImage()
{
    for (Layer* layer : {&_image, &_mask}) {
        gl().glDeleteTextures(static_cast<GLsizei>(layer->textures.size()), layer->textures.data());
        *layer = {};
    }
    _tiles.clear();
}

void ImageTextures::_releaseTables()
{
    gl().glDeleteTextures(2, _tables);
    _tables[0] = 0;
    _tables[1] = 0;
}

}  // namespace render
