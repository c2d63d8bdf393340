// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Runs code once on each instruction set that this processor has.
#pragma once

#include <gtest/gtest.h>

#define HWY_DISABLED_TARGETS 0
#include <hwy/highway.h>

/// The last time the program chooses by itself.
template <class Function>
void forEveryTarget(Function&& f)
{
    const std::int64_t all = hwy::SupportedTargets();
    for (std::int64_t rest = all; rest != 0; rest &= rest - 1) {
        const std::int64_t target = rest & -rest;
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        f();
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
    f();
}
