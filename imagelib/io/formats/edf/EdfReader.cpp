// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Blocks as frames.
#include "imagelib/io/formats/edf/EdfReader.h"

#include "imagelib/image/MBasicImageOptionalData.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/edf/EdfBlocks.h"
#include "imagelib/io/formats/edf/EdfFields.h"
#include "imagelib/io/formats/edf/EdfLayout.h"
#include "imagelib/io/formats/edf/EdfPixels.h"

#include <algorithm>
#include <span>

namespace morvend::imglib {

namespace {

class EdfFile : public ImageFile {
public:
    explicit EdfFile(std::shared_ptr<const ByteSource> source)
        : _source(std::move(source))
        , _blocks(_source)
    {}

    const char* format() const override { return "EDF"; }
    std::size_t frameCount() const override { return _blocks.count(); }
    std::string framePath(std::size_t) const override { return _source->path(); }
    void update() override { _blocks.update(); }

    MImage frame(std::size_t position) const override
    {
        const edf::EdfBlock& block = _blocks.blockOf(position);
        const edf::EdfHeader header = _blocks.header(block);
        MImage image =
            edf::readPixels(*_source, block, edf::readLayout(header, _source->path()), position);
        edf::readFields(header, image.optionalData());
        return image;
    }

private:
    std::shared_ptr<const ByteSource> _source;
    mutable edf::EdfBlocks _blocks;  // walks on when a frame is asked for
};

}  // namespace

std::uint64_t edfNeed(std::string_view head)
{
    if (!edf::EdfHeader::beginsBlock(head))
        return 0;
    try {
        const auto bytes = std::as_bytes(std::span(head));
        const auto source = ByteSource::fromMemory("", {bytes.begin(), bytes.end()});
        const edf::EdfHeader header = edf::EdfHeader::read(*source, 0, head.size());
        const edf::EdfLayout layout = edf::readLayout(header, "");
        const std::uint64_t plane = std::min(layout.planeBytes(), ByteSource::MostUnpacked);
        return header.bytes() +
               plane * std::min<std::uint64_t>(layout.planes, ByteSource::MostUnpacked / plane);
    } catch (const MException&) {
        return ByteSource::AnyImage;  // a general header, or one that goes on
    }
}

std::unique_ptr<ImageFile> openEdf(std::shared_ptr<const ByteSource> source)
{
    if (!edf::EdfHeader::beginsBlock(source->head(512)))
        return nullptr;
    return std::make_unique<EdfFile>(std::move(source));
}

}  // namespace morvend::imglib
