// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The classes that reading throws.
#include "imagelib/io/formats/hdf5/library/LinkedFailure.h"

namespace morvend::imglib::hdf5 {

namespace {

template <class... Classes>
void throwAsFirstMatch(const MException& error, const std::string& text)
{
    const auto throwIf = [&]<class Class>(const Class* match) {
        if (match)
            throw Class(text);
    };
    (throwIf(dynamic_cast<const Classes*>(&error)), ...);
}

}  // namespace

void rethrowWith(const MException& error, const std::string& more)
{
    if (const auto* memory = dynamic_cast<const MMemoryException*>(&error))
        throw MMemoryException(*memory);
    const std::string text = error.what() + more;
    throwAsFirstMatch<MOutOfRangeException, MNoFileAccessException, MUnknownFormatException,
                      MNotImplementedException>(error, text);
    throw MRuntimeException(text);
}

}  // namespace morvend::imglib::hdf5
