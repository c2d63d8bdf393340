// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Holds up the thread on which all views have their regions computed.
#pragma once

#include "logic/analysis/roi/RegionWorker.h"

#include <semaphore>

namespace tarvik::tests {

/// From construction to destruction no region is begun by that thread.
class HeldRegions {
public:
    HeldRegions()
    {
        const morvend::imglib::MImage pixel(1, 1, 0);
        _worker.request(pixel, pixel, {});
        _held.acquire();
    }
    ~HeldRegions() { _go.release(); }
    HeldRegions(const HeldRegions&) = delete;
    HeldRegions& operator=(const HeldRegions&) = delete;

private:
    std::binary_semaphore _held{0};
    std::binary_semaphore _go{0};
    RegionWorker _worker{[this] {
        _held.release();
        _go.acquire();
    }};
};

}  // namespace tarvik::tests
