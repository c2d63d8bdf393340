// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notes signals in a flag.
#include "bin/image/StopSignals.h"

#include "imagelib/image/MException.h"

namespace tarvik::tool {

namespace {

volatile std::sig_atomic_t stopped = 0;

void note(int) { stopped = 1; }

}  // namespace

StopSignals::StopSignals()
{
    stopped = 0;
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < Signals.size(); ++i) {
        ::sigaction(Signals[i], nullptr, &_before[i]);
        // What the caller ignores stays ignored, as under nohup.
        if (_before[i].sa_handler != SIG_IGN)
            ::sigaction(Signals[i], &action, nullptr);
    }
}

StopSignals::~StopSignals()
{
    for (std::size_t i = 0; i < Signals.size(); ++i)
        ::sigaction(Signals[i], &_before[i], nullptr);
}

void StopSignals::check() const
{
    if (stopped)
        throw morvend::imglib::MTerminateException("Stopped on request");
}

}  // namespace tarvik::tool
