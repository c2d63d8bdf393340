// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/HalvoClient.h"

#include "logic/detector/HalvoService.h"

#include <utility>

HalvoClient::HalvoClient(std::shared_ptr<HalvoService> service, QObject* parent)
    : QObject(parent)
    , _service(std::move(service))
{
    qRegisterMetaType<HalvoClient*>("HalvoClient*");
    connect(_service.get(), &HalvoService::monitorSignal, this,
            [this](const HalvoClient* client, const morvend::imglib::MImage& image) {
                if (client == this)
                    emit monitorSignal(image);
            });
}
