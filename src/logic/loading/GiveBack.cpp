// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Emptying of the pools.
#include "logic/loading/GiveBack.h"

#include "imagelib/image/PixelBuffer.h"
#include "imagelib/ipc/SegmentPool.h"

#include <malloc.h>

void giveBackMemory()
{
    morvend::image::PixelBuffer::trimPool();
    morvend::imglib::SegmentPool::process()->trim();
    ::malloc_trim(0);
}
