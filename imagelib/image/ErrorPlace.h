// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The place of a failure that can't know it itself.
#pragma once

#include "imagelib/image/MException.h"

#include <new>
#include <string>

namespace morvend::imglib {

/// Runs an operation and returns what it returns. An MException says where it happened and passes;
/// a lack of memory and what is no MException become an MRuntimeException "<reason>: <place>".
/// @param place  gives the file, called after a failure only
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
