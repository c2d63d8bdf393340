// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Images as EDF files, for demo data only.
#pragma once

#include "imagelib/image/MImage.h"

#include <string>

namespace tarvik::demo {

/// Writes an image of 32-bit signed integers with the header fields that EDF has keys for.
/// @throws MBadParameterException for another pixel type, and as AtomicFile does
void writeEdf(const morvend::imglib::MImage& image, const std::string& path);

}  // namespace tarvik::demo
