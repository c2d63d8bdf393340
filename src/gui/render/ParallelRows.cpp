// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work on the rows of a picture, split over the cores. A file of its own because Qt's keywords and
// the headers of oneTBB can't be combined.
#include "gui/render/ParallelRows.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>

namespace render {

void parallelRows(int rows, std::size_t length, const std::function<void(int row)>& work)
{
    constexpr std::size_t fewest = 1 << 16;  // pixels that are worth a thread
    const std::size_t grain = std::max<std::size_t>(1, fewest / std::max<std::size_t>(1, length));
    tbb::parallel_for(tbb::blocked_range<int>(0, rows, grain),
                      [&work](const tbb::blocked_range<int>& range) {
                          for (int row = range.begin(); row != range.end(); ++row)
                              work(row);
                      });
}

}  // namespace render
