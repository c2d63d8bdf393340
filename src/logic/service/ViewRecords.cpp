// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Setting records and spreading them through the group.
#include "logic/geometry/Geometry.h"
#include "logic/service/TarvikServicePrivate.h"

// A receiver of a signal may set the record anew before the signal returns; what is handed to the
// group is therefore the view's value then.

void TarvikService::setContrastData(ContrastData data)
{
    _d->_contrast.store(data);
    emit newContrastSignal(data);
    _d->_contrast.spreadValue();
}

void TarvikService::setViewportData(ViewportData data)
{
    _d->_viewport.store(data);
    emit newViewportSignal(data);
    _d->_viewport.spreadValue();
}

void TarvikService::setPeakData(PeakData data)
{
    _d->_peaks.store(data);
    emit newPeakSignal(data);
    _d->_peaks.spreadValue();
}

void TarvikService::setStatisticsData(StatisticsData data) { _d->setStatisticsData(data); }

void TarvikService::TarvikServicePrivate::computeRegion()
{
    _regionAskedFor = _statisticsRecord.value();
    _regionWorker.request(_image, _mask, _regionAskedFor);
}

void TarvikService::TarvikServicePrivate::regionComputed()
{
    if (_regionWorker.take(_region.numbers)) {
        _region.region = _regionAskedFor;
        _regionUnsignalled = true;
    }
    if (std::exchange(_regionUnsignalled, false))
        emit service.regionComputedSignal();
}

void TarvikService::TarvikServicePrivate::awaitRegion()
{
    if (!_regionWorker.wait(_region.numbers))
        return;
    _region.region = _regionAskedFor;
    _regionUnsignalled = true;
    // Others may be waiting for the signal; who asks for numbers does not expect one meanwhile.
    QMetaObject::invokeMethod(&service, &TarvikService::_regionComputedSlot, Qt::QueuedConnection);
}

void TarvikService::TarvikServicePrivate::setStatisticsData(const StatisticsData& data)
{
    _statisticsRecord.store(data);
    if (_image.empty())
        return;
    applyPowderCentreToBeamCentre();
    computeRegion();
    emit service.newStatisticsSignal(_statisticsRecord.value());
    _statisticsRecord.spreadValue();
}

bool TarvikService::TarvikServicePrivate::_activeCentredCircle() const
{
    const StatisticsData& data = _statisticsRecord.value();
    return data.roiActive && data.roiType == StatisticsData::CentredCircle &&
           data.centredCircleDefined();
}

/// Headers hold single precision: equal is what becomes equal there.
bool TarvikService::TarvikServicePrivate::_beamCentreIsPowderCentre() const
{
    const StatisticsData& data = _statisticsRecord.value();
    const Header& header = _image.optionalData();
    return *header.beam_center_x() == static_cast<float>(data.powderX) &&
           *header.beam_center_y() == static_cast<float>(data.powderY);
}

void TarvikService::TarvikServicePrivate::applyPowderCentreToBeamCentre()
{
    if (!_activeCentredCircle())
        return;
    if (geometry::beamCentreDefined(_image.optionalData()) && _beamCentreIsPowderCentre())
        return;
    const StatisticsData& data = _statisticsRecord.value();
    _headerEdits.applyBeamCentre(static_cast<float>(data.powderX), static_cast<float>(data.powderY),
                                 _image);
    emit service.headerChangedSignal();
}

void TarvikService::TarvikServicePrivate::applyBeamCentreToPowderCentre()
{
    const Header& header = _image.optionalData();
    if (!_activeCentredCircle() || !geometry::beamCentreDefined(header) ||
        _beamCentreIsPowderCentre())
        return;
    StatisticsData data = _statisticsRecord.value();
    data.powderX = *header.beam_center_x();
    data.powderY = *header.beam_center_y();
    setStatisticsData(data);
}
