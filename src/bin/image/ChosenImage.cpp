// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the command line to an image.
#include "bin/image/ChosenImage.h"

#include "bin/image/CrashGuard.h"
#include "imagelib/image/GapValues.h"

namespace tarvik::tool {

ChosenImage::ChosenImage(const Arguments& arguments)
{
    CrashGuard::note("opening the file: " + arguments.file);
    number = series.open(arguments.file);
    number = arguments.frame.value_or(number);
    CrashGuard::note("reading image " + std::to_string(number) + ": " + arguments.file);
    image = series.at(number);
}

morvend::imglib::MImage ChosenImage::mask() const
{
    morvend::imglib::MImage mask = maskOrGaps(image);
    return mask.empty() ? morvend::imglib::MImage(image, 0U) : mask;
}

}  // namespace tarvik::tool
