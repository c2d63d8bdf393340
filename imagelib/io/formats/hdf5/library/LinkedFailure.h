// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Failures in a file that another one leads to.
#pragma once

#include "imagelib/image/MException.h"

#include <string>
#include <utility>

namespace morvend::imglib::hdf5 {

/// Throws an exception of the same class that says more of the place; a lack of memory, which names
/// none, stays as it is.
[[noreturn]] void rethrowWith(const MException& error, const std::string& more);

/// Runs a step in what a link of `master` leads to. A failure that names only the file it happened
/// in is reported with the link and the master, which the user knows the images by.
/// @param master  empty where there is none
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
