// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The switch of a control unit's own file writer.
#pragma once

#include <atomic>
#include <memory>
#include <string>

namespace morvend::imglib {

class UnitClient;

/// Whether the control unit writes the frames of its series into files of its own. Bounds, failures
/// and threads as for MHalvoDetector.
class MHalvoFileWriter {
public:
    using Cancel = std::atomic<bool>;

    MHalvoFileWriter(const std::string& host, int port);
    ~MHalvoFileWriter();
    MHalvoFileWriter(const MHalvoFileWriter&) = delete;
    MHalvoFileWriter& operator=(const MHalvoFileWriter&) = delete;

    bool enabled(const Cancel& cancel);
    /// Counts from the next series on.
    void setEnabled(bool enabled, const Cancel& cancel);

private:
    const std::unique_ptr<UnitClient> _unit;
};

}  // namespace morvend::imglib
