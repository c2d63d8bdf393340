// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A simulated control unit for a test that blocks its own thread in calls to it.
#pragma once

#include "simulator/ControlUnit.h"

#include <QThread>

#include <memory>
#include <string>

namespace tarvik::tests {

/// Serves on a free port of 127.0.0.1, on a thread of its own, from construction to destruction.
/// Frames are small unless asked otherwise. Needs a QCoreApplication.
class SimulatedDetector {
public:
    static constexpr const char* Host = "127.0.0.1";

    explicit SimulatedDetector(const QSize& frame = {96, 80}, bool initialized = true);
    ~SimulatedDetector();
    SimulatedDetector(const SimulatedDetector&) = delete;
    SimulatedDetector& operator=(const SimulatedDetector&) = delete;

    int port() const { return _port; }
    /// Adds lines of a fault script; they count from the next request on.
    void fault(const std::string& lines) { _unit->faults().add(QString::fromStdString(lines)); }
    void heal() { _unit->faults().clear(); }
    /// Requests and messages that a line of the script has spoilt so far.
    int struck() const { return _unit->faults().struck(); }
    /// Off the network for a time.
    void vanish(int milliseconds);

private:
    QThread _thread;
    simulator::ControlUnit* _unit = nullptr;  // lives and dies in the thread
    int _port = 0;
};

}  // namespace tarvik::tests
