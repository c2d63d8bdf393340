// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Ends work on a file that is no longer wanted.
#pragma once

#include <stop_token>

namespace morvend::imglib {

/// While it lives, checkCancelled() on the thread that made it follows a stop token. Scopes may be
/// nested.
class CancelScope {
public:
    explicit CancelScope(std::stop_token token);
    ~CancelScope();
    CancelScope(const CancelScope&) = delete;
    CancelScope& operator=(const CancelScope&) = delete;

private:
    const std::stop_token _token;
    const std::stop_token* const _before;
};

/// For loops over a file's bytes: call it between blocks that take milliseconds.
/// @throws MTerminateException when the work of this thread is to end
void checkCancelled();

}  // namespace morvend::imglib
