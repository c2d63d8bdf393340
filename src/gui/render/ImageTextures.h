// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The textures of one image view: image, mask and the two parts of the colour table.
#pragma once

#include "gui/render/DisplayImage.h"
#include "imagelib/display/MColorTable.h"

#include <array>

namespace render {

/// Four textures on units 0 to 3. Thread: GUI, with the view's context current for all but
/// forget() and the questions.
class ImageTextures {
public:
    enum Unit { Image = 0, Mask = 1, LinearTable = 2, LogarithmicTable = 3 };
    using MColorTable = morvend::imglib::MColorTable;

    ImageTextures() = default;
    ImageTextures(const ImageTextures&) = delete;
    ImageTextures& operator=(const ImageTextures&) = delete;

    /// Uploads image and mask in place of all that was there, tables included.
    void uploadImage(const DisplayImage& image);
    void uploadTables(const MColorTable& table);
    bool hasImage() const { return _texture[Image] != 0; }
    bool hasTables() const { return _texture[LinearTable] != 0 && _texture[LogarithmicTable] != 0; }

    /// Binds each texture on its unit; unbind() leaves unit 0 active and nothing bound, as painters
    /// expect.
    void bind() const;
    void unbind() const;

    /// Deletes all textures.
    void release();
    /// The context is gone, and the textures with it.
    void forget() { _texture = {}; }

private:
    void _upload2d(Unit unit, int internalFormat, int width, int height, unsigned int format,
                   unsigned int type, const void* data) const;
    void _upload1d(Unit unit, int size, const unsigned char* data) const;
    void _generate(Unit first, int count);

    std::array<unsigned int, 4> _texture{};
};

}  // namespace render
