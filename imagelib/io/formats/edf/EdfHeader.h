// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The text header of an EDF block, and the fields of an image's header that it holds.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"
#include "imagelib/io/formats/base/ByteSource.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvend::imglib::edf {

/// "{ key = value ; ... }": keys are compared without case, the last of several equal keys holds,
/// and keys that are missing are looked up in the general header of the file.
/// Thread: any, once made.
class EdfHeader {
public:
    /// True if these bytes can be the start of a block: '{', by itself or on the second line, and a
    /// key.
    static bool beginsBlock(std::string_view bytes);
    /// Reads the header that begins at `offset`; it ends with '}' and LF or CR LF, whatever the
    /// header says of its size. `guess` is its likely size in bytes.
    /// @throws MRuntimeException when no end is found
    static EdfHeader read(const ByteSource& source, std::uint64_t offset, std::size_t guess);

    /// Parses a block's text with its braces.
    explicit EdfHeader(std::string text);

    void setGeneral(std::shared_ptr<const EdfHeader> general) { _general = std::move(general); }

    /// Value of a key without the blanks around it.
    std::optional<std::string_view> value(std::string_view key) const;
    /// The value as a whole number, if it is a whole number.
    std::optional<std::uint64_t> number(std::string_view key) const;
    /// Calls f(key, value) for all entries, the valid one before others of the same key: the
    /// last of the block first, then those of the general header.
    template <class Function>
    void forEach(Function&& f) const
    {
        const std::string_view all = _text;
        for (auto entry = _entries.rbegin(); entry != _entries.rend(); ++entry)
            f(all.substr(entry->key, entry->keyBytes), all.substr(entry->value, entry->valueBytes));
        if (_general)
            _general->forEach(f);
    }
    /// True if the key is in this block itself.
    bool has(std::string_view key) const { return _own(key).has_value(); }

    /// Bytes in the file, up to and including the end of its last line.
    std::size_t bytes() const { return _text.size(); }
    /// The text for people: the general header, then this one, without the padding.
    std::string shownText() const;

private:
    struct Entry {
        std::uint32_t key, keyBytes, value, valueBytes;  // places in _text
    };
    std::optional<std::string_view> _own(std::string_view key) const;

    std::string _text;
    std::vector<Entry> _entries;
    std::shared_ptr<const EdfHeader> _general;
};

/// Sets the fields whose keys have a value, and those of header lines within the values of other
/// keys (HeaderValues); a value that isn't a number ("Na") leaves its field unset. Sets rawHeader.
void readFields(const EdfHeader& from, MBasicImageOptionalData<>& header);

}  // namespace morvend::imglib::edf
