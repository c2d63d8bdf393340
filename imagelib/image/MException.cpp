// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rethrowing an exception as its own type.
#include "imagelib/image/MException.h"

namespace morvend::imglib {

namespace {

template <class First, class... Rest>
void throwAsFirstMatch(const std::exception& exception)
{
    if (const auto* match = dynamic_cast<const First*>(&exception))
        throw First(*match);
    if constexpr (sizeof...(Rest) > 0)
        throwAsFirstMatch<Rest...>(exception);
}

}  // namespace

void forwardException(const std::exception& exception)
{
    throwAsFirstMatch<MRuntimeException, MOutOfRangeException, MBadParameterException,
                      MNoFileAccessException, MUnknownFormatException, MNotImplementedException,
                      MTimeoutException, MHttpException, MTerminateException, MException>(
        exception);
    throw MRuntimeException(exception.what());
}

}  // namespace morvend::imglib
