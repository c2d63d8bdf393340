// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a simulated unit shall do wrong, and when.
#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <vector>

namespace tarvik::simulator {

/// A way to go wrong; `argument` as the table of the help says.
struct Fault {
    QString kind;
    int argument = 0;
};

/// Lines "METHOD PATTERN [skip=N] [times=N] FAULT [ARGUMENT]"; "#" begins a comment. The first line
/// counts that matches and is not used up. Thread: any.
class FaultScript {
public:
    /// Every fault with its meaning, for people.
    static QString help();
    /// @throws std::invalid_argument with line and reason
    void add(const QString& text);
    void clear();

    /// The fault of a request: method and path without its query.
    std::optional<Fault> ofRequest(const QString& method, const QString& path);
    /// The fault of a message of the stream: "start", "frame" or "end".
    std::optional<Fault> ofMessage(const QString& type) { return ofRequest("STREAM", type); }

    /// How often a line has counted.
    int struck() const { return _struck; }

private:
    struct Line {
        QString method, pattern;
        int skip = 0, times = -1;  // -1: always
        Fault fault;
    };
    static Line _parsed(const QString& text);

    std::mutex _mutex;
    std::vector<Line> _lines;
    std::atomic<int> _struck{0};
};

/// A packet with a fault in it; unchanged for faults that are none of packets.
QByteArray damaged(const QByteArray& packet, const QString& kind);

}  // namespace tarvik::simulator
