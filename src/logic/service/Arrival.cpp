// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/Arrival.h"

Arrival::Arrival(ShownImage& shown, HeaderEdits& edits, Records& records)
    : _shown(shown)
    , _edits(edits)
    , _records(records)
{}

void Arrival::show(const LoaderData& load)
{
    const std::string oldId = _records.syncId();
    _shown = {load.image, load.mask,  load.thumbnail, load.thumbnailMask, load.statistics,
              load.path,  load.index, load.packed,    load.maxima,        load.seriesPath};
    const bool sameGroup = oldId == _records.syncId();
    _edits.newImage(_shown.image, _shown.index, sameGroup);
    _records.region().takeNumbers(load);
    _records.foundPeaks().take(load);
    _records.searchPeaks();
    if (!sameGroup)
        _records.changeGroups(load);
    _records.chooseContrast();
}
