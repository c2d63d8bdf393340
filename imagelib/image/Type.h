// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The kinds of pixel values; together with a width in bits they name one of the twelve pixel types.
#pragma once

#include <string>

namespace morvend::datatypes {

/// Kind of a pixel value. A pixel type is the pair of a kind and a width in bits:
/// BOOL 8, CHAR 8, UINT and INT 8, 16, 32, 64, FLOAT 32, 64. NONE has no width: the empty image.
enum Type { NONE = 0, BOOL = 1, CHAR = 2, UINT = 3, INT = 4, FLOAT = 5 };

/// Name of a kind, such as "UINT".
/// @throws MNotImplementedException "Unknown data type" for any other value
std::string typeStr(Type type);

}  // namespace morvend::datatypes
