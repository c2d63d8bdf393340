// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The region of interest of a view, and its numbers.
#pragma once

#include "logic/analysis/roi/RegionWorker.h"
#include "logic/loading/LoaderData.h"
#include "logic/service/ComputedRegion.h"
#include "logic/service/HeaderEdits.h"
#include "logic/service/ShownImage.h"
#include "logic/service/ViewRecord.h"

#include <QObject>

/// The record of the region, its numbers, which are computed off the GUI thread, and its tie to the
/// header: an active centred circle and the beam centre follow each other. Thread: GUI only.
class ViewRegion : public QObject {
    Q_OBJECT
public:
    /// @param shown, edits  outlive this object
    ViewRegion(SyncGroups<StatisticsData>& groups, ShownImage& shown, HeaderEdits& edits);

    const StatisticsData& value() const { return _record.value(); }
    /// Without an image the record is only stored.
    void set(const StatisticsData& region);
    /// As for ViewRecord.
    void changeGroup(const std::string& syncId, const StatisticsData& atRequest);

    /// For a new image: its numbers came with it, unless the region has changed meanwhile.
    void takeNumbers(const LoaderData& load);
    bool pending() const { return _worker.pending(); }
    const ComputedRegion& computed() const { return _computed; }
    /// Waits for numbers that are being computed.
    const RoiStatistics& awaitNumbers();

    /// After a header edit: an active centred circle moves to the beam centre.
    void followBeamCentre();

signals:
    void newStatisticsSignal(StatisticsData region);
    /// Numbers missing at newStatisticsSignal() have arrived.
    void regionComputedSignal();
    /// The beam centre has followed the region.
    void headerChangedSignal();

private:
    void _compute();
    void _announceNumbers();
    void _moveBeamCentre();
    bool _activeCentredCircle() const;
    bool _isAtBeamCentre() const;

    ShownImage& _shown;
    HeaderEdits& _edits;
    ViewRecord<StatisticsData> _record;
    ComputedRegion _computed;
    StatisticsData _askedFor;
    bool _unannounced = false;  // of the available numbers
    RegionWorker _worker;       // last: its thread calls this object
};
