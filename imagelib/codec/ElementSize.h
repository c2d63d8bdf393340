// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the size of an element to the code that is compiled for it.
#pragma once

#include <cstddef>

namespace morvend::codec {

/// Calls kernel.template operator()<Size>() for elements of 1, 2, 4 or 8 bytes, other() for those
/// of any other size.
template <class Kernel, class Other>
auto dispatchElementSize(std::size_t elementSize, const Kernel& kernel, const Other& other)
{
    switch (elementSize) {
    case 1:
        return kernel.template operator()<1>();
    case 2:
        return kernel.template operator()<2>();
    case 4:
        return kernel.template operator()<4>();
    case 8:
        return kernel.template operator()<8>();
    default:
        return other();
    }
}

}  // namespace morvend::codec
