// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The textures of one image view: image, mask and the two parts of the colour table.
#pragma once

#include "gui/render/DisplayImage.h"
#include "gui/render/OwnContext.h"
#include "gui/render/TextureFormat.h"
#include "imagelib/display/MColorTable.h"

#include <QRect>

#include <cstdint>
#include <vector>

namespace render {

/// Textures on units 0 to 3. An image larger than the texture limit is split into tiles. What the
/// card already holds is not sent again: a mask that stayed the same, or an image that is shown
/// with other highlights. Thread: GUI, with the context that was current when this was made current
/// for all but the queries and the end.
class ImageTextures {
public:
    enum Unit { Image = 0, Mask = 1, LinearTable = 2, LogarithmicTable = 3 };
    using MColorTable = morvend::imglib::MColorTable;
    using MImage = morvend::imglib::MImage;

    /// How often pixels were sent to the card.
    struct Uploads {
        int images = 0;
        int masks = 0;
        int tables = 0;
    };

    ImageTextures() = default;
    ~ImageTextures();
    ImageTextures(const ImageTextures&) = delete;
    ImageTextures& operator=(const ImageTextures&) = delete;

    /// Replaces image and mask; drops the tables, as a contrast follows.
    /// @param limit  longest side of a tile
    /// @returns false, without any texture, if the card can't hold the image
    bool uploadImage(const DisplayImage& image, int limit);
    void uploadTables(const MColorTable& table);
    bool hasImage() const { return !_tiles.empty(); }
    bool hasTables() const { return _tables[0] != 0 && _tables[1] != 0; }
    const Uploads& uploads() const { return _uploads; }

    /// The parts of the image that the tiles hold.
    const std::vector<QRect>& tiles() const { return _tiles; }
    /// Binds one tile and the tables, each on its unit; unbind() leaves unit 0 active and nothing
    /// bound, as painters expect.
    void bind(std::size_t tile) const;
    void bindTables() const;
    void bindPixels(std::size_t tile) const;
    void unbind() const;
    /// Binds a small image in place of a tile, for one draw.
    void bindSample(const MImage& sample);

    /// Deletes all textures.
    void release();

private:
    /// One picture, image or mask, over all tiles.
    struct Layer {
        std::vector<unsigned int> textures;
        TextureFormat format{};
        std::uint64_t identity = 0;  ///< of the pixels in the textures
    };

    void _upload(Layer& layer, Unit unit, const MImage& pixels, const TextureFormat& format);
    void _uploadTile(Unit unit, const MImage& pixels, const TextureFormat& format,
                     const QRect& tile, bool isNew);
    void _releaseImage();
    void _releaseTables();

    OwnContext _context;
    std::vector<QRect> _tiles;
    Layer _image;
    Layer _mask;
    unsigned int _sample = 0;
    unsigned int _tables[2] = {0, 0};
    Uploads _uploads;
};

}  // namespace render
