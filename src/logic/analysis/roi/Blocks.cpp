// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Blocks on oneTBB. A file of its own because Qt's keywords and the headers of oneTBB can't be
// combined.
#include "logic/analysis/roi/Blocks.h"

#include <tbb/parallel_for.h>

namespace roi {

void forEachBlock(int count, const std::function<void(int block)>& work)
{
    tbb::parallel_for(0, count, [&work](int block) { work(block); });
}

}  // namespace roi
