// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work on the rows of a picture, split over the cores.
#pragma once

#include <cstddef>
#include <functional>

namespace render {

/// Calls work(row) once for each row from 0 on, in any order and from several threads if the
/// pixels are worth it; returns when all are done.
/// @param length  pixels of a row
void parallelRows(int rows, std::size_t length, const std::function<void(int row)>& work);

}  // namespace render
