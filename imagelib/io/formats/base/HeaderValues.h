// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Gathers the header fields from lines and keys of a text.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"
#include "imagelib/io/formats/base/HeaderKeys.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace morvend::imglib {

/// Takes values in any order and keeps for each item the one whose key comes first in headerKeys(),
/// of several with the same key the first. A text within the value of another key comes after all.
class HeaderValues {
public:
    /// Takes the header lines of a text, one by one; with `within` only those after a '#'.
    void addLines(std::string_view text, bool within = false);
    /// Takes a line without its end and the '#' before it. If its key is not known, comments in
    /// it that begin with '#' are lines of their own.
    /// @returns its key, which for a date or a sensor is that of its kind; null if it has no key
    const HeaderKey* addLine(std::string_view line);
    /// Takes a value whose key is known exactly, except for a unit after it.
    void add(std::string_view key, std::string_view value);

    /// Sets the fields that were given; others stay. A beam centre given as a length needs a pixel
    /// size, which may have been set before.
    void fill(MBasicImageOptionalData<>& header) const;

private:
    struct Value {
        std::size_t rank = 0;
        double number = 0;
        bool length = false;  // of a beam centre: in m
        std::string text;
    };

    const HeaderKey* _addPiece(std::string_view line, std::string_view piece);
    void _addNumbers(const HeaderKey& key, const Words& words, std::size_t at);
    void _addText(const HeaderKey& key, std::string_view text);
    void _keep(const HeaderKey& key, HeaderItem item, Value value);
    void _setBeamCentre(MBasicImageOptionalData<>& header) const;

    std::array<std::optional<Value>, HeaderItems> _values;
    bool _within = false;  // what is added now is within the value of another key
};

/// Splits "text, S/N number" into the fields for detector and number; the field of an empty part
/// stays as it is.
void setDetector(std::string_view text, MBasicImageOptionalData<>& header);

/// Takes the next line off a text, with those that a backslash continues it by; without its end.
std::string_view takeHeaderLine(std::string_view& text);
/// A line as it is read: in one piece, without '#' and blanks around it.
std::string contentOfHeaderLine(std::string_view line);
/// True if a text begins like "2014/Jan/10 12:34", "2014-01-10T12:34:56.7" or "2014-Jan-10".
bool beginsAsDate(std::string_view line);

}  // namespace morvend::imglib
