// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The "# key value unit" lines that CBF and TIFF files of detectors carry, read into a header.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"

#include <string_view>

namespace morvend::imglib {

/// Reads every known line of a header text into its field; other fields stay as they are. Accepts
/// CR LF, LF and mixed line ends, "key: value", "key = value" and "key value unit", lines continued
/// by a backslash, and lines with or without the leading '#'. Values that are no numbers are
/// skipped, never guessed. Sets neither rawHeader nor imageDescription.
void parseHeaderLines(std::string_view text, MBasicImageOptionalData<>& header);

/// Writes the known fields as header lines, "# Key value unit" with CR LF ends, such that
/// parseHeaderLines reads the same values back. The sensor thickness is among them.
std::string headerLines(const MBasicImageOptionalData<>& header);

}  // namespace morvend::imglib
