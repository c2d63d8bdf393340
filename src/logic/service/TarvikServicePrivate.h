// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The parts of a view's service.
#pragma once

#include "logic/detector/HalvoClient.h"
#include "logic/service/Arrival.h"
#include "logic/service/AutoModes.h"
#include "logic/service/ContrastChooser.h"
#include "logic/service/HeaderEdits.h"
#include "logic/service/MaximaMaker.h"
#include "logic/service/Opening.h"
#include "logic/service/PixelPacker.h"
#include "logic/service/Records.h"
#include "logic/service/ShownImage.h"
#include "logic/service/TarvikService.h"
#include "logic/service/ViewDriver.h"

#include <array>
#include <list>
#include <memory>

/// Holds the parts, connects their signals to those of the service, and lets the modes drive it.
class TarvikService::TarvikServicePrivate final : public ViewDriver {
    // First: the modes call unwatch() when they are destroyed.
    TarvikService& _service;
    std::array<QMetaObject::Connection, 2> _watching;

public:
    TarvikServicePrivate(TarvikService& service, RecordGroups& groups,
                         std::shared_ptr<HalvoService> detector);
    /// Ends all background work: the first step of destruction, while the service is complete.
    void end();

    bool imageLoaded() const override { return shown.loaded(); }
    int index() const override { return shown.index; }
    int lastIndex() const override { return opening.lastIndex(); }
    bool loading() const override { return opening.loading(); }
    void nextImage(int n, bool signalLoadError) override { opening.nextImage(n, signalLoadError); }
    void openLast(bool signalLoadError) override { opening.openLast(signalLoadError); }
    void dropRequests() override { opening.dropRequests(); }
    void scan() override { opening.scan(); }
    void watch(const std::function<void()>& shownCall,
               const std::function<void()>& scannedCall) override;
    void unwatch() override;
    void modeChanged(Mode mode, bool on) override;
    void monitorHostChanged(const QString& host, int port, double minPause) override;

    /// Has pixels packed where the view wants that and is in no mode.
    void updatePacking();

    ShownImage shown;
    bool packsPixels = false;
    PixelPacker packer{shown};
    HeaderEdits headerEdits;
    Records records;
    MaximaMaker maximaMaker{shown, [this] { emit _service.blockMaximaSignal(); }};
    ContrastChooser contrastChooser{shown, records};
    Opening opening{shown, records};
    Arrival arrival{shown, headerEdits, records};
    AutoModes modes{*this};
    std::unique_ptr<HalvoClient> halvoClient;
    PlottingMode plottingMode = PlottingMode::Flat;
    bool showResolutionRings = false;
    bool highlightDefective = true;
    bool highlightSaturated = true;
    std::list<const MColorTable*> colorTables;
    MDrawingList paintList;
};
