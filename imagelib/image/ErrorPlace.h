// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Adds the place to failures that don't know it.
#pragma once

#include "imagelib/image/MException.h"

#include <new>
#include <string>

namespace morvend::imglib {

/// Runs an operation and returns what it returns. An MException states its place and passes
/// unchanged; lack of memory and every other exception become an MRuntimeException "<reason>:
/// <place>".
/// @param place  returns the file; called only after a failure
template <class Place, class Operation>
auto withPlace(Place&& place, Operation&& operation)
{
    try {
        return operation();
    } catch (const MMemoryException& error) {
        throw MRuntimeException(std::string(error.what()) + ": " + place());
    } catch (const MException&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw MRuntimeException("Not enough memory: " + place());
    } catch (const std::exception& error) {
        throw MRuntimeException(std::string(error.what()) + ": " + place());
    }
}

}  // namespace morvend::imglib
