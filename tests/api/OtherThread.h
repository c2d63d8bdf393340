// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the thread of a script does, while the test is the GUI thread.
#pragma once

#include "tests/support/WaitFor.h"

#include <future>

/// Runs the event loop until another thread is done with a call. @returns what the call returned
template <class Call>
auto onOtherThread(Call&& call)
{
    auto done = std::async(std::launch::async, std::forward<Call>(call));
    waitFor([&] { return done.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    return done.get();
}
