// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Text, MIME head and packed pixels of a mini-CBF file.
#include "imagelib/io/formats/cbf/CbfWriter.h"

#include "imagelib/codec/Base64.h"
#include "imagelib/codec/Md5.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/AtomicFile.h"
#include "imagelib/io/formats/base/HeaderLines.h"
#include "imagelib/io/formats/cbf/ByteOffset.h"

#include <bit>
#include <span>

namespace morvend::imglib {

namespace {

static_assert(std::endian::native == std::endian::little, "written files are little-endian");

constexpr std::size_t Padding = 4095;

/// The base name of a path as the name of a CIF data block, which has no blanks.
std::string blockName(const std::string& path)
{
    std::string name = path.substr(path.rfind('/') + 1);
    name = name.substr(0, name.rfind('.'));
    for (char& c : name) {
        if (c <= ' ' || c > '~')
            c = '_';
    }
    return name.empty() ? "image" : name;
}

/// A semicolon would end the text field for programs that look for one anywhere, and a NUL would
/// end all text for those that treat it as a C string.
std::string forTextField(std::string lines)
{
    for (char& c : lines) {
        if (c == ';')
            c = ',';
        else if (c == '\0')
            c = ' ';
    }
    return lines;
}

std::string elementType(const MImage& image)
{
    const std::string bits = std::to_string(image.typeBits());
    switch (image.type()) {
    case datatypes::FLOAT:
        return "signed " + bits + "-bit real IEEE";
    case datatypes::INT:
        return "signed " + bits + "-bit integer";
    case datatypes::CHAR:
        return std::is_signed_v<char> ? "signed 8-bit integer" : "unsigned 8-bit integer";
    default:
        return "unsigned " + bits + "-bit integer";
    }
}

std::string textBefore(const MImage& image, const std::string& path)
{
    return "###CBF: VERSION 1.5\r\n"
           "\r\n"
           "data_" +
           blockName(path) +
           "\r\n\r\n"
           "_array_data.header_convention \"GENERIC_MINI\"\r\n"
           "_array_data.header_contents\r\n"
           ";\r\n" +
           forTextField(mergedHeaderLines(image.optionalData())) +
           ";\r\n\r\n"
           "_array_data.data\r\n"
           ";\r\n";
}

std::string mimeHead(const MImage& image, bool packed, std::span<const std::byte> data)
{
    return std::string("--CIF-BINARY-FORMAT-SECTION--\r\n"
                       "Content-Type: application/octet-stream;\r\n"
                       "     conversions=\"") +
           (packed ? "x-CBF_BYTE_OFFSET" : "x-CBF_NONE") +
           "\"\r\n"
           "Content-Transfer-Encoding: BINARY\r\n"
           "X-Binary-Size: " +
           std::to_string(data.size()) +
           "\r\n"
           "X-Binary-ID: 1\r\n"
           "X-Binary-Element-Type: \"" +
           elementType(image) +
           "\"\r\n"
           "X-Binary-Element-Byte-Order: LITTLE_ENDIAN\r\n"
           "Content-MD5: " +
           codec::base64Encode(codec::md5(data)) +
           "\r\n"
           "X-Binary-Number-of-Elements: " +
           std::to_string(image.size()) +
           "\r\n"
           "X-Binary-Size-Fastest-Dimension: " +
           std::to_string(image.width()) +
           "\r\n"
           "X-Binary-Size-Second-Dimension: " +
           std::to_string(image.height()) +
           "\r\n"
           "X-Binary-Size-Padding: " +
           std::to_string(Padding) + "\r\n\r\n\x0c\x1a\x04\xd5";
}

}  // namespace

void writeCbf(const MImage& image, const std::string& path)
{
    if (image.empty())
        throw MBadParameterException("CBF: an empty image can't be written: " + path);
    const std::span<const std::byte> pixels(static_cast<const std::byte*>(image.cdata()),
                                            image.dataSize());
    const bool packed = image.type() != datatypes::FLOAT;
    std::vector<std::byte> stream;
    if (packed) {
        const bool isSigned = image.type() == datatypes::INT ||
                              (image.type() == datatypes::CHAR && std::is_signed_v<char>);
        stream = packByteOffset(pixels, image.typeBits() / 8, isSigned);
    }
    const std::span<const std::byte> data = packed ? std::span<const std::byte>(stream) : pixels;
    const std::string before = textBefore(image, path) + mimeHead(image, packed, data);
    const std::string after =
        std::string(Padding, '\0') + "\r\n--CIF-BINARY-FORMAT-SECTION----\r\n;\r\n\r\n";
    AtomicFile file(path);
    file.write(before.data(), before.size());
    file.write(data.data(), data.size());
    file.write(after.data(), after.size());
    file.commit();
}

}  // namespace morvend::imglib
