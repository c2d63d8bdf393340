// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One view's handle on the detector.
#pragma once

#include "imagelib/image/MImage.h"

#include <QObject>

#include <memory>

class HalvoService;

/// Names the requesting view to the shared service, and passes on to the view the pictures that are
/// its own. Thread: GUI only.
class HalvoClient : public QObject {
    Q_OBJECT
public:
    explicit HalvoClient(std::shared_ptr<HalvoService> service, QObject* parent = nullptr);

    const std::shared_ptr<HalvoService>& service() const { return _service; }

signals:
    /// A picture of a series that this view started.
    void monitorSignal(morvend::imglib::MImage image);

private:
    const std::shared_ptr<HalvoService> _service;
};
