// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keys to layout.
#include "imagelib/io/formats/edf/EdfLayout.h"

#include "imagelib/image/MException.h"
#include "imagelib/image/QuotedText.h"
#include "imagelib/io/formats/base/HeaderWords.h"
#include "imagelib/io/formats/edf/EdfHeader.h"

#include <algorithm>
#include <limits>

namespace morvend::imglib::edf {

namespace {

constexpr std::uint64_t LargestSize = std::numeric_limits<int>::max();

struct TypeName {
    std::string_view name;
    datatypes::Type type;
    std::size_t bits;
};

/// Long is 32 bits wide, as it was where the format comes from.
constexpr TypeName TypeNames[] = {
    {"SignedByte", datatypes::INT, 8},        {"Signed8", datatypes::INT, 8},
    {"UnsignedByte", datatypes::UINT, 8},     {"Unsigned8", datatypes::UINT, 8},
    {"SignedShort", datatypes::INT, 16},      {"Signed16", datatypes::INT, 16},
    {"UnsignedShort", datatypes::UINT, 16},   {"Unsigned16", datatypes::UINT, 16},
    {"SignedInteger", datatypes::INT, 32},    {"Signed32", datatypes::INT, 32},
    {"UnsignedInteger", datatypes::UINT, 32}, {"Unsigned32", datatypes::UINT, 32},
    {"SignedLong", datatypes::INT, 32},       {"Signed64", datatypes::INT, 64},
    {"UnsignedLong", datatypes::UINT, 32},    {"Unsigned64", datatypes::UINT, 64},
    {"FloatValue", datatypes::FLOAT, 32},     {"Float", datatypes::FLOAT, 32},
    {"Float32", datatypes::FLOAT, 32},        {"FloatIEEE32", datatypes::FLOAT, 32},
    {"DoubleValue", datatypes::FLOAT, 64},    {"Double", datatypes::FLOAT, 64},
    {"Float64", datatypes::FLOAT, 64},        {"FloatIEEE64", datatypes::FLOAT, 64},
    {"DoubleIEEE64", datatypes::FLOAT, 64},
};

/// Throws for one key of a header.
class Complaint {
public:
    explicit Complaint(const std::string& path)
        : _path(path)
    {}
    [[noreturn]] void damaged(const std::string& what) const
    {
        throw MRuntimeException("EDF: " + what + ": " + _path);
    }
    [[noreturn]] void unsupported(const char* key, std::string_view value) const
    {
        throw MNotImplementedException("EDF: " + std::string(key) + ' ' + quoted(value) +
                                       " is not read: " + _path);
    }

private:
    const std::string& _path;
};

bool holds(std::string_view text, std::string_view word)
{
    const auto same = [](char l, char r) { return sameWord({&l, 1}, {&r, 1}); };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

void readType(const EdfHeader& header, const Complaint& complaint, EdfLayout& layout)
{
    const std::string_view name = header.value("DataType").value_or("UnsignedShort");
    const auto* const found = std::ranges::find_if(
        TypeNames, [&](const TypeName& each) { return sameWord(each.name, name); });
    if (found == std::end(TypeNames))
        complaint.unsupported("DataType", name);
    layout.type = found->type;
    layout.typeBits = found->bits;
}

void readByteOrder(const EdfHeader& header, const Complaint& complaint, EdfLayout& layout)
{
    const std::string_view order = header.value("ByteOrder").value_or("LowByteFirst");
    layout.bigEndian = holds(order, "high") || holds(order, "big");
    if (!layout.bigEndian && !holds(order, "low") && !holds(order, "little"))
        complaint.unsupported("ByteOrder", order);
}

void readPacking(const EdfHeader& header, const Complaint& complaint, EdfLayout& layout)
{
    const std::string_view name = header.value("Compression").value_or("none");
    if (name.empty() || sameWord(name.substr(0, 2), "no") || holds(name, "raw"))
        layout.packing = Packing::None;
    else if (holds(name, "gz"))
        layout.packing = Packing::Gzip;
    else if (holds(name, "bz"))
        layout.packing = Packing::Bzip2;
    else if (holds(name, "zlib") || sameWord(name, "z") || holds(name, "deflate"))
        layout.packing = Packing::Zlib;
    else
        complaint.unsupported("Compression", name);
}

std::uint64_t dimension(const EdfHeader& header, const Complaint& complaint, const char* key,
                        std::optional<std::uint64_t> fallback)
{
    const auto text = header.value(key);
    if (!text && fallback)
        return *fallback;
    if (!text)
        complaint.damaged(std::string("the header has no ") + key);
    const auto size = header.number(key);
    if (!size || *size == 0 || *size > LargestSize)
        complaint.damaged(std::string(key) + " can't be " + quoted(*text));
    return *size;
}

void readDimensions(const EdfHeader& header, const Complaint& complaint, EdfLayout& layout)
{
    const std::uint64_t width = dimension(header, complaint, "Dim_1", std::nullopt);
    const std::uint64_t height = dimension(header, complaint, "Dim_2", 1);
    const std::uint64_t planes = dimension(header, complaint, "Dim_3", 1);
    if (dimension(header, complaint, "Dim_4", 1) > 1)
        complaint.unsupported("Dim_4", header.value("Dim_4").value_or(""));
    // Sums and products of file offsets stay within 64 bits from here on.
    constexpr std::uint64_t MostPixels = std::uint64_t(1) << 56;
    if (width * height > MostPixels / planes)
        complaint.damaged("no file can hold " + std::to_string(width) + " x " +
                          std::to_string(height) + " x " + std::to_string(planes) + " pixels");
    layout.width = static_cast<int>(width);
    layout.height = static_cast<int>(height);
    layout.planes = planes;
}

void readExternal(const EdfHeader& header, const Complaint& complaint, EdfLayout& layout)
{
    const auto name = header.value("EDF_BinaryFileName");
    if (!name || name->empty())
        return;
    // Only a file beside this one: paths from a header are not trusted.
    layout.externalFile = name->substr(name->find_last_of("/\\") + 1);
    const bool noName =
        layout.externalFile.empty() || layout.externalFile == "." || layout.externalFile == "..";
    if (noName ||
        std::ranges::any_of(layout.externalFile, [](char c) { return isBlank(c) && c != ' '; }))
        complaint.damaged("EDF_BinaryFileName can't be " + quoted(*name));
    layout.externalOffset = header.number("EDF_BinaryFilePosition").value_or(0);
    if (const auto bytes = header.number("EDF_BinaryFileSize"))
        layout.statedBytes = bytes;
}

}  // namespace

EdfLayout readLayout(const EdfHeader& header, const std::string& path)
{
    const Complaint complaint(path);
    EdfLayout layout;
    readType(header, complaint, layout);
    readByteOrder(header, complaint, layout);
    readPacking(header, complaint, layout);
    readDimensions(header, complaint, layout);
    layout.statedBytes = header.number("EDF_BinarySize");
    if (!layout.statedBytes)
        layout.statedBytes = header.number("Size");
    readExternal(header, complaint, layout);
    return layout;
}

}  // namespace morvend::imglib::edf
