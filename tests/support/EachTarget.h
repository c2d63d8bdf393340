// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Tests that run on each instruction set of this processor.
#pragma once

#include <gtest/gtest.h>

#define HWY_DISABLED_TARGETS 0
#include <hwy/highway.h>

#include <string>
#include <vector>

namespace tarvik::tests {

/// Holds one Highway target for a test, or with 0 none: then the program chooses.
class EachTarget : public testing::TestWithParam<std::int64_t> {
public:
    static std::vector<std::int64_t> all()
    {
        std::vector<std::int64_t> targets{0};
        for (std::int64_t rest = hwy::SupportedTargets(); rest != 0; rest &= rest - 1)
            targets.push_back(rest & -rest);
        return targets;
    }
    static std::string name(const testing::TestParamInfo<std::int64_t>& row)
    {
        return row.param ? hwy::TargetName(row.param) : "Automatic";
    }
    /// Runs a check with each of them.
    template <class Check>
    static void run(Check&& check)
    {
        for (const std::int64_t target : all()) {
            hold(target);
            SCOPED_TRACE(target ? hwy::TargetName(target) : "Automatic");
            check();
        }
        hold(0);
    }

protected:
    void SetUp() override { hold(GetParam()); }
    void TearDown() override { hold(0); }

private:
    static void hold(std::int64_t target)
    {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

}  // namespace tarvik::tests
