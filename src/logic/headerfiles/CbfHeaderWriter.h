// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header values in CBF files.
#pragma once

#include "imagelib/image/MImage.h"

#include <string>
#include <string_view>
#include <vector>

/// Rewrites lines of the text header of a CBF file; everything else stays byte for byte. The file
/// is replaced by a rename, so that it is whole at any moment. A value; one thread at a time.
class CbfHeaderWriter {
public:
    using Header = morvend::imglib::MBasicImageOptionalData<>;

    /// The values to write: rotation angle and its step, beam centre (both coordinates),
    /// wavelength, detector distance and filter transmission, as far as they are set.
    void setNeXuS(const Header& header);
    const Header& header() const { return _header; }

    /// Writes each value over the first line of its kind. Of the values without such a line only
    /// the first one, in the order above, is added, at the end of the header. Failures are reported
    /// on standard error; a file without a CBF header stays as it is.
    void write(const std::string& path) const;

private:
    /// A value as a line, and the words that a line of its kind holds.
    struct Line {
        std::string_view mark;
        std::string text;
    };
    /// New text for a range of the header's text, in bytes from its start.
    struct ReplaceString {
        std::size_t begin;
        std::size_t end;
        std::string text;
    };

    /// What changes in a header's text, by rising positions. @param content  between its semicolons
    std::vector<ReplaceString> _replacements(std::string_view content) const;

    Header _header;
    std::vector<Line> _lines;
};
