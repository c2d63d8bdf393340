// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The "# key value unit" lines that CBF and TIFF files of detectors carry, read into a header.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"

#include <string>
#include <string_view>

namespace morvend::imglib {

/// Reads every known line of a header text into its field; other fields stay as they are. Keys,
/// units and their order of precedence are those of HeaderKeys.h; of several lines with the same
/// key the first one with a value counts. Accepts CR LF, LF and mixed line ends, "key: value", "key
/// = value" and "key value unit", lines continued by a backslash, lines with or without the leading
/// '#', and comments that begin with '#' within other lines. Values that aren't numbers, or have a
/// unit that is not known, are skipped, never guessed. Sets neither rawHeader nor imageDescription.
void parseHeaderLines(std::string_view text, MBasicImageOptionalData<>& header);

/// Writes the known fields as header lines, "# Key value unit" with CR LF ends, such that
/// parseHeaderLines reads the same values back. The sensor thickness is among them.
std::string headerLines(const MBasicImageOptionalData<>& header);

/// The lines of the rawHeader that an image was read with, brought up to date: lines whose fields
/// still have the value they state, and lines that are not known here, stay to the letter; lines
/// of changed fields are replaced and of cleared fields left out; missing ones follow at the end.
/// Equals headerLines() where the rawHeader does not consist of header lines.
std::string mergedHeaderLines(const MBasicImageOptionalData<>& header);

}  // namespace morvend::imglib
