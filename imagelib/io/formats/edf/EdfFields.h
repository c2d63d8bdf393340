// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keys of an EDF header that have a field in the header of an image.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"

namespace morvend::imglib::edf {

class EdfHeader;

/// Sets the fields whose keys have a value, and those of header lines within the values of other
/// keys (HeaderValues); a value that is no number ("Na") leaves its field alone. Sets rawHeader.
void readFields(const EdfHeader& from, MBasicImageOptionalData<>& header);

}  // namespace morvend::imglib::edf
