// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A view without service, files or threads: tests move it by hand.
#pragma once

#include "logic/service/ViewDriver.h"

#include <QString>

#include <string>
#include <utility>
#include <vector>

namespace tarvik::tests {

class HandView : public ViewDriver {
public:
    bool imageLoaded() const override { return number >= 0; }
    int index() const override { return number; }
    int lastIndex() const override { return last; }
    bool loading() const override { return busy; }
    void nextImage(int n, bool) override { _log("next " + std::to_string(n)), busy = true; }
    void openLast(bool) override { _log("last"), busy = true; }
    void dropRequests() override {}
    void scan() override {}
    void watch(const std::function<void()>& shown, const std::function<void()>& scanned) override
    {
        _shown = shown;
        _scanned = scanned;
    }
    void unwatch() override { _shown = _scanned = nullptr; }
    void modeChanged(Mode mode, bool on) override
    {
        const char* names[] = {"movie", "watch", "monitor"};
        _log(names[static_cast<int>(mode)] + std::string(on ? " on" : " off"));
    }
    void monitorHostChanged(const QString&, int, double) override { _log("address"); }

    void show(int image)
    {
        busy = false;
        number = image;
        if (_shown)
            _shown();
    }
    void endScan(int newLast)
    {
        last = newLast;
        if (_scanned)
            _scanned();
    }
    bool watched() const { return bool(_shown); }
    std::vector<std::string> take() { return std::exchange(_taken, {}); }

    int number = 0;
    int last = 0;
    bool busy = false;

private:
    void _log(const std::string& line) { _taken.push_back(line); }

    std::vector<std::string> _taken;
    std::function<void()> _shown, _scanned;
};

}  // namespace tarvik::tests
