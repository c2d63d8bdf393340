// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The one object that knows the checkout's path: the compiler cache serves all others to any
// checkout.
#include "tests/support/SourcePath.h"

namespace tarvik::tests {

std::string sourcePath(const std::string& relative) { return TARVIK_SOURCE_DIR + relative; }

}  // namespace tarvik::tests
