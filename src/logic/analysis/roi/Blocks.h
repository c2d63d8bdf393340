// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work in blocks, split over the cores.
#pragma once

#include <functional>

namespace roi {

/// Calls work(0) to work(count - 1), each once, on any thread and in any order, and returns when
/// all have ended.
void forEachBlock(int count, const std::function<void(int block)>& work);

}  // namespace roi
