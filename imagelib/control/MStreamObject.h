// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What arrives over the stream of a control unit.
#pragma once

#include "imagelib/image/MImage.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace morvend::imglib {

/// The start of a series. A value; copies share their pixels.
class MStreamConfig {
public:
    MStreamConfig(int seriesId, std::int64_t images, nexus::MBasicNeXusTree config, MImage mask)
        : _seriesId(seriesId)
        , _images(images)
        , _config(std::move(config))
        , _mask(std::move(mask))
    {}
    int seriesId() const { return _seriesId; }
    /// Images that the series will have; 0 when the unit doesn't say.
    std::int64_t images() const { return _images; }
    /// What the unit says of the series, for the file and for headers; empty without header detail.
    const nexus::MBasicNeXusTree& config() const { return _config; }
    /// The unit's pixel mask (bits as in MBasicImageOptionalData); empty unless header detail is
    /// "all".
    const MImage& pixelMask() const { return _mask; }

private:
    int _seriesId;
    std::int64_t _images;
    nexus::MBasicNeXusTree _config;
    MImage _mask;
};

/// A frame. A value; copies share their pixels.
class MStreamData {
public:
    /// Pixels as they were sent.
    using Packed = std::shared_ptr<const std::vector<std::byte>>;

    MStreamData(int seriesId, int imageId, MImage image, Packed packed = {})
        : _seriesId(seriesId)
        , _imageId(imageId)
        , _image(std::move(image))
        , _packed(std::move(packed))
    {}
    int seriesId() const { return _seriesId; }
    /// Number of the frame in its series, from 0. A gap means that frames were lost.
    int imageId() const { return _imageId; }
    /// The pixels, row by row; their size is that of image().
    const image::MBasicImage<>& data() const { return _image.imageData(); }
    /// The pixels with width and height, and no header.
    const MImage& image() const { return _image; }
    /// The same pixels as a chunk of the HDF5 filter bitshuffle+LZ4; null if they came otherwise.
    const Packed& packed() const { return _packed; }

private:
    int _seriesId;
    int _imageId;
    MImage _image;
    Packed _packed;
};

/// The end of a series: complete, or aborted.
struct MStreamEnd {
    int seriesId = 0;
    /// Frames that the unit took, sent or not.
    std::int64_t frames = 0;
};

/// One message of the stream. Thread: a value.
class MStreamObject {
public:
    /// The numbers of type().
    enum Kind { Header = 0, Frame = 1, End = 2 };
    using Content = std::variant<MStreamConfig, MStreamData, MStreamEnd>;

    explicit MStreamObject(Content content)
        : _content(std::move(content))
    {}
    int type() const { return static_cast<int>(_content.index()); }
    // Each throws MRuntimeException when the message is of another type.
    const MStreamConfig& config() const;
    const MStreamData& data() const;
    const MStreamEnd& end() const;

private:
    Content _content;
};

}  // namespace morvend::imglib
