// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// "roi --series": a region in all images of a series.
#pragma once

#include "bin/image/Arguments.h"

#include <iosfwd>

namespace tarvik::tool::seriesregion {

/// Writes a line for each image in the order of their numbers, as soon as it and those before it
/// are done: columns under a head, or JSON objects. Masked and unreadable images have no numbers.
/// @throws MException if the file can't be opened, at the end if images could not be read, and
/// on a signal, which ends the work between two images
void run(const Arguments& arguments, std::ostream& out);

}  // namespace tarvik::tool::seriesregion
