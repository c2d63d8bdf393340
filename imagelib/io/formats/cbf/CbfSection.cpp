// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MIME heads of binary sections.
#include "imagelib/io/formats/cbf/CbfSection.h"

#include "imagelib/image/MException.h"
#include "imagelib/image/PixelTypes.h"
#include "imagelib/image/QuotedText.h"
#include "imagelib/io/formats/base/HeaderWords.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace morvend::imglib {

namespace {

[[noreturn]] void refuse(const std::string& reason, const std::string& path)
{
    throw MRuntimeException("CBF: " + reason + ": " + path);
}

/// "key: value" of a MIME head, with the lines that continue it; the value in lower case.
class MimeHead {
public:
    explicit MimeHead(std::string_view text)
    {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            const std::string_view line = text.substr(0, end);
            text.remove_prefix(std::min(end + 1, text.size()));
            if (!line.empty() && isBlank(line.front()) && !_lines.empty())
                _lines.back().append(" ").append(trimmed(line));
            else
                _lines.emplace_back(trimmed(line));
        }
    }

    /// The value without quotes, empty where the key is missing.
    std::string value(std::string_view key) const
    {
        for (const std::string& line : _lines) {
            if (line.size() > key.size() && line[key.size()] == ':' &&
                sameWord(std::string_view(line).substr(0, key.size()), key)) {
                std::string result(trimmed(std::string_view(line).substr(key.size() + 1)));
                std::erase(result, '"');
                return result;
            }
        }
        return {};
    }

    std::string lower(std::string_view key) const
    {
        std::string text = value(key);
        std::transform(text.begin(), text.end(), text.begin(), [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        return text;
    }

    /// A count, 0 where the key is missing.
    std::uint64_t count(std::string_view key, const std::string& path) const
    {
        const std::string text = value(key);
        std::uint64_t result = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, result);
        if (!text.empty() && (error != std::errc() || (stop != end && !isBlank(*stop))))
            refuse(std::string(key) + " is no count but " + quoted(text), path);
        return result;
    }

private:
    std::vector<std::string> _lines;
};

void parseType(const std::string& text, CbfSection& section, const std::string& path)
{
    if (text.empty())
        return;  // the type of nearly all files
    const std::size_t mark = text.find("-bit");
    std::size_t begin = mark;
    while (begin != text.npos && begin > 0 && isDigit(text[begin - 1]))
        --begin;
    std::size_t bits = 0;
    if (mark != text.npos)
        std::from_chars(text.data() + begin, text.data() + mark, bits);
    section.bits = bits;
    if (text.find("complex") != text.npos)
        section.type = datatypes::NONE;
    else if (text.find("real") != text.npos)
        section.type = datatypes::FLOAT;
    else
        section.type = text.find("unsigned") != text.npos ? datatypes::UINT : datatypes::INT;
    if (!datatypes::isPixelType(section.type, bits))
        refuse("pixels of type " + quoted(text) + " are not known", path);
}

void parseConversion(const std::string& text, CbfSection& section, const std::string& path)
{
    using enum CbfSection::Conversion;
    const std::size_t at = text.find("x-cbf_");
    if (at == text.npos)
        return;
    std::size_t end = at;
    while (end < text.size() &&
           (isLetter(text[end]) || isDigit(text[end]) || text[end] == '-' || text[end] == '_'))
        ++end;
    const std::string name = text.substr(at, end - at);
    if (name == "x-cbf_byte_offset")
        section.conversion = ByteOffset;
    else if (name == "x-cbf_nibble_offset")
        section.conversion = NibbleOffset;
    else if (name == "x-cbf_packed")
        section.conversion = Packed;
    else if (name == "x-cbf_packed_v2")
        section.conversion = PackedV2;
    else if (name == "x-cbf_canonical")
        section.conversion = Canonical;
    else if (name != "x-cbf_none")
        refuse("conversion " + quoted(name) + " of the pixel data is not known", path);
    section.flat = text.find("flat") != text.npos;
    section.uncorrelatedSections = text.find("uncorrelated_sections") != text.npos;
}

void parseEncoding(const std::string& text, CbfSection& section, const std::string& path)
{
    if (text == "base64")
        section.encoding = CbfSection::Encoding::Base64;
    else if (text == "quoted-printable")
        section.encoding = CbfSection::Encoding::QuotedPrintable;
    else if (text == "x-base8" || text == "x-base10" || text == "x-base16")
        section.encoding = CbfSection::Encoding::Numbers;
    else if (!text.empty() && text != "binary")
        refuse("transfer encoding " + quoted(text) + " of the pixel data is not known", path);
}

}  // namespace

CbfSection parseMimeHead(std::string_view text, const std::string& path, std::uint64_t& size)
{
    const MimeHead head(text);
    CbfSection section;
    // Some writers put the conversion on a line of its own.
    parseConversion(head.lower("Content-Type") + ' ' + head.lower("conversions"), section, path);
    parseEncoding(head.lower("Content-Transfer-Encoding"), section, path);
    parseType(head.lower("X-Binary-Element-Type"), section, path);
    section.bigEndian = head.lower("X-Binary-Element-Byte-Order") == "big_endian";
    section.md5 = head.value("Content-MD5");
    section.fast = head.count("X-Binary-Size-Fastest-Dimension", path);
    section.second = head.count("X-Binary-Size-Second-Dimension", path);
    section.third = head.count("X-Binary-Size-Third-Dimension", path);
    // A writer that does not know the shape treats all pixels as one row.
    if (section.fast == 0 && section.second == 0 && section.third == 0)
        section.flat = true;
    section.third = std::max<std::uint64_t>(1, section.third);
    if (section.fast != 0 && section.second == 0)
        section.second = head.count("X-Binary-Number-of-Elements", path) / section.fast;
    size = head.count("X-Binary-Size", path);
    return section;
}

void completeDimensions(CbfSection& section, const Cif& cif)
{
    if (section.fast != 0 && section.second != 0)
        return;
    const std::string_view dimension = "_array_structure_list.dimension";
    std::uint64_t sizes[3] = {0, 0, 1};
    for (std::size_t row = 0; row < cif.values(dimension).size(); ++row) {
        double size = 0;
        double rank = double(row + 1);
        if (!cif.number(dimension, size, row))
            continue;
        if (!cif.number("_array_structure_list.precedence", rank, row))
            cif.number("_array_structure_list.index", rank, row);
        // Several arrays may be listed one after the other: the first one counts.
        if (rank >= 1 && rank < 4 && size >= 1 && size < 1e9) {
            auto& target = sizes[static_cast<std::size_t>(rank) - 1];
            if (target == 0 || (rank >= 3 && target == 1))
                target = static_cast<std::uint64_t>(size);
        }
    }
    section.fast = sizes[0];
    section.second = sizes[1];
    section.third = sizes[2];
}

}  // namespace morvend::imglib
