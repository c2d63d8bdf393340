// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The records of a view that its group shares.
#pragma once

#include "logic/analysis/statistics/ContrastRange.h"
#include "logic/records/RecordGroups.h"
#include "logic/service/ViewPeaks.h"
#include "logic/service/ViewRegion.h"

#include <QObject>
#include <QString>

#include <string>

/// Contrast, viewport, region and peaks of a view: setting them, and the group that they are shared
/// with. Thread: GUI only.
class Records : public QObject {
    Q_OBJECT
public:
    using MColorTable = morvend::imglib::MColorTable;

    /// @param groups, shown, edits  outlive this object
    Records(RecordGroups& groups, ShownImage& shown, HeaderEdits& edits);

    const ContrastData& contrast() const { return _contrast.value(); }
    /// The contrast with other levels, set at once and not in a drag.
    ContrastData withLevels(const ContrastLevels& levels) const;
    const ViewportData& viewport() const { return _viewport.value(); }
    const StatisticsData& statistics() const { return _region.value(); }
    const PeakData& peaks() const { return _peaks.value(); }
    ViewRegion& region() { return _region; }
    const ViewRegion& region() const { return _region; }
    ViewPeaks& foundPeaks() { return _foundPeaks; }

    // Each stores a record, signals it in any case, and hands it to the group when it is new there.
    void setContrast(const ContrastData& contrast);
    /// The same without a signal, for an image that is about to be announced.
    void adoptContrast(const ContrastData& contrast);
    void setViewport(const ViewportData& viewport);
    void setPeaks(const PeakData& peaks);

    const MColorTable* defaultColorTable() const { return _defaultColorTable; }
    void setDefaultColorTable(const MColorTable* colorTable);

    /// As for TarvikService.
    std::string syncId() const;
    void setAdditionalSyncId(const QString& id) { _additionalSyncId = id; }
    /// Has the maxima of the image searched for if any are shown.
    void searchPeaks();
    /// Moves the view to the group of the image's size. What the user has not changed since the
    /// request is taken over from the group.
    void changeGroups(const LoaderData& request);
    /// Chooses a contrast from the statistics of the image, for the group too, unless there is one.
    void chooseContrast();

signals:
    void newContrastSignal(ContrastData contrast);
    void newViewportSignal(ViewportData viewport);
    void newPeakSignal(PeakData peaks);

private:
    const ShownImage& _shown;
    ViewRecord<ContrastData> _contrast;
    ViewRecord<ViewportData> _viewport;
    ViewRegion _region;
    ViewPeaks _foundPeaks;
    ViewRecord<PeakData> _peaks;
    const MColorTable* _defaultColorTable = nullptr;
    QString _additionalSyncId;
};
