// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Contrasts that span a part of the pixels, against sorted pixels.
#include "logic/analysis/statistics/ContrastRange.h"
#include "logic/analysis/statistics/PartRange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace {

using morvend::imglib::MImage;

constexpr int Count = 1000;

struct Case {
    std::string name;
    std::function<double(int)> pixel;  // of 1000
    ContrastRange range;
    double background;
    double foreground;
    double tolerance = 0;
};

template <class T>
void expectLevels(const Case& row)
{
    MImage image(Count, 1, T(0));
    MImage mask(Count, 1, 0U);
    auto* pixels = static_cast<T*>(image.data());
    double sum = 0;
    for (int i = 0; i < Count; ++i) {
        // Out of order.
        pixels[i] = static_cast<T>(row.pixel(i * 7 % Count));
        sum += std::isfinite(static_cast<double>(pixels[i])) ? static_cast<double>(pixels[i]) : 0;
    }
    IntegratedHistogram histogram;
    histogram.compute(image, mask, sum / Count);
    const auto levels = contrastLevels(histogram, row.range);
    ASSERT_TRUE(levels) << row.name;
    EXPECT_NEAR(levels->background, row.background, row.tolerance) << row.name;
    EXPECT_NEAR(levels->foreground, row.foreground, row.tolerance) << row.name;
    const auto ofPart = contrastLevelsOfPart(image, mask, {0, 0, Count, 1}, row.range);
    ASSERT_TRUE(ofPart) << row.name;
    EXPECT_NEAR(ofPart->background, row.background, row.tolerance) << row.name << ", sorted";
    EXPECT_NEAR(ofPart->foreground, row.foreground, row.tolerance) << row.name << ", sorted";
}

const ContrastRange Tenth{0.001, 0.999, false};
const ContrastRange One{0.01, 0.99, false};
const ContrastRange Sigma{0, 1, true};
const double Hot = 1e6;

TEST(ContrastRange, SpansCounts)
{
    const auto ramp = [](int i) { return double(i); };
    for (const Case& row : std::vector<Case>{
             {"ramp", ramp, Tenth, 1, 999},
             {"ramp, narrower", ramp, One, 10, 990},
             {"all", ramp, {0, 1, false}, 0, 999},
             {"a hot pixel is left out", [](int i) { return i < 999 ? i : Hot; }, One, 10, 990},
             {"empty but for some", [](int i) { return i < 995 ? 0 : 7.; }, One, 0, 1},
             {"uniform", [](int) { return 12.; }, One, 12, 13},
             {"far beyond the bins", [](int i) { return i * 1e5; }, One, 1e6, 99e6},
             {"negative values are counts", [](int i) { return i - 500.; }, One, -490, 490},
             {"marks that no mask knows", [](int i) { return i < 70 ? i % 2 - 2. : 5 + i; }, One,
              84, 995},
             {"sigma of a ramp is held at its ends", ramp, Sigma, 0, 999},
             {"sigma", [](int i) { return i == 0     ? -1e3
                                          : i == 999 ? Hot
                                                     : 100 + i % 2 * 10.; },
              Sigma, 90, 120},
             {"sigma without hot pixels", [](int i) { return i < 999 ? i % 2 * 10. : Hot; }, Sigma,
              0, 20, 1}}) {
        expectLevels<int>(row);
        expectLevels<long long>(row);
    }
    expectLevels<unsigned int>({"the largest value is a gap",
                                [](int i) { return i < 900 ? i : 4294967295.; }, One, 9, 891});
    expectLevels<unsigned short>({"ramp", ramp, Tenth, 1, 999});
    expectLevels<bool>({"bits", [](int i) { return i % 2; }, One, 0, 1});
}

TEST(ContrastRange, SpansSmallFloats)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Case& row : std::vector<Case>{
             {"ramp", [](int i) { return i * 1e-3; }, One, 0.01, 0.99, 1e-6},
             {"not finite", [&](int i) { return i < 900 ? i * 1e-3 : infinity; }, One, 0.009, 0.891,
              1e-6},
             {"with signs", [](int i) { return (i - 500) * 1e-3; }, One, -0.49, 0.49, 1e-6},
             {"nearly empty", [](int i) { return i < 995    ? 0.
                                                 : i == 999 ? 1e9
                                                            : 0.25; }, One, 0,
              0.25, 1e-6}}) {
        expectLevels<float>(row);
        expectLevels<double>(row);
    }
    expectLevels<double>({"tiny", [](int i) { return i * 1e-10; }, One, 1e-9, 99e-9, 1e-9});
}

TEST(ContrastRange, SpansAPartByItsGoodPixels)
{
    MImage image(100, 100, 0.F);
    MImage mask(image, 0U);
    for (int i = 0; i < 100 * 100; ++i) {
        static_cast<float*>(image.data())[i] = 1e-9F * static_cast<float>(i);
        static_cast<unsigned int*>(mask.data())[i] = i % 100 < 20 ? 1 : 0;
    }
    struct {
        morvend::imglib::MRect part;
        double background, foreground;
    } const table[] = {{{0, 0, 100, 100}, 20e-9, 9999e-9},
                       {{-50, 30, 100, 2}, 3020e-9, 3149e-9},
                       {{90, 95, 100, 100}, 9590e-9, 9999e-9}};
    for (const auto& [part, background, foreground] : table) {
        const auto levels = contrastLevelsOfPart(image, mask, part, {0, 1, false});
        ASSERT_TRUE(levels);
        EXPECT_FLOAT_EQ(float(levels->background), float(background));
        EXPECT_FLOAT_EQ(float(levels->foreground), float(foreground));
    }
    EXPECT_FALSE(contrastLevelsOfPart(image, mask, {0, 0, 20, 100}, Tenth)) << "all masked";
    EXPECT_FALSE(contrastLevelsOfPart(image, mask, {100, 0, 20, 100}, Tenth)) << "beyond the image";
}

TEST(ContrastRange, NeedsPixels)
{
    IntegratedHistogram histogram;
    EXPECT_FALSE(contrastLevels(histogram, Tenth));
    const MImage image(4, 4, 3U);
    histogram.compute(image, MImage(4, 4, 1U), 0);
    EXPECT_FALSE(contrastLevels(histogram, Sigma)) << "all masked";
    histogram.compute(MImage(4, 4, -1), MImage(4, 4, 0U), -1);
    EXPECT_EQ(contrastLevels(histogram, Tenth)->background, -1) << "nothing but marks";
}

}  // namespace
