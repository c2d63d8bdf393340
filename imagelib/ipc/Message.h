// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What travels between processes.
#pragma once

#include "imagelib/display/MDrawingList.h"
#include "imagelib/image/MImage.h"

#include <string>
#include <variant>

namespace morvend::imglib {

/// A text, an image with its header, or a drawing list.
using Message = std::variant<std::string, MImage, MDrawingList<>>;

}  // namespace morvend::imglib
