// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the tests of the TIFF room share.
#pragma once

#include "imagelib/image/PixelTypes.h"
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "tests/imagelib/io/formats/tiff/TiffBuilder.h"

#include <limits>
#include <string>
#include <vector>

namespace tarvik::tests {

namespace imglib = morvend::imglib;
namespace datatypes = morvend::datatypes;

inline std::unique_ptr<imglib::ImageFile> openBytes(const std::string& bytes)
{
    const auto span = std::as_bytes(std::span(bytes));
    return imglib::openTiff(
        imglib::ByteSource::fromMemory("/data/x.tif", {span.begin(), span.end()}));
}

/// Text of the failure when all pages are read.
inline std::string failureOf(const std::string& bytes)
{
    try {
        const auto file = openBytes(bytes);
        if (!file)
            return "not mine";
        for (std::size_t i = 0; i < file->frameCount(); ++i)
            file->frame(i);
    } catch (const morvend::MException& exception) {
        return exception.what();
    }
    return "no failure";
}

/// Tags of a plain page of one strip.
inline std::string tags(int width, int height, std::size_t bits, int format, std::uint64_t offset,
                        std::uint64_t bytes)
{
    std::ostringstream table;
    table << "256 L " << width << "\n257 L " << height << "\n258 S " << bits
          << "\n259 S 1\n262 S 1\n273 L " << offset << "\n277 S 1\n278 L " << height << "\n279 L "
          << bytes << "\n339 S " << format << '\n';
    return table.str();
}

/// A file of one page; `more` are tags that replace or add.
template <class T>
std::string tiffOf(int width, const std::vector<T>& pixels, const std::string& more = {},
                   bool bigEndian = false, bool bigTiff = false)
{
    TiffBuilder builder(bigEndian, bigTiff);
    const std::string data = builder.values(pixels);
    const int format = std::is_floating_point_v<T> ? 3 : std::is_signed_v<T> ? 2 : 1;
    const std::uint64_t offset = builder.data(data);
    builder.page(tags(width, static_cast<int>(pixels.size()) / width, 8 * sizeof(T), format, offset,
                      data.size()) +
                 more);
    return builder.bytes();
}

/// Pixel type and values as text.
inline std::string shown(const imglib::MImage& image)
{
    std::ostringstream out;
    out << datatypes::typeStr(image.type()) << image.typeBits() << ' ' << image.width() << 'x'
        << image.height() << ':';
    datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        for (std::size_t i = 0; i < image.size(); ++i)
            out << ' ' << +image.pixels<T>()[i];
    });
    return out.str();
}

}  // namespace tarvik::tests
