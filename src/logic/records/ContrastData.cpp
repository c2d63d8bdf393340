// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Equality of contrasts.
#include "logic/records/ContrastData.h"

#include "logic/records/NanEqual.h"

ContrastData::ContrastData(double foreground_, double background_, const MColorTable* colorTable_,
                           bool dragUpdate_)
    : defined(true)
    , foreground(foreground_)
    , background(background_)
    , colorTable(colorTable_)
    , dragUpdate(dragUpdate_)
{}

bool ContrastData::operator==(const ContrastData& other) const
{
    return defined == other.defined && records::equal(foreground, other.foreground) &&
           records::equal(background, other.background) && dragUpdate == other.dragUpdate &&
           colorTable == other.colorTable;
}
