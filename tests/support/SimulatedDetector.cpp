// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "tests/support/SimulatedDetector.h"

namespace tarvik::tests {

SimulatedDetector::SimulatedDetector(const QSize& frame, bool initialized)
{
    _thread.start();
    // An object of that thread brings the unit into being there.
    auto* const starter = new QObject;
    starter->moveToThread(&_thread);
    QMetaObject::invokeMethod(
        starter,
        [&] {
            simulator::UnitOptions options;
            options.frame = frame;
            options.initialized = initialized;
            options.initializeMs = 50;
            _unit = new simulator::ControlUnit(options);
            _port = _unit->port();
        },
        Qt::BlockingQueuedConnection);
    starter->deleteLater();
}

SimulatedDetector::~SimulatedDetector()
{
    QMetaObject::invokeMethod(
        _unit, [unit = _unit] { delete unit; }, Qt::BlockingQueuedConnection);
    _thread.quit();
    _thread.wait();
}

void SimulatedDetector::vanish(int milliseconds)
{
    QMetaObject::invokeMethod(
        _unit, [this, milliseconds] { _unit->vanish(milliseconds); }, Qt::BlockingQueuedConnection);
}

}  // namespace tarvik::tests
