// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The steps of a series, from the settings of the detector to the end of the exposure.
#pragma once

#include "logic/detector/AsyncTicket.h"
#include "logic/detector/HalvoState.h"
#include "logic/detector/Retry.h"

#include <QString>

#include <functional>

namespace morvend::imglib {
class MHalvoDetector;
}

/// Runs one series. The detector's own file writer is off from arming to the end; how it was before
/// is put back on every way out.
/// Thread: the one that makes the calls, for as long as the exposure lasts.
class SeriesSequence {
public:
    using Detector = morvend::imglib::MHalvoDetector;

    /// What happens on the way, in the thread of the sequence.
    struct Events {
        /// All that the detector answers after it was set.
        std::function<void(const HalvoState&)> configured;
        /// Frames of the series are to go into the file.
        std::function<void(int nImages)> startFileWriter;
        /// Frames are to be received, until none comes for `timeout` seconds.
        std::function<void(double timeout)> startStream, startMonitor;
        /// The exposure has ended, or `flags` want the end; not after a failure.
        std::function<void()> exposed;
        /// A text for the user about something that does not end the series.
        std::function<void(const QString&)> error;
    };

    /// @param wanted  settings of the series; what is empty is left as the detector has it
    SeriesSequence(Detector& detector, RequestFlags& flags, const AsyncTicket& ticket,
                   const HalvoState& wanted, const Events& events);

    /// @throws MTimeoutException, MRuntimeException, MHttpException of the detector's library
    void run();

private:
    bool _automatic() const { return _ticket.mode == HalvoMode::Automatic; }
    std::string _address() const;
    void _openSource();
    void _openStream();
    void _openMonitor();
    void _setCorrections();
    void _setTrigger();
    void _setTimes();
    void _setEnergies();
    HalvoState _configuration();
    void _expose(const HalvoState& configuration);

    Detector& _detector;
    RequestFlags& _flags;
    const AsyncTicket& _ticket;
    const HalvoState& _wanted;
    const Events& _events;
    bool _hasStream = false;
};
