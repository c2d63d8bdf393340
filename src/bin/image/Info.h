// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command "info": describes an image.
#pragma once

#include "bin/image/Arguments.h"
#include "bin/image/ChosenImage.h"

#include <iosfwd>

namespace tarvik::tool {

class Info {
public:
    /// @throws MException if the image can't be read or a pixel is outside it
    explicit Info(Arguments arguments);

    void writeText(std::ostream& out) const;
    /// One JSON object on one line.
    void writeJson(std::ostream& out) const;
    /// The header text of a file, or a line for each header value if its format has no such text.
    static void writeHeader(const morvend::imglib::MImage& image, std::ostream& out);

private:
    Arguments _arguments;
    ChosenImage _chosen;
};

}  // namespace tarvik::tool
