// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The end of a process that read a file.
#pragma once

#include "imagelib/image/MException.h"

namespace morvend::imglib {

/// The reader of a file has crashed, ended or talked nonsense in the middle of a request.
class MReaderGoneException : public MRuntimeException {
public:
    using MRuntimeException::MRuntimeException;
};

}  // namespace morvend::imglib
