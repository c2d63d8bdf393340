// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// TIFF files byte by byte, from a table of tags written as text.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace tarvik::tests {

/// Builds a file of either byte order, plain or BigTIFF. Data come first, directories after them.
class TiffBuilder {
public:
    explicit TiffBuilder(bool bigEndian = false, bool bigTiff = false)
        : _bigEndian(bigEndian)
        , _bigTiff(bigTiff)
    {
        _bytes = (bigEndian ? "MM" : "II") + number(bigTiff ? 43 : 42, 2);
        if (bigTiff)
            _bytes += number(8, 2) + number(0, 2);
        _link = _bytes.size();
        _bytes += number(0, offsetBytes());
    }

    /// A number in the byte order of the file.
    std::string number(std::uint64_t value, std::size_t bytes) const
    {
        std::string text;
        for (std::size_t i = 0; i < bytes; ++i) {
            const std::size_t shift = 8 * (_bigEndian ? bytes - 1 - i : i);
            text += static_cast<char>(value >> shift & 0xff);
        }
        return text;
    }
    /// Values in the byte order of the file.
    template <class T>
    std::string values(const std::vector<T>& from) const
    {
        std::string text;
        for (const T each : from) {
            std::uint64_t bits = 0;
            std::memcpy(&bits, &each, sizeof each);
            text += number(bits, sizeof each);
        }
        return text;
    }

    /// Appends data, returns their offset.
    std::uint64_t data(const std::string& bytes)
    {
        const std::uint64_t offset = _bytes.size();
        _bytes += bytes;
        return offset;
    }

    /// Appends a directory and links it to the one before. Lines "tag type values...", type B, S, L
    /// for integers of 1, 2, 4 bytes, or "tag A text" with \0 for a NUL and \r, \n; a later line
    /// replaces an earlier one of the same tag, "tag -" removes it.
    TiffBuilder& page(const std::string& table)
    {
        const std::map<std::uint64_t, Tag> tags = parsed(table);
        std::string directory = number(tags.size(), _bigTiff ? 8 : 2);
        for (const auto& [id, tag] : tags) {
            std::string value = tag.bytes;
            if (value.size() > offsetBytes())
                value = number(data(value), offsetBytes());
            value.resize(offsetBytes(), '\0');
            directory +=
                number(id, 2) + number(tag.type, 2) + number(tag.count, offsetBytes()) + value;
        }
        _directory = data(directory);
        linkTo(_directory);
        _link = data(number(0, offsetBytes()));
        return *this;
    }

    /// Makes the last directory point to an offset.
    void linkTo(std::uint64_t offset)
    {
        _bytes.replace(_link, offsetBytes(), number(offset, offsetBytes()));
    }
    std::uint64_t lastDirectory() const { return _directory; }
    const std::string& bytes() const { return _bytes; }

private:
    struct Tag {
        std::uint64_t type = 0;
        std::uint64_t count = 0;
        std::string bytes;
    };

    std::size_t offsetBytes() const { return _bigTiff ? 8 : 4; }
    static std::string unescaped(const std::string& text)
    {
        std::string result;
        for (std::size_t i = 0; i < text.size(); ++i)
            if (text[i] != '\\' || ++i == text.size())
                result += text[std::min(i, text.size() - 1)];
            else
                result += text[i] == '0' ? '\0' : text[i] == 'r' ? '\r' : '\n';
        return result;
    }

    std::map<std::uint64_t, Tag> parsed(const std::string& table) const
    {
        std::map<std::uint64_t, Tag> tags;
        std::istringstream lines(table);
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            std::uint64_t id = 0;
            std::string type;
            if (!(words >> id >> type))
                continue;
            Tag tag;
            const std::size_t bytes = type == "S" ? 2 : type == "L" ? 4 : 1;
            tag.type = type == "A" ? 2 : type == "S" ? 3 : type == "L" ? 4 : 1;
            if (type == "A") {
                std::getline(words >> std::ws, tag.bytes);
                tag.bytes = unescaped(tag.bytes);
            } else {
                for (std::uint64_t value = 0; words >> value;)
                    tag.bytes += number(value, bytes);
            }
            tag.count = tag.bytes.size() / bytes;
            tags.erase(id);
            if (type != "-")
                tags.emplace(id, tag);
        }
        return tags;
    }

    bool _bigEndian;
    bool _bigTiff;
    std::string _bytes;
    std::uint64_t _link = 0;
    std::uint64_t _directory = 0;
};

}  // namespace tarvik::tests
