// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header values in CBF files.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/headerfiles/HeaderChange.h"

#include <string>
#include <string_view>
#include <vector>

class HeaderText;

/// Rewrites lines of the text header of a CBF file; everything else stays byte for byte. The file
/// is replaced by a rename, so that it is whole at any moment. A value; one thread at a time.
class CbfHeaderWriter {
public:
    using Header = morvend::imglib::MBasicImageOptionalData<>;
    /// Of the values that have no line in a file, how many get one by one write.
    enum class Additions { First, All };

    /// The values to write: rotation angle and its step, beam centre (both coordinates),
    /// wavelength, detector distance and filter transmission, as far as they are set.
    void setNeXuS(const Header& header);
    const Header& header() const { return _header; }

    /// Writes each value over the first line of its kind. Of the values without such a line only
    /// the first one, in the order above, is added, at the end of the header. Failures are printed
    /// on standard error; a file without a CBF header stays as it is.
    void write(const std::string& path) const;

    /// What a write changes in a file.
    /// @throws HeaderFileError if a line is missing and can't be added without breaking the file
    HeaderChanges changes(const HeaderText& text, const std::string& path,
                          Additions additions = Additions::First) const;

    /// What kind of line a change is about, as in "Wavelength"; empty for an unknown one.
    static std::string_view kindOf(const HeaderChange& change);

private:
    /// A value as a line, and the words that a line of its kind holds.
    struct Line {
        std::string_view mark;
        std::string text;
    };

    Header _header;
    std::vector<Line> _lines;
};
