// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/TarvikServicePrivate.h"

#include "logic/support/PacedCalls.h"

#include <utility>

TarvikService::TarvikServicePrivate::TarvikServicePrivate(TarvikService& service,
                                                          RecordGroups& groups,
                                                          std::shared_ptr<HalvoService> detector)
    : _service(service)
    , records(groups, shown, headerEdits)
    , halvoClient(std::make_unique<HalvoClient>(std::move(detector)))
{
    using S = TarvikService;
    connect(&records, &Records::newContrastSignal, &service, &S::newContrastSignal);
    connect(&records, &Records::newViewportSignal, &service, &S::newViewportSignal);
    connect(&records, &Records::newPeakSignal, &service, &S::newPeakSignal);
    connect(&records, &Records::newPeakSignal, &service, [this] { packer.looked(); });
    connect(&records.foundPeaks(), &ViewPeaks::computedSignal, &service, &S::peaksComputedSignal);
    const ViewRegion* region = &records.region();
    connect(region, &ViewRegion::newStatisticsSignal, &service, &S::newStatisticsSignal);
    connect(region, &ViewRegion::newStatisticsSignal, &service, [this] { packer.looked(); });
    connect(region, &ViewRegion::regionComputedSignal, &service, &S::regionComputedSignal);
    connect(region, &ViewRegion::headerChangedSignal, &service, &S::headerChangedSignal);

    connect(&opening, &Opening::folderChangedSignal, &service, &S::_scanImageContainterSlot);
    const ImageLoader* loader = &opening.loader();
    PacedCalls& paced = PacedCalls::ofThisProcess();
    connect(loader, &ImageLoader::newImage, &service,
            [&] { paced.call(&service, [&service] { service._newImageSlot(); }); });
    // In order with the images.
    connect(loader, &ImageLoader::loadError, &service, [&](const QString& message) {
        paced.call(&service, [&service, message] { emit service.imageLoadErrorSignal(message); });
    });
    connect(loader, &ImageLoader::waitingSignal, &service, &S::waitingSignal);
    connect(loader, &ImageLoader::notice, &service, &S::noticeSignal);
    connect(loader, &ImageLoader::readAheadSignal, &service, &S::readAheadSignal);
    connect(loader, &ImageLoader::imageContainerChangedSignal, &service,
            &S::imageContainerChangedSignal);

    const auto open = qOverload<MImage>(&S::openImage);
    connect(&modes.monitor(), &HalvoMonitor::newImage, &service, open);
    connect(&service, &S::newImageSignal, &modes.monitor(), &HalvoMonitor::newImageSlot);
    connect(&service, &S::imageLoadErrorSignal, &modes.monitor(), &HalvoMonitor::newImageSlot);
    connect(&modes.monitor(), &HalvoMonitor::errorSignal, &service, &S::noticeSignal);
    connect(halvoClient.get(), &HalvoClient::monitorSignal, &service, open);
}

void TarvikService::TarvikServicePrivate::end()
{
    halvoClient.reset();
    modes.end();
}

void TarvikService::TarvikServicePrivate::watch(const std::function<void()>& shownCall,
                                                const std::function<void()>& scannedCall)
{
    unwatch();
    opening.watch(true);
    _watching = {
        connect(&_service, &TarvikService::newImageSignal, &_service, shownCall),
        connect(&_service, &TarvikService::imageContainerChangedSignal, &_service, scannedCall)};
}

void TarvikService::TarvikServicePrivate::unwatch()
{
    for (const QMetaObject::Connection& connection : _watching)
        disconnect(connection);
    opening.watch(false);
}

void TarvikService::TarvikServicePrivate::updatePacking()
{
    const bool packs = packsPixels && !modes.any();
    opening.setPacking(packs);
    packer.setOn(packs);
}

void TarvikService::TarvikServicePrivate::modeChanged(Mode mode, bool on)
{
    updatePacking();
    switch (mode) {
    case Mode::Movie:
        emit _service.movieModeSignal(on);
        break;
    case Mode::WatchSeries:
        emit _service.watchSeriesModeSignal(on);
        break;
    case Mode::Monitor:
        emit _service.halvoMonitorModeSignal(on);
        break;
    }
}

void TarvikService::TarvikServicePrivate::monitorHostChanged(const QString& host, int port,
                                                             double minPause)
{
    emit _service.halvoMonitorHostSignal(host, port, minPause);
}
