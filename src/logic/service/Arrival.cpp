// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How a finished load becomes visible.
#include "logic/service/TarvikServicePrivate.h"
#include "logic/support/Console.h"

void TarvikService::TarvikServicePrivate::newImage()
{
    const std::string oldId = service.syncID();
    // Each record has a signal of its own. Where two were finished before the first was looked at,
    // the second has its turn with the next one: the image that was asked for last is shown last.
    _imageLoader.results(_finished);
    if (_finished.empty())
        return;
    const ImageLoader::Data load = std::move(_finished.front());
    _finished.pop_front();
    _imagePath = load.path;
    _image = load.image;
    _imageIndex = load.index;
    _mask = load.mask;
    _thumbnail = load.thumbnail;
    _thumbnailMask = load.thumbnailMask;
    _statistics = load.statistics;
    _regionWorker.cancel();  // that was of the image before
    _regionUnsignalled = false;
    _region = {load.statisticsData, load.roiStatistics};
    _imagePeaksDirty = true;

    if (_watch)
        _watch->setFile(service.imagePath());

    const bool sameGroup = oldId == service.syncID();
    _headerEdits.newImage(_image, _imageIndex, sameGroup);
    if (!sameGroup)
        changeGroups(load);
    else if (_statisticsRecord.value() != load.statisticsData)
        computeRegion();  // the loader computed the one that was there at the request

    emit service.newImageSignal();
    emit service.newStatisticsSignal(_statisticsRecord.value());
    emit service.newPeakSignal(_peaks.value());
    emit service.resolutionDefinedSignal(service.resolutionDefined());
    emit service.powderPlotDefinedSignal(service.powderPlotDefined());
    console::printTime("               TOTAL TIME LOADING IMAGE: ", _loadClock.elapsed());
}

void TarvikService::TarvikServicePrivate::changeGroups(const ImageLoader::Data& request)
{
    const std::string id = service.syncID();

    _contrast.changeGroup(id);
    if (_contrast.value() == request.contrastData)
        _contrast.store(_contrast.data());
    if (!_contrast.value().colorTable) {
        ContrastData coloured = _contrast.value();
        coloured.colorTable = _defaultColorTable;
        _contrast.store(coloured);
    }

    _viewport.changeGroup(id);
    if (_viewport.value() == request.viewportData)
        _viewport.store(_viewport.data());

    _statisticsRecord.changeGroup(id);
    if (_statisticsRecord.value() == request.statisticsData) {
        const StatisticsData ofGroup = _statisticsRecord.data();
        if (ofGroup != _statisticsRecord.value())
            setStatisticsData(ofGroup);
        else
            _statisticsRecord.store(ofGroup);
    } else {
        computeRegion();  // the loader computed the one that was there at the request
    }

    _peaks.changeGroup(id);
    if (_peaks.value() == request.peakData) {
        const PeakData ofGroup = _peaks.data();
        if (ofGroup != _peaks.value())
            service.setPeakData(ofGroup);
        else
            _peaks.store(ofGroup);
    }
}
