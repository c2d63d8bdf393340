// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The first contrast: a table of situations, each with what a viewer needs to see.
#include "imagelib/display/MContrast.h"
#include "imagelib/image/MImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

namespace {

using namespace morvend;
using namespace morvend::imglib;

constexpr int W = 700, H = 500;
constexpr auto all32 = std::numeric_limits<unsigned>::max();

struct Scene {
    MImage image;
    MImage mask;
};

struct Range {
    double low;
    double high;
};

struct Situation {
    const char* name;
    std::function<Scene()> make;
    Range background;
    Range foreground;
};

template <class T>
T* edit(MImage& image)
{
    return static_cast<T*>(image.data());
}

template <class T>
Scene poisson(double mean, int width = W, int height = H)
{
    Scene scene{MImage(width, height, T(0)), MImage(width, height, 0U)};
    std::mt19937 random(3);
    std::poisson_distribution<long long> counts(mean);
    for (std::size_t i = 0; i < scene.image.size(); ++i)
        edit<T>(scene.image)[i] = static_cast<T>(counts(random));
    return scene;
}

/// Gives every n-th pixel a value.
template <class T>
Scene with(Scene scene, std::size_t n, T value)
{
    for (std::size_t i = n / 2; i < scene.image.size(); i += n)
        edit<T>(scene.image)[i] = value;
    return scene;
}

Scene maskedOut(Scene scene, std::size_t n, unsigned flag)
{
    for (std::size_t i = 0; i < scene.mask.size(); ++i)
        if (i % n != 0)
            edit<unsigned>(scene.mask)[i] = flag;
    return scene;
}

template <class T>
Scene normal(double mean, double sigma)
{
    Scene scene{MImage(W, H, T(0)), MImage(W, H, 0U)};
    std::mt19937 random(4);
    std::normal_distribution<double> noise(mean, sigma);
    for (std::size_t i = 0; i < scene.image.size(); ++i)
        edit<T>(scene.image)[i] = static_cast<T>(noise(random));
    return scene;
}

template <class T>
Scene constant(T value)
{
    return {MImage(W, H, value), MImage(W, H, 0U)};
}

constexpr float nanF = std::numeric_limits<float>::quiet_NaN();
constexpr float infF = std::numeric_limits<float>::infinity();

// Levels for Poisson counts of mean m: 6 standard deviations above, 3 below, or 0.
const Situation situations[] = {
    {"NoPixels", [] { return Scene{}; }, {0, 0}, {1, 1}},
    {"AllZero", [] { return constant(0U); }, {0, 0}, {1, 4}},
    {"WeakFrame", [] { return poisson<unsigned>(0.05); }, {0, 0}, {1, 4}},
    {"WeakSigned16", [] { return poisson<short>(0.05); }, {0, 0}, {1, 4}},
    {"HalfACount", [] { return poisson<unsigned>(0.5); }, {0, 0}, {3, 9}},
    {"TenCounts", [] { return poisson<unsigned>(10); }, {0, 0}, {25, 34}},
    {"HundredCounts", [] { return poisson<unsigned>(100); }, {50, 80}, {150, 175}},
    {"ThreeThousandCounts",
     [] { return poisson<unsigned short>(3000); },
     {2780, 2880},
     {3270, 3390}},
    {"StrongSpotsOnNothing",
     [] { return with(poisson<unsigned>(0.02), 90, 50000U); },
     {0, 0},
     {1, 5}},
    {"StrongSpotsOnTen", [] { return with(poisson<unsigned>(10), 40, 200000U); }, {0, 0}, {25, 36}},
    {"SentinelsNotMasked", [] { return with(poisson<unsigned>(10), 5, all32); }, {0, 0}, {25, 34}},
    {"MostlySentinels",
     [] { return with(with(poisson<unsigned>(10), 3, all32), 2, all32); },
     {0, 0},
     {25, 34}},
    {"HotPixels", [] { return with(poisson<int>(100), 1000, 2147483647); }, {50, 80}, {150, 175}},
    {"DeadPixels", [] { return with(poisson<int>(3000), 50, 0); }, {2780, 2880}, {3270, 3390}},
    {"NegativeFlags", [] { return with(with(poisson<int>(10), 7, -1), 11, -2); }, {0, 0}, {25, 34}},
    {"MostlyNegativeFlags",
     [] { return with(with(poisson<int>(10), 2, -1), 3, -2); },
     {0, 0},
     {25, 34}},
    {"NegativeFlagsAndAFewWild",
     [] { return with(with(with(poisson<int>(10), 2, -1), 3, -2), 5000, -2147483647); },
     {0, 0},
     {25, 34}},
    {"FlagsAsFloats", [] { return with(poisson<float>(400), 3, -1.0F); }, {320, 360}, {500, 540}},
    {"BackgroundSubtracted", [] { return normal<int>(0, 50); }, {-180, -120}, {270, 330}},
    {"BackgroundSubtractedFloats", [] { return normal<double>(0.5, 2.0); }, {-6.5, -4.5}, {11, 14}},
    {"FloatsWithGaps",
     [] { return with(with(normal<float>(200, 5), 4, nanF), 9, infF); },
     {180, 190},
     {225, 235}},
    {"TinyFloats", [] { return normal<double>(2e-9, 1e-10); }, {1.6e-9, 1.8e-9}, {2.5e-9, 2.7e-9}},
    {"NearlyEqualFloats", [] { return normal<double>(1000, 1e-9); }, {999, 1000}, {1000, 1001}},
    {"SparseFloats", [] { return with(constant(0.0F), 50, 7.5F); }, {0, 0}, {7.5, 7.5}},
    {"UniformFloats",
     [] {
         Scene scene = constant(0.0F);
         for (std::size_t i = 0; i < scene.image.size(); ++i)
             edit<float>(scene.image)[i] = static_cast<float>(i % 1000) / 1000.0F;
         return scene;
     },
     {0, 0},
     {0.99, 1}},
    {"LargestDoubles",
     [] { return normal<double>(1.7e308, 1e306); },
     {0, 1.2e307},
     {1e306, 1.3e307}},
    {"OnlyNaN", [] { return constant(nanF); }, {0, 0}, {1, 1}},
    {"AllMasked", [] { return maskedOut(poisson<unsigned>(10), W * H + 1, 1); }, {0, 1}, {1, 40}},
    {"AllDefective",
     [] {
         Scene s = poisson<unsigned>(10);
         s.mask = MImage(W, H, 16U);
         return s;
     },
     {0, 0},
     {1, 1}},
    {"HighMaskBitsAreGood",
     [] {
         Scene s = poisson<unsigned>(10);
         s.mask = MImage(W, H, 0xffffffe0U);
         return s;
     },
     {0, 0},
     {25, 34}},
    {"NegativeMask",
     [] {
         Scene s = poisson<unsigned>(10);
         s.mask = MImage(W, H, -32);
         return s;
     },
     {0, 0},
     {25, 34}},
    {"AlmostAllMasked", [] { return maskedOut(poisson<unsigned>(10), 997, 8); }, {0, 0}, {20, 45}},
    {"BadValuesUnderTheMask",
     [] {
         Scene s = with(poisson<unsigned>(10), 2, 1000000U);
         for (std::size_t i = 1; i < s.mask.size(); i += 2)
             edit<unsigned>(s.mask)[i] = 1;
         return s;
     },
     {0, 0},
     {25, 34}},
    {"Constant", [] { return constant(1000U); }, {850, 950}, {1100, 1250}},
    {"ConstantNegative", [] { return constant(-7); }, {-20, -7}, {-6, 10}},
    {"ConstantFloat", [] { return constant(0.25F); }, {0, 0.2}, {0.3, 0.6}},
    {"ConstantHighest",
     [] { return constant(std::numeric_limits<unsigned>::max() - 1); },
     {4.2e9, 4.2949e9},
     {4.2949e9, 4.3e9}},
    {"Counts64", [] { return poisson<unsigned long long>(100); }, {50, 80}, {150, 175}},
    {"Huge64", [] { return constant(9000000000000000000LL); }, {8e18, 9e18}, {9e18, 1e19}},
    {"Boolean", [] { return with(constant(false), 3, true); }, {0, 0}, {1, 1}},
    {"Bytes", [] { return poisson<unsigned char>(60); }, {30, 40}, {95, 115}},
    {"OnePixel", [] { return poisson<unsigned>(500, 1, 1); }, {380, 460}, {580, 700}},
};

class Contrast : public testing::TestWithParam<Situation> {};

TEST_P(Contrast, ShowsTheSituation)
{
    const Situation& s = GetParam();
    const Scene scene = s.make();
    double f = -1, b = -1;
    MContrast(6.0, 10000)(f, b, scene.image, &scene.mask);
    EXPECT_TRUE(std::isfinite(f));
    EXPECT_TRUE(std::isfinite(b));
    EXPECT_LT(b, f);
    EXPECT_GE(b, s.background.low);
    EXPECT_LE(b, s.background.high);
    EXPECT_GE(f, s.foreground.low);
    EXPECT_LE(f, s.foreground.high);
    if (scene.image.type() != datatypes::FLOAT) {
        EXPECT_EQ(b, std::floor(b));
        EXPECT_EQ(f, std::floor(f));
    }
    double again = 0, andAgain = 0;
    MContrast(6.0, 10000)(again, andAgain, scene.image, &scene.mask);
    EXPECT_EQ(again, f);
    EXPECT_EQ(andAgain, b);
}

INSTANTIATE_TEST_SUITE_P(Situations, Contrast, testing::ValuesIn(situations),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ContrastMask, AnyMaskTypeAndNoMask)
{
    const Scene scene = with(poisson<unsigned>(10), 2, 1000000U);
    double f = 0, b = 0;
    std::apply(
        [&](auto... zero) {
            const auto check = [&]<class M>(M) {
                MImage mask(W, H, M(0));
                for (std::size_t i = 1; i < mask.size(); i += 2)
                    edit<M>(mask)[i] = M(1);
                MContrast(6.0, 10000)(f, b, scene.image, &mask);
                EXPECT_LT(f, 40) << datatypes::typeStr(mask.type()) << mask.typeBits();
            };
            (check(zero), ...);
        },
        datatypes::PixelTypes{});
    MContrast(6.0, 10000)(f, b, poisson<unsigned>(100).image, nullptr);
    EXPECT_NEAR(f, 160, 15);
    const MImage small(3, 3, 0U);
    EXPECT_THROW(MContrast(6.0, 10000)(f, b, scene.image, &small), MBadParameterException);
}

TEST(ContrastSampling, ALargeFrameNeedsNotAllItsPixels)
{
    // A radial background of 2 to 200 counts, modules with gaps of sentinels under the mask.
    MImage image(2070, 2167, 0U), mask(2070, 2167, 0U);
    std::mt19937 random(9);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const std::size_t i = static_cast<std::size_t>(y) * 2070 + static_cast<std::size_t>(x);
            const double mean = 2 + 200 * std::exp(-std::hypot(x - 1000.0, y - 1100.0) / 400);
            edit<unsigned>(image)[i] = static_cast<unsigned>(std::max(
                0.0, mean + std::sqrt(mean) * (static_cast<double>(random() % 700) / 100.0 - 3.5) *
                                0.5));
            if (x % 1040 >= 1030 || y % 551 >= 514) {
                edit<unsigned>(image)[i] = all32;
                edit<unsigned>(mask)[i] = 1;
            }
        }
    double coarse = 0, fine = 0, b = 0;
    MContrast(6.0, 10000)(coarse, b, image, &mask);
    EXPECT_EQ(b, 0);
    MContrast(6.0, 1U << 20)(fine, b, image, &mask);  // all pixels
    EXPECT_NEAR(coarse, fine, 0.1 * fine);
}

TEST(ContrastSampling, FindsTheFewGoodPixelsOfALargeFrame)
{
    MImage image(2000, 1500, 1000000U), mask(2000, 1500, 1U);
    for (int x = 100; x < 160; ++x) {
        const std::size_t i = 700 * 2000 + static_cast<std::size_t>(x);
        edit<unsigned>(image)[i] = 40 + static_cast<unsigned>(x % 5);
        edit<unsigned>(mask)[i] = 0;
    }
    double f = 0, b = 0;
    MContrast(6.0, 10000)(f, b, image, &mask);
    EXPECT_NEAR(f, 80, 20);
}

TEST(ContrastParameters, AFactorStretchesAndBadOnesAreHeld)
{
    const Scene scene = poisson<unsigned>(400);
    double f3 = 0, f12 = 0, b = 0;
    MContrast(3.0, 10000)(f3, b, scene.image, &scene.mask);
    MContrast(12.0, 10000)(f12, b, scene.image, &scene.mask);
    EXPECT_NEAR(f3, 460, 10);
    EXPECT_NEAR(f12, 640, 25);
    for (const double factor : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()})
        for (const std::size_t bins : {std::size_t(0), std::size_t(-1)}) {
            double f = 0;
            MContrast(factor, bins)(f, b, scene.image, &scene.mask);
            EXPECT_TRUE(std::isfinite(f) && b < f) << factor;
        }
}

}  // namespace
