// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The sums.
#include "logic/loading/StepTimes.h"

#include <atomic>

namespace {

std::array<std::atomic<long long>, StepTimes::Count> nanoseconds{};
std::atomic<unsigned long long> hitCount = 0;
std::atomic<unsigned long long> imageCount = 0;

}  // namespace

StepTimes StepTimes::now()
{
    StepTimes times;
    for (std::size_t i = 0; i < times.spent.size(); ++i)
        times.spent[i] = std::chrono::nanoseconds(nanoseconds[i]);
    times.hits = hitCount;
    times.images = imageCount;
    return times;
}

void StepTimes::add(Step step, std::chrono::nanoseconds time) { nanoseconds[step] += time.count(); }
void StepTimes::addHit() { ++hitCount; }
void StepTimes::addImage() { ++imageCount; }
