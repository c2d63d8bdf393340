// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The stop token of a thread.
#include "imagelib/io/formats/base/Cancellation.h"

#include "imagelib/image/MException.h"

#include <utility>

namespace morvend::imglib {

namespace {

thread_local const std::stop_token* threadToken = nullptr;

}  // namespace

CancelScope::CancelScope(std::stop_token token)
    : _token(std::move(token))
    , _before(std::exchange(threadToken, &_token))
{}

CancelScope::~CancelScope() { threadToken = _before; }

void checkCancelled()
{
    if (threadToken && threadToken->stop_requested())
        throw MTerminateException("The work on the file was ended");
}

}  // namespace morvend::imglib
