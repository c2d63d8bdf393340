// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Drawing lists as text, for comparisons.
#pragma once

#include "imagelib/display/MDrawingList.h"

#include <sstream>
#include <string>

namespace tarvik::tests {

using namespace morvend::imglib;

/// Everything of a list as text.
inline std::string described(const MDrawingList<>& list)
{
    std::ostringstream out;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const auto& item = list[i];
        out << item.type() << ' ' << int(item.red()) << ' ' << int(item.green()) << ' '
            << int(item.blue()) << ' ' << int(item.alpha());
        if (const auto* pixel = dynamic_cast<const MDrawingPixel*>(&item))
            out << ' ' << pixel->x() << ' ' << pixel->y();
        if (const auto* line = dynamic_cast<const MDrawingLine*>(&item))
            out << ' ' << line->xBegin() << ' ' << line->yBegin() << ' ' << line->xEnd() << ' '
                << line->yEnd();
        if (const auto* text = dynamic_cast<const MDrawingString*>(&item))
            out << ' ' << text->x() << ' ' << text->y() << ' ' << text->text();
        if (const auto* ellipse = dynamic_cast<const MDrawingEllipse*>(&item))
            out << ' ' << ellipse->x() << ' ' << ellipse->y() << ' ' << ellipse->rx() << ' '
                << ellipse->ry() << ' ' << ellipse->rotation();
        out << '\n';
    }
    return out.str();
}

}  // namespace tarvik::tests
