// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Floating numbers of 16 bits, which no pixel type in memory has.
#pragma once

#include <cstddef>
#include <span>

namespace morvend::imglib {

/// Converts IEEE 754 half precision to single, exactly. `halves` is a whole number of values, in
/// this machine's byte order or, `swapped`, in the other one; `target` holds twice their bytes, as
/// floats, and does not overlap them.
void widenHalfFloats(std::span<const std::byte> halves, bool swapped, std::byte* target);

}  // namespace morvend::imglib
