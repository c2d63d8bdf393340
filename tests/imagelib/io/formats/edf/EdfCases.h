// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the tests of the EDF room share: blocks written as text and values.
#pragma once

#include "imagelib/image/PixelTypes.h"
#include "imagelib/io/formats/edf/EdfReader.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace tarvik::tests {

namespace imglib = morvend::imglib;
namespace datatypes = morvend::datatypes;

/// Bytes of values, low byte first or high byte first.
template <class T>
std::string valueBytes(const std::vector<T>& values, bool bigEndian = false)
{
    std::string bytes;
    for (const T value : values) {
        char each[sizeof(T)];
        std::memcpy(each, &value, sizeof value);
        if (bigEndian)
            std::reverse(each, each + sizeof each);
        bytes.append(each, sizeof each);
    }
    return bytes;
}

/// A header of statements, padded with blanks to a multiple of 512 bytes.
inline std::string headerOf(const std::string& statements, std::size_t unit = 512)
{
    std::string text = "{\n" + statements;
    const std::size_t bytes = text.size() + 2;
    text.append((bytes + unit - 1) / unit * unit - bytes, ' ');
    return text + "}\n";
}

/// A block of 16-bit pixels, `width` in a row; `more` statements replace earlier ones.
inline std::string blockOf(int width, const std::vector<std::uint16_t>& pixels,
                           const std::string& more = {})
{
    std::ostringstream header;
    header << "HeaderID = EH:000001:000000:000000 ;\nByteOrder = LowByteFirst ;\n"
           << "DataType = UnsignedShort ;\nDim_1 = " << width
           << " ;\nDim_2 = " << pixels.size() / static_cast<std::size_t>(width)
           << " ;\nSize = " << 2 * pixels.size() << " ;\n"
           << more;
    return headerOf(header.str()) + valueBytes(pixels);
}

inline std::unique_ptr<imglib::ImageFile> openBytes(const std::string& bytes)
{
    const auto span = std::as_bytes(std::span(bytes));
    return imglib::openEdf(
        imglib::ByteSource::fromMemory("/data/x.edf", {span.begin(), span.end()}));
}

/// Text of the first failure when all frames are read.
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
