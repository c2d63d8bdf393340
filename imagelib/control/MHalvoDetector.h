// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A detector control unit as its caller sees it: state, parameters, the commands of a series.
#pragma once

#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <tuple>

namespace morvend::imglib {

class UnitClient;

/// One connection to a control unit (docs/protocols/control-unit.md). Making one is cheap and talks
/// to nobody; the first call connects.
///
/// Every call blocks its thread, looks at `cancel` at least every 50 ms, and ends within a bound:
/// 3 s to connect, 10 s for an answer. initialize(), arm() and trigger() wait for the answer until
/// `cancel` is set or the connection ends, which a unit that disappears does within 15 s.
///
/// Failures, each with unit, request and reason in its text:
///
/// | exception | what happened |
/// |---|---|
/// | MTimeoutException | connected, but no complete answer in time; never from initialize() and
/// abort() | | MHttpException | no connection, or a lost one; an error status; an answer that is
/// against the protocol or too large; no answer to abort() in time | | MRuntimeException | the unit
/// refused and said why (a value out of range, a command in the wrong state), or `cancel` was set |
///
/// Thread: an object belongs to one thread at a time; `cancel` may be set from any.
class MHalvoDetector {
public:
    using Cancel = std::atomic<bool>;
    /// Value, least and largest value that the unit accepts now.
    using IntRange = std::tuple<int, int, int>;
    using DoubleRange = std::tuple<double, double, double>;
    /// Value, and the values that the unit accepts now.
    using TextChoice = std::tuple<std::string, std::set<std::string>>;

    /// @param host  name or address, without scheme and port
    /// @param port  of the unit's HTTP service, 1 to 65535; anything else fails in the first call
    MHalvoDetector(const std::string& host, int port);
    ~MHalvoDetector();
    MHalvoDetector(const MHalvoDetector&) = delete;
    MHalvoDetector& operator=(const MHalvoDetector&) = delete;

    /// Makes the unit ready, which may take minutes; ends an error of the unit too.
    void initialize(const Cancel& cancel);
    /// Makes the unit ready for a series of nImages() frames with the parameters of now.
    void arm(const Cancel& cancel);
    /// Starts the exposure and returns when it has ended; frames may still be on their way.
    void trigger(const Cancel& cancel);
    /// Ends the series, from any state; the frames taken so far are sent. Without a series nothing
    /// happens.
    void abort(const Cancel& cancel);

    /// "na", "initialize", "idle", "ready" (armed), "acquire", "error"; other words may be added.
    std::string status(const Cancel& cancel);
    /// True while the unit reports an error, whatever its status() says.
    bool isError(const Cancel& cancel);
    std::string description(const Cancel& cancel);
    std::string detectorNumber(const Cancel& cancel);

    /// Images of the next series.
    IntRange nImages(const Cancel& cancel);
    /// Seconds from the start of a frame to the start of the next one.
    DoubleRange frameTime(const Cancel& cancel);
    /// Seconds of exposure of a frame; less than the frame time.
    DoubleRange countTime(const Cancel& cancel);
    /// eV.
    DoubleRange photonEnergy(const Cancel& cancel);
    /// eV.
    DoubleRange thresholdEnergy(const Cancel& cancel);
    /// "ints", "inte", "exts", "exte".
    TextChoice triggerMode(const Cancel& cancel);
    /// The element whose line the photon energy is; the value is empty after a photon energy was
    /// set as a number.
    TextChoice element(const Cancel& cancel);
    bool flatfieldCorrectionApplied(const Cancel& cancel);
    bool pixelMaskApplied(const Cancel& cancel);

    // Writing. The unit may change other parameters with it: a photon energy or an element moves
    // the threshold, a frame time the limits of the count time, a trigger mode both times.
    void setNImages(int images, const Cancel& cancel);
    void setFrameTime(double seconds, const Cancel& cancel);
    void setCountTime(double seconds, const Cancel& cancel);
    void setPhotonEnergy(double electronVolts, const Cancel& cancel);
    void setThresholdEnergy(double electronVolts, const Cancel& cancel);
    void setElement(const std::string& symbol, const Cancel& cancel);
    void setTriggerMode(const std::string& mode, const Cancel& cancel);
    void setFlatfieldCorrectionApplied(bool applied, const Cancel& cancel);
    void setPixelMaskApplied(bool applied, const Cancel& cancel);
    /// Adds short exposures up where one would overflow.
    void setAutoSummation(bool on, const Cancel& cancel);
    /// "standard".
    void setCalibrationType(const std::string& type, const Cancel& cancel);
    void setCountrateCorrectionApplied(bool applied, const Cancel& cancel);
    /// "continuous", "bunches".
    void setCountrateCorrectionBunchMode(const std::string& mode, const Cancel& cancel);
    /// Spreads the counts of the wide pixels between chips.
    void setVirtualPixelCorrectionApplied(bool applied, const Cancel& cancel);

private:
    const std::unique_ptr<UnitClient> _unit;
};

}  // namespace morvend::imglib
