// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The header of an image from the configuration that a control unit sends.
#pragma once

#include "imagelib/image/MImage.h"

namespace morvend::imglib {

/// Fills the fields that the configuration has (docs/protocols/control-unit.md lists the paths),
/// and keeps the configuration as the NeXus tree of the header. Numbers are in the units of the
/// protocol; what is no finite number is left out.
MBasicImageOptionalData<> headerFromConfig(nexus::MBasicNeXusTree config);

}  // namespace morvend::imglib
