// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The classes that reading throws.
#include "imagelib/io/formats/hdf5/library/LinkedFailure.h"

namespace morvend::imglib::hdf5 {

void rethrowWith(const MException& error, const std::string& more)
{
    if (const auto* memory = dynamic_cast<const MMemoryException*>(&error))
        throw MMemoryException(*memory);
    throwException(exceptionClass(error), error.what() + more);
}

}  // namespace morvend::imglib::hdf5
