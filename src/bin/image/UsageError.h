// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What is wrong with a command line.
#pragma once

#include <stdexcept>

namespace tarvik::tool {

/// A command line that can't be understood; what() says what is wrong with it.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace tarvik::tool
