// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pages as frames, and their headers.
#include "imagelib/io/formats/tiff/TiffReader.h"

#include "imagelib/io/formats/base/HeaderLines.h"
#include "imagelib/io/formats/base/HeaderValues.h"
#include "imagelib/io/formats/tiff/TiffHandle.h"
#include "imagelib/io/formats/tiff/TiffLayout.h"
#include "imagelib/io/formats/tiff/TiffPages.h"
#include "imagelib/io/formats/tiff/TiffPixels.h"

#include <algorithm>

namespace morvend::imglib {

namespace {

/// The image description. It may be padded with NULs or hold some in between.
std::string descriptionText(const ByteSource& source, const tiff::TiffPage& page)
{
    std::string text(static_cast<std::size_t>(std::min(page.textBytes, source.size())), '\0');
    text.resize(source.readSome(page.textOffset, text.data(), text.size()));
    while (!text.empty() && text.back() == '\0')
        text.pop_back();
    std::replace(text.begin(), text.end(), '\0', '\n');
    return text;
}

/// A tag of text, empty when it is absent.
std::string textTag(const tiff::TiffHandle& handle, std::uint32_t tag)
{
    const char* text = nullptr;
    return TIFFGetField(handle.get(), tag, &text) && text ? text : "";
}

void readHeader(const tiff::TiffHandle& handle, const tiff::TiffPage& page,
                MBasicImageOptionalData<>& header)
{
    const std::string text = descriptionText(handle.source(), page);
    if (!text.empty()) {
        parseHeaderLines(text, header);
        header.set_rawHeader(text);
    }
    const std::string date = textTag(handle, TIFFTAG_DATETIME);
    if (!header.data_collection_date() && !date.empty())
        header.set_data_collection_date(date);
    MBasicImageOptionalData<> camera;
    setDetector(textTag(handle, TIFFTAG_MODEL), camera);
    if (!header.description())
        header.set_description(camera.description());
    if (!header.detector_number())
        header.set_detector_number(camera.detector_number());
}

class TiffFile : public ImageFile {
public:
    explicit TiffFile(const std::shared_ptr<const ByteSource>& source)
        : _handle(source)
        , _pages(source)
    {
        // If the first page isn't an image, the file can't be opened.
        _handle.select(_pages.page(0).directory);
        tiff::readLayout(_handle);
    }

    const char* format() const override { return "TIFF"; }
    std::size_t frameCount() const override { return _pages.count(); }
    std::string framePath(std::size_t) const override { return _handle.source().path(); }
    void update() override { _pages.update(); }

    MImage frame(std::size_t position) const override
    {
        const tiff::TiffPage& page = _pages.page(position);
        _handle.select(page.directory);
        MImage image = tiff::readPixels(_handle, tiff::readLayout(_handle), _pages.bigEndian());
        readHeader(_handle, page, image.optionalData());
        return image;
    }

private:
    // Reading moves both along the file; what they return stays the same.
    mutable tiff::TiffHandle _handle;
    mutable tiff::TiffPages _pages;
};

}  // namespace

std::uint64_t tiffNeed(std::string_view head)
{
    return tiff::TiffPages::isTiff(head) ? ByteSource::AnyImage : 0;
}

std::unique_ptr<ImageFile> openTiff(std::shared_ptr<const ByteSource> source)
{
    if (!tiff::TiffPages::isTiff(source->head(4)))
        return nullptr;
    return std::make_unique<TiffFile>(source);
}

}  // namespace morvend::imglib
