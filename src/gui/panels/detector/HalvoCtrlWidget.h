// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel from which a detector is driven.
#pragma once

#include "gui/kit/SideBar.h"
#include "logic/detector/FrameTypes.h"
#include "logic/detector/SeriesProgress.h"
#include "logic/support/GlobalSettings.h"

#include <cstdint>
#include <memory>

class HalvoClient;
class InfoField;
class TextEdit;
class TextField;
struct HalvoCtrlLayout;

/// Connects to a detector's control unit, sets the parameters of a series and starts or aborts it.
///
/// All panels steer the one detector of the process and show its state. Failures are shown in the
/// panel. Thread: GUI only; all work is the service's, nothing here waits.
class HalvoCtrlWidget : public SideBar {
    Q_OBJECT
public:
    using TextEdit = ::TextEdit;
    using TextField = ::TextField;
    using InfoField = ::InfoField;

    /// @param id  the key of the panel
    /// @param client  of the view that the panel belongs to; not owned, lives as long as the panel
    /// @param machineSettings  the file of the machine's settings, another one in tests
    HalvoCtrlWidget(unsigned long long id, HalvoClient* client,
                    const QString& machineSettings = GlobalSettings::machinePath());
    ~HalvoCtrlWidget() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private slots:
    // The service reports. An argument of success is also whether to request what is not known.
    void _updateState(bool success);
    void _updateConfig(bool success);
    void _updateFileName();
    void _updateMode();
    void _finished();
    void _finishedInitialize(bool success, const QString& error);
    void _finishedSeries(bool success, const QString& error);
    void _finishedAbort(bool success, const QString& error);
    void _error(const QString& text);
    void _newFrame(const ImageData& image, int seriesId, int frameId);
    void _newPicture();
    void _newProgress(const SeriesProgress& progress);

    // The user acts. A text that is no value of its field is left alone.
    bool _setHost();
    void _connect();
    void _disconnect();
    void _series();
    void _setFilePattern(const QString& text);
    void _setNImages(const QString& text);
    void _setFrameTime(const QString& text);
    void _setAdvancedMode(int index);
    void _setCountTime(const QString& text);
    void _setPhotonEnergy(const QString& text);
    void _setThresholdEnergy(const QString& text);
    void _setTriggerMode(const QString& text);
    void _setFlatfieldCorrectionApplied(bool on);
    void _setPixelMaskApplied(bool on);
    void _setVisibleInUserMode(bool visible);

private:
    void _connectService();
    void _connectFields();
    void _showIdle(bool ready);
    void _showRunning();
    void _showCounts();
    void _finish(const QString& what, bool success, const QString& error);

    HalvoClient* const _client;
    const std::unique_ptr<HalvoCtrlLayout> _ui;
    bool _running = false;  // a series, which the button aborts
    int _nImages = 0;       // as last reported
    // Of the series of this view.
    SeriesProgress _progress;
    int _seriesId = -1;
    int _lastFrame = -1;   // that was handed to the display
    int _shownFrame = -1;  // that is in the view
    std::int64_t _pictures = 0;
};
