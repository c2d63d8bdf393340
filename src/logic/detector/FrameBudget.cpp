// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/FrameBudget.h"

#include "logic/support/Assert.h"

#include <algorithm>
#include <chrono>

#include <unistd.h>

namespace {

/// How often a wait looks at the flag of who waits.
constexpr std::chrono::milliseconds LookPeriod{20};

}  // namespace

std::int64_t FrameBudget::usualBytes()
{
    const std::int64_t memory =
        std::int64_t(::sysconf(_SC_PHYS_PAGES)) * std::int64_t(::sysconf(_SC_PAGESIZE));
    return std::min(std::int64_t(1) << 30, std::max<std::int64_t>(memory, 0) / 8);
}

FrameBudget::FrameBudget(std::int64_t bytes)
    : _bytes(bytes)
{}

bool FrameBudget::take(std::int64_t bytes, const std::atomic<bool>& cancel)
{
    std::unique_lock lock(_mutex);
    while (_taken > 0 && _taken + bytes > _bytes) {
        if (cancel)
            return false;
        _free.wait_for(lock, LookPeriod);
    }
    _taken += bytes;
    return true;
}

void FrameBudget::giveBack(std::int64_t bytes)
{
    {
        const std::lock_guard lock(_mutex);
        _taken -= bytes;
        assert(_taken >= 0);
    }
    _free.notify_all();
}

std::int64_t FrameBudget::taken() const
{
    const std::lock_guard lock(_mutex);
    return _taken;
}
