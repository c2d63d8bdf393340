// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the start of a series and its frames bring, as it crosses between threads.
#pragma once

#include "imagelib/image/MImage.h"

/// The pixels of a frame with their width and height, without a header.
using ImageData = morvend::imglib::MImage;
/// What holds for all frames of a series.
using OptionalData = morvend::imglib::MBasicImageOptionalData<>;

/// A frame with the header of its series, whose mask is left out if it is of another size.
morvend::imglib::MImage withHeader(const ImageData& frame, const OptionalData& header);
