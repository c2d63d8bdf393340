// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The stream of a control unit: every frame, as it is taken.
#pragma once

#include "imagelib/control/MStreamObject.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace morvend::imglib {

/// Switches and receives the stream of a control unit. Frames go to one receiver only: a second one
/// would get every other frame.
///
/// The connection of the stream is made by the first pop() and lasts until the object goes; what
/// arrives between two calls waits in a bounded queue (4 messages), and then at the unit. After a
/// break of the network it is made anew by itself. Messages that had arrived are never lost by it.
///
/// All but version() and pop(): bounds, failures and threads as for MHalvoDetector.
class MHalvoStream {
public:
    using Cancel = std::atomic<bool>;

    /// @param port  of the unit's HTTP service, which says where its stream is
    MHalvoStream(const std::string& host, int port);
    ~MHalvoStream();
    MHalvoStream(const MHalvoStream&) = delete;
    MHalvoStream& operator=(const MHalvoStream&) = delete;

    /// Version of the unit's stream, "1". Takes 2 s at most.
    /// @throws MHttpException, MTimeoutException when there is no unit, or none with a stream that
    /// this program understands
    std::string version();
    /// Counts from the next series on.
    void setEnabled(bool enabled, const Cancel& cancel);
    /// What the start of a series brings: "none", "basic" (configuration), "all" (with pixel mask).
    void setHeaderDetail(const std::string& detail, const Cancel& cancel);
    /// Frames of this and of earlier series that the unit could not send.
    std::int64_t dropped(const Cancel& cancel);

    /// The next message, decoded. Takes at most its timeout, and 13 s more where the unit must be
    /// asked for its stream and does not answer.
    /// @throws MTimeoutException    none within `timeoutSeconds`; also when the unit could not be
    ///                              reached all that time, with the reason in the text
    /// @throws MRuntimeException    a message that is damaged, against the protocol or too large;
    /// it
    ///                              is lost, and the next call goes on after it
    /// @throws MTerminateException  `cancel` was set
    MStreamObject pop(double timeoutSeconds, const Cancel& cancel);

private:
    class Private;
    const std::unique_ptr<Private> _d;
};

}  // namespace morvend::imglib
