// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/Retry.h"

#include "logic/support/Console.h"

#include <filesystem>
#include <sstream>

using morvend::MRuntimeException;
using morvend::imglib::forwardException;

Retry::Retry(RequestFlags& flags, const char* file, int line)
    : _flags(flags)
    , _location('"' + std::filesystem::path(file).filename().string() +
                "\":" + std::to_string(line))
{}

void Retry::run(const std::function<void()>& calls)
{
    for (;;) {
        _flags.allow();
        // Some calls take no flag.
        if (_flags.abort)
            throw MRuntimeException("Aborted before a request to the detector");
        _watchdog.start(Timeout, [&cancel = _flags.cancel] { cancel = true; });
        try {
            calls();
            _watchdog.stop();
            // It may have come just after the calls, and must not cancel the next ones.
            _flags.allow();
            return;
        } catch (const morvend::MException& failure) {
            _watchdog.stop();
            _forwardException(failure);
        }
    }
}

void Retry::_forwardException(const morvend::MException& failure)
{
    if (_flags.abort)
        forwardException(failure);
    const bool last = _trials++ >= MaxTrials;
    std::ostringstream text;
    text << "Request at " << _location << " timed out after " << Timeout << " seconds\n"
         << "Warning: Network may be slow or unstable\n";
    if (last)
        text << "Aborting after " << MaxTrials << " trials\n";
    console::warn(text.str());
    if (!last)
        return console::print("Retrying\n");
    // The library says that it was cancelled, which the user did not do.
    if (_flags.cancel && dynamic_cast<const MRuntimeException*>(&failure))
        throw MRuntimeException(std::string("No answer within a second. ") + failure.what());
    forwardException(failure);
}
