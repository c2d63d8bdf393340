// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The order in which signals of one object come.
#pragma once

#include <QObject>

#include <string>
#include <utility>
#include <vector>

namespace tarvik::tests {

/// Collects the names of signals as they are emitted.
class SignalLog {
public:
    template <class Sender, class Signal>
    void watch(const Sender* sender, Signal signal, std::string name)
    {
        QObject::connect(sender, signal, &_context,
                         [this, name = std::move(name)] { _names.push_back(name); });
    }
    /// The same for a signal that carries one flag: "name on" or "name off".
    template <class Sender, class Base>
    void watchFlag(const Sender* sender, void (Base::*signal)(bool), const std::string& name)
    {
        QObject::connect(sender, signal, &_context, [this, name](bool flag) {
            _names.push_back(name + (flag ? " on" : " off"));
        });
    }
    /// All names since the last call.
    std::vector<std::string> take() { return std::exchange(_names, {}); }

private:
    QObject _context;
    std::vector<std::string> _names;
};

}  // namespace tarvik::tests
