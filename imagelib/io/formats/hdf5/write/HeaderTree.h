// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An image header as the metadata tree of an NXmx file.
#pragma once

#include "imagelib/image/MBasicImageOptionalData.h"

namespace morvend::imglib::hdf5 {

/// Sets the nodes of all header fields that are present, with their units, and the frame of an NXmx
/// file around them; nodes of absent fields stay as they are. Pixel mask and rotation angle are
/// left out, as they aren't scalars of the series.
void addHeader(nexus::MBasicNeXusTree& tree, const MBasicImageOptionalData<>& header);

/// The shortest decimal number that is this float, so that 0.000172f is written as 0.000172.
double exactDecimal(float value);

}  // namespace morvend::imglib::hdf5
