// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where the project's own files lie, for tests and benchmarks.
#pragma once

#include <string>

namespace tarvik::tests {

/// Path of a file or folder of the project, as in sourcePath("/tests/data/wire/").
std::string sourcePath(const std::string& relative);

}  // namespace tarvik::tests
