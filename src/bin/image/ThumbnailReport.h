// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command "thumbnail": the reduced picture of an image and of its mask.
#pragma once

#include "bin/image/Arguments.h"

#include <iosfwd>

namespace tarvik::tool {

/// Prints the thumbnails that the viewer's navigator shows.
class ThumbnailReport {
public:
    /// @throws MException when the image can't be read
    static void run(const Arguments& arguments, std::ostream& out);
};

}  // namespace tarvik::tool
