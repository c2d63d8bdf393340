// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The first contrast: a table of situations, each with what a viewer needs to see.
#include "imagelib/display/MContrast.h"
#include "imagelib/image/MImage.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

namespace {

using namespace morvend;
using namespace morvend::imglib;

constexpr int W = 400, H = 300;
constexpr auto all32 = std::numeric_limits<unsigned>::max();

struct Scene {
    MImage image;
    MImage mask;
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

/// Every second pixel is wrong, and masked.
Scene wrongUnderTheMask()
{
    Scene scene = with(poisson<unsigned>(10), 2, 1000000U);
    for (std::size_t i = 1; i < scene.mask.size(); i += 2)
        edit<unsigned>(scene.mask)[i] = 1;
    return scene;
}

template <class M>
Scene maskedBy(M flag)
{
    return {poisson<unsigned>(10).image, MImage(W, H, flag)};
}

Scene uniform()
{
    Scene scene = constant(0.0F);
    for (std::size_t i = 0; i < scene.image.size(); ++i)
        edit<float>(scene.image)[i] = static_cast<float>(i % 1000) / 1000.0F;
    return scene;
}

/// The background lies between the first two levels, the foreground between the others.
void expect(const char* name, const Scene& scene, std::array<double, 4> levels)
{
    SCOPED_TRACE(name);
    double f = -1, b = -1;
    MContrast(6.0, 10000)(f, b, scene.image, &scene.mask);
    EXPECT_TRUE(std::isfinite(f) && std::isfinite(b));
    EXPECT_LT(b, f);
    EXPECT_GE(b, levels[0]);
    EXPECT_LE(b, levels[1]);
    EXPECT_GE(f, levels[2]);
    EXPECT_LE(f, levels[3]);
    if (scene.image.type() != datatypes::FLOAT) {
        EXPECT_EQ(b, std::floor(b));
        EXPECT_EQ(f, std::floor(f));
    }
}

// Levels for Poisson counts of mean m: 6 standard deviations above, 3 below, or 0.
TEST(Contrast, OfCounts)
{
    expect("no pixels", {}, {0, 0, 1, 1});
    expect("all zero", constant(0U), {0, 0, 1, 4});
    expect("weak frame", poisson<unsigned>(0.05), {0, 0, 1, 4});
    expect("weak, 16 bits with sign", poisson<short>(0.05), {0, 0, 1, 4});
    expect("half a count", poisson<unsigned>(0.5), {0, 0, 3, 9});
    expect("10 counts", poisson<unsigned>(10), {0, 0, 25, 34});
    expect("100 counts", poisson<unsigned>(100), {50, 80, 150, 175});
    expect("3000 counts", poisson<unsigned short>(3000), {2780, 2880, 3270, 3390});
    expect("spots on nothing", with(poisson<unsigned>(0.02), 90, 50000U), {0, 0, 1, 5});
    expect("spots on 10", with(poisson<unsigned>(10), 40, 200000U), {0, 0, 25, 36});
    expect("dead pixels", with(poisson<int>(3000), 50, 0), {2780, 2880, 3270, 3390});
    expect("hot pixels", with(poisson<int>(100), 1000, 2147483647), {50, 80, 150, 175});
    expect("background subtracted", normal<int>(0, 50), {-180, -120, 270, 330});
    expect("64 bits", poisson<unsigned long long>(100), {50, 80, 150, 175});
    expect("huge", constant(9000000000000000000LL), {8e18, 9e18, 9e18, 1e19});
    expect("bytes", poisson<unsigned char>(60), {30, 40, 95, 115});
    expect("boolean", with(constant(false), 3, true), {0, 0, 1, 1});
    expect("one pixel", poisson<unsigned>(500, 1, 1), {380, 460, 580, 700});
    expect("constant", constant(1000U), {850, 950, 1100, 1250});
    expect("constant negative", constant(-7), {-20, -7, -6, 10});
    expect("constant highest", constant(all32 - 1), {4.2e9, 4.2949e9, 4.2949e9, 4.3e9});
}

TEST(Contrast, OfFlaggedAndMaskedCounts)
{
    const std::array<double, 4> ofTen{0, 0, 25, 34};
    const Scene ten = poisson<unsigned>(10), signedTen = poisson<int>(10);
    const Scene flagged = with(with(signedTen, 2, -1), 3, -2);
    expect("sentinels", with(ten, 5, all32), ofTen);
    expect("mostly sentinels", with(with(ten, 3, all32), 2, all32), ofTen);
    expect("flags", with(with(signedTen, 7, -1), 11, -2), ofTen);
    expect("mostly flags", flagged, ofTen);
    expect("flags and a few wild", with(flagged, 5000, -2147483647), ofTen);
    expect("flags as floats", with(poisson<float>(400), 3, -1.0F), {320, 360, 500, 540});
    expect("all masked", maskedOut(ten, W * H + 1, 1), {0, 1, 1, 40});
    expect("all defective", maskedBy(16U), {0, 0, 1, 1});
    expect("high bits are good", maskedBy(0xffffffe0U), ofTen);
    expect("negative mask", maskedBy(-32), ofTen);
    expect("almost all masked", maskedOut(ten, 499, 8), {0, 0, 20, 45});
    expect("wrong under the mask", wrongUnderTheMask(), ofTen);
}

TEST(Contrast, OfFloats)
{
    const Scene gaps = with(with(normal<float>(200, 5), 4, nanF), 9, infF);
    expect("background subtracted", normal<double>(0.5, 2.0), {-6.5, -4.5, 11, 14});
    expect("gaps", gaps, {180, 190, 225, 235});
    expect("tiny", normal<double>(2e-9, 1e-10), {1.6e-9, 1.8e-9, 2.5e-9, 2.7e-9});
    expect("nearly equal", normal<double>(1000, 1e-9), {999, 1000, 1000, 1001});
    expect("sparse", with(constant(0.0F), 50, 7.5F), {0, 0, 7.5, 7.5});
    expect("uniform", uniform(), {0, 0, 0.99, 1});
    expect("largest", normal<double>(1.7e308, 1e306), {0, 1.2e307, 1e306, 1.3e307});
    expect("no numbers", constant(nanF), {0, 0, 1, 1});
    expect("constant", constant(0.25F), {0, 0.2, 0.3, 0.6});
}

TEST(ContrastMask, AnyMaskTypeAndNoMask)
{
    const Scene scene = wrongUnderTheMask();
    double f = 0, b = 0, again = 0, andAgain = 0;
    std::apply(
        [&](auto... zero) {
            const auto check = [&]<class M>(M) {
                const MImage mask = scene.mask.asType<M>();
                MContrast(6.0, 10000)(f, b, scene.image, &mask);
                EXPECT_LT(f, 40) << datatypes::typeStr(mask.type()) << mask.typeBits();
            };
            (check(zero), ...);
        },
        datatypes::PixelTypes{});
    MContrast(6.0, 10000)(f, b, poisson<unsigned>(100).image, nullptr);
    EXPECT_NEAR(f, 160, 15);
    MContrast(6.0, 10000)(again, andAgain, poisson<unsigned>(100).image, nullptr);
    EXPECT_EQ(std::pair(f, b), std::pair(again, andAgain));
    const MImage small(3, 3, 0U);
    EXPECT_THROW(MContrast(6.0, 10000)(f, b, scene.image, &small), MBadParameterException);
}

TEST(ContrastSampling, ALargeFrameNeedsNotAllItsPixels)
{
    // A radial background of 2 to 200 counts, modules with gaps of sentinels under the mask.
    MImage image(2070, 2167, 0U), mask(2070, 2167, 0U);
    std::mt19937 random(9);
    double mean = 0, sigma = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const std::size_t i = static_cast<std::size_t>(y) * 2070 + static_cast<std::size_t>(x);
            if (x % 16 == 0) {
                mean = 2 + 200 * std::exp(-std::hypot(x - 1000.0, y - 1100.0) / 400);
                sigma = std::sqrt(mean);
            }
            const double noise = static_cast<double>(random() % 700) / 200.0 - 1.75;
            const bool gap = x % 1040 >= 1030 || y % 551 >= 514;
            edit<unsigned>(image)[i] =
                gap ? all32 : static_cast<unsigned>(std::max(0.0, mean + sigma * noise));
            edit<unsigned>(mask)[i] = gap;
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
