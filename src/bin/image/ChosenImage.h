// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The series and the image that a command works on.
#pragma once

#include "bin/image/Arguments.h"
#include "imagelib/io/MImageSeries.h"

namespace tarvik::tool {

struct ChosenImage {
    /// Opens the file and reads the requested image, or the one named by the file.
    /// @throws MException
    explicit ChosenImage(const Arguments& arguments);

    /// The image's mask, or one of good pixels if it has none of its size.
    morvend::imglib::MImage mask() const;

    morvend::imglib::MImageSeries series{0};
    int number = 0;
    morvend::imglib::MImage image;
};

}  // namespace tarvik::tool
