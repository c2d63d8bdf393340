// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures that a control unit keeps for those who ask.
#pragma once

#include "imagelib/image/MImage.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>

namespace morvend::imglib {

class UnitClient;

/// The monitor of a control unit: the latest picture, and a buffer of those before. Whoever asks
/// slowly misses pictures; the series goes on.
///
/// setEnabled(), setBufferSize(), clear() and dropped(): bounds, failures and threads as for
/// MHalvoDetector. monitor() and nextAll() take at most their timeout and 5 s more.
class MHalvoMonitor {
public:
    using Cancel = std::atomic<bool>;
    /// Picture, series and number of the frame in it, from 0.
    using NumberedPicture = std::tuple<MImage, int, int>;

    MHalvoMonitor(const std::string& host, int port);
    ~MHalvoMonitor();
    MHalvoMonitor(const MHalvoMonitor&) = delete;
    MHalvoMonitor& operator=(const MHalvoMonitor&) = delete;

    void setEnabled(bool enabled, const Cancel& cancel);
    /// @param images  that the unit keeps for nextAll(), the newest; the unit refuses too many
    void setBufferSize(int images, const Cancel& cancel);
    /// Empties the buffer.
    void clear(const Cancel& cancel);
    /// Pictures that left the buffer since clear() without having been taken by anybody.
    std::int64_t dropped(const Cancel& cancel);

    /// The unit's latest picture that this object has not returned yet, its header filled from what
    /// the unit sends with it.
    /// @throws MTimeoutException   no new picture within `timeoutMs`
    /// @throws MHttpException      the unit can't be reached, or its answer is against the protocol
    /// @throws MRuntimeException   the picture is damaged, the unit refused, or `cancel` was set
    /// No failure but that of `cancel` comes before `timeoutMs` are over: a caller that asks again
    /// at once keeps no processor busy.
    MImage monitor(int timeoutMs, const Cancel& cancel);

    /// Takes the oldest picture out of the buffer. A unit that can't be reached, or answers with
    /// nonsense, is asked again until the time is over: a short break of the network loses nothing.
    /// @throws MTimeoutException   no picture within `timeoutMs`; the text says what the last
    ///                             failure was, if there was one
    /// @throws MRuntimeException   the picture is damaged (and lost), or `cancel` was set
    NumberedPicture nextAll(int timeoutMs, const Cancel& cancel);

private:
    NumberedPicture _picture(const std::string& which, int waitMs, const Cancel& cancel);

    const std::unique_ptr<UnitClient> _unit;
    int _lastSeries = -1;
    int _lastFrame = -1;
};

}  // namespace morvend::imglib
