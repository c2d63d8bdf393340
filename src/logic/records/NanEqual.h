// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Equality of floating values in records.
#pragma once

namespace records {

/// Values differ only when one is less than or greater than the other: NaN equals anything, so
/// that an undefined value never starts an endless exchange between views.
inline bool equal(double left, double right) { return !(left < right) && !(left > right); }

}  // namespace records
