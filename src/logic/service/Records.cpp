// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/Records.h"

#include <cmath>
#include <utility>

Records::Records(RecordGroups& groups, ShownImage& shown, HeaderEdits& edits)
    : _shown(shown)
    , _contrast(groups.of<ContrastData>(), [this] { emit newContrastSignal(contrast()); })
    , _viewport(groups.of<ViewportData>(), [this] { emit newViewportSignal(viewport()); })
    , _region(groups.of<StatisticsData>(), shown, edits)
    , _foundPeaks(shown)
    , _peaks(groups.of<PeakData>(), [this] {
        searchPeaks();
        emit newPeakSignal(peaks());
    })
{}

// A receiver of a signal may set the record again before the signal returns, so what is handed to
// the group is the view's value after that.

void Records::setContrast(const ContrastData& contrast)
{
    _contrast.store(contrast);
    emit newContrastSignal(contrast);
    _contrast.spreadValue();
}

void Records::adoptContrast(const ContrastData& contrast)
{
    _contrast.store(contrast);
    _contrast.spreadValue();
}

ContrastData Records::withLevels(const ContrastLevels& levels) const
{
    const MColorTable* const table = contrast().colorTable;
    return {levels.foreground, levels.background, table ? table : _defaultColorTable, false};
}

void Records::setViewport(const ViewportData& viewport)
{
    _viewport.store(viewport);
    emit newViewportSignal(viewport);
    _viewport.spreadValue();
}

void Records::setPeaks(const PeakData& peaks)
{
    _peaks.store(peaks);
    searchPeaks();
    emit newPeakSignal(peaks);
    _peaks.spreadValue();
}

void Records::searchPeaks()
{
    if (peaks().numberOfPeaks != 0)
        _foundPeaks.search();
}

void Records::setDefaultColorTable(const MColorTable* colorTable)
{
    if (std::exchange(_defaultColorTable, colorTable) == colorTable)
        return;
    // A view whose contrast names no table shows this one.
    ContrastData recoloured = contrast();
    if (recoloured.colorTable || !recoloured.defined)
        return;
    recoloured.dragUpdate = false;
    emit newContrastSignal(recoloured);
}

std::string Records::syncId() const
{
    if (!_shown.loaded())
        return {};
    return std::to_string(_shown.image.width()) + '_' + std::to_string(_shown.image.height()) +
           '_' + _additionalSyncId.toStdString();
}

void Records::changeGroups(const LoaderData& request)
{
    const std::string id = syncId();
    _contrast.changeGroup(id, request.contrastData);
    if (!contrast().colorTable) {
        ContrastData coloured = contrast();
        coloured.colorTable = _defaultColorTable;
        _contrast.store(coloured);
    }
    _viewport.changeGroup(id, request.viewportData);
    _region.changeGroup(id, request.statisticsData);
    if (_peaks.changeGroup(id, request.peakData))
        setPeaks(PeakData(peaks()));
}

void Records::chooseContrast()
{
    if (contrast().defined)
        return;
    const ImageStatistics& statistics = *_shown.statistics;
    double foreground = statistics.foreground;
    double background = statistics.background;
    // Whole numbers, unless they would move a level by a good part of the distance of the two.
    constexpr double LeastDistance = 10;
    if (!_shown.floatingPixels() || foreground - background >= LeastDistance) {
        foreground = std::trunc(foreground);
        background = std::trunc(background);
    }
    adoptContrast(withLevels({background, foreground}));
}
