// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the command line to an image.
#include "bin/image/ChosenImage.h"

namespace tarvik::tool {

ChosenImage::ChosenImage(const Arguments& arguments)
    : number(series.open(arguments.file))
{
    number = arguments.frame.value_or(number);
    image = series.at(static_cast<std::size_t>(number));
}

}  // namespace tarvik::tool
