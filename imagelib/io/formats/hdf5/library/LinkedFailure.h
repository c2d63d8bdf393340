// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Failures in a file that was reached by a link.
#pragma once

#include "imagelib/image/MException.h"

#include <string>
#include <utility>

namespace morvend::imglib::hdf5 {

/// Throws an exception of the same class with more of the place; lack of memory, which names
/// no place, stays as it is.
[[noreturn]] void rethrowWith(const MException& error, const std::string& more);

/// Runs a step in the target of a link of `master`. A failure that names only the file it happened
/// in is reported with the link and the master, by which the user knows the images.
/// @param master  empty if there isn't one
template <class Step>
auto fromLink(const std::string& link, const std::string& master, Step&& step)
{
    try {
        return std::forward<Step>(step)();
    } catch (const MException& error) {
        if (master.empty() || std::string(error.what()).find(master) != std::string::npos)
            throw;
        rethrowWith(error, ", to which " + link + " of " + master + " leads");
    }
}

}  // namespace morvend::imglib::hdf5
