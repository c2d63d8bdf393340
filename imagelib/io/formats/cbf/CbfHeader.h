// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the text of a CBF file to the header of its images.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"
#include "imagelib/io/formats/cbf/Cif.h"

#include <string_view>

namespace morvend::imglib {

/// The header that the text before the pixels gives: the categories of full imgCIF, over which the
/// header lines of mini-CBF take precedence, and the text itself as rawHeader.
MBasicImageOptionalData<> cbfHeader(std::string_view cifText, const Cif& cif);

}  // namespace morvend::imglib
