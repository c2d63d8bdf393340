// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/HalvoClient.h"

#include <utility>

HalvoClient::HalvoClient(std::shared_ptr<HalvoService> service, QObject* parent)
    : QObject(parent)
    , _service(std::move(service))
{
    using S = HalvoService;
    using C = HalvoClient;
    const S* const from = _service.get();
    connect(from, &S::permissionSignal, this, &C::permissionSignal);
    connect(from, &S::newFrame, this, &C::newFrame);
    connect(from, &S::finished, this, &C::finished);
    connect(from, &S::stateChanged, this, &C::stateChanged);
    connect(from, &S::configChanged, this, &C::configChanged);
    connect(from, &S::fileNameChanged, this, &C::fileNameChanged);
    connect(from, &S::modeChanged, this, &C::modeChanged);
    connect(from, &S::error, this, &C::error);
    connect(from, &S::finishedInitialize, this, &C::finishedInitialize);
    connect(from, &S::finishedSeries, this, &C::finishedSeries);
    connect(from, &S::finishedAbort, this, &C::finishedAbort);
    connect(from, &S::monitorSignal, this, &C::_monitorSlot);
    connect(from, &S::progressSignal, this, &C::_progressSlot);
}

void HalvoClient::_monitorSlot(const HalvoClient* client, const morvend::imglib::MImage& image)
{
    if (client == this)
        emit monitorSignal(image);
}

void HalvoClient::_progressSlot(const SeriesProgress& progress)
{
    if (_service->seriesClient() == this)
        emit progressSignal(progress);
}
