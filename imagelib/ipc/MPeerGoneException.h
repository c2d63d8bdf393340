// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The failure of a wait for a process that has gone.
#pragma once

#include "imagelib/image/MException.h"

namespace morvend {

/// The other end of a connection closed it or died, and what it had sent has been received.
class MPeerGoneException : public MException {
public:
    using MException::MException;
};

}  // namespace morvend
