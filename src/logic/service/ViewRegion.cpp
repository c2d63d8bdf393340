// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/ViewRegion.h"

#include "logic/geometry/Geometry.h"

#include <utility>

ViewRegion::ViewRegion(SyncGroups<StatisticsData>& groups, ShownImage& shown, HeaderEdits& edits)
    : _shown(shown)
    , _edits(edits)
    , _record(groups,
              [this] {
                  _moveBeamCentre();
                  emit newStatisticsSignal(value());
              })
    , _worker([this] {
        QMetaObject::invokeMethod(this, &ViewRegion::_announceNumbers, Qt::QueuedConnection);
    })
{}

void ViewRegion::set(const StatisticsData& region)
{
    _record.store(region);
    if (!_shown.loaded())
        return;
    _moveBeamCentre();
    _compute();
    emit newStatisticsSignal(value());
    _record.spreadValue();
}

void ViewRegion::changeGroup(const std::string& syncId, const StatisticsData& atRequest)
{
    if (_record.changeGroup(syncId, atRequest))
        set(StatisticsData(value()));
}

void ViewRegion::takeNumbers(const LoaderData& load)
{
    _worker.cancel();  // that was for the previous image
    _unannounced = false;
    _computed = {load.statisticsData, load.roiStatistics};
    if (value() != load.statisticsData)
        _compute();
}

const RoiStatistics& ViewRegion::awaitNumbers()
{
    if (_worker.wait(_computed.numbers)) {
        _computed.region = _askedFor;
        _unannounced = true;
        // Others may be waiting for the signal; a caller that requests numbers does not expect a
        // signal meanwhile.
        QMetaObject::invokeMethod(this, &ViewRegion::_announceNumbers, Qt::QueuedConnection);
    }
    return _computed.numbers;
}

void ViewRegion::_compute()
{
    _askedFor = value();
    _worker.request(_shown.whole(), _shown.mask, _askedFor);
}

void ViewRegion::_announceNumbers()
{
    if (_worker.take(_computed.numbers)) {
        _computed.region = _askedFor;
        _unannounced = true;
    }
    if (std::exchange(_unannounced, false))
        emit regionComputedSignal();
}

bool ViewRegion::_activeCentredCircle() const
{
    return value().roiActive && value().roiType == StatisticsData::CentredCircle &&
           value().centredCircleDefined();
}

bool ViewRegion::_isAtBeamCentre() const
{
    // Headers hold single precision: values count as equal if they become equal there.
    const geometry::Header& header = std::as_const(_shown.image).optionalData();
    return geometry::beamCentreDefined(header) &&
           *header.beam_center_x() == static_cast<float>(value().powderX) &&
           *header.beam_center_y() == static_cast<float>(value().powderY);
}

void ViewRegion::_moveBeamCentre()
{
    if (!_activeCentredCircle() || _isAtBeamCentre())
        return;
    _edits.applyBeamCentre(static_cast<float>(value().powderX), static_cast<float>(value().powderY),
                           _shown.image);
    emit headerChangedSignal();
}

void ViewRegion::followBeamCentre()
{
    const geometry::Header& header = std::as_const(_shown.image).optionalData();
    if (!_activeCentredCircle() || !geometry::beamCentreDefined(header) || _isAtBeamCentre())
        return;
    StatisticsData region = value();
    region.powderX = *header.beam_center_x();
    region.powderY = *header.beam_center_y();
    set(region);
}
