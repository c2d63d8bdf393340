// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Regions of interest against plain computations, and cases worked out by hand.
#include "logic/RoiComputer.h"
#include "logic/analysis/roi/ConnectedComponentLabelling.h"
#include "logic/analysis/roi/CoveredArea.h"
#include "logic/analysis/roi/LineReflections.h"
#include "tests/logic/analysis/roi/ReferenceRoi.h"
#include "tests/support/EveryTarget.h"
#include "tests/support/Geometry.h"
#include "tests/support/Regions.h"

#include <gmock/gmock.h>
#include <tbb/task_arena.h>

#include <cmath>
#include <map>
#include <random>
#include <set>

namespace {

using morvend::imglib::MImage;
using testing::ElementsAre;
using Random = std::mt19937;

const double pi = std::acos(-1.0);

int between(Random& random, int low, int high)
{
    return low + int(random() % unsigned(high - low + 1));
}

template <class T>
MImage imageOf(int width, int height, const std::vector<T>& values)
{
    return {width, height, MImage::BasicImage(values.data(), values.size())};
}

/// Weak background with strong spots, some negative values where the type has them.
template <class T>
MImage randomImage(Random& random, int width, int height)
{
    MImage image(width, height, T(0));
    T* pixels = static_cast<T*>(image.data());
    for (std::size_t i = 0; i < image.size(); ++i) {
        const int kind = between(random, 0, 19);
        double value = between(random, 0, 9);
        if (kind == 0)
            value = between(random, 50, 120);
        if (kind == 1 && std::is_signed_v<T>)
            value = -between(random, 1, 100);
        if (std::is_floating_point_v<T>)
            value += between(random, 0, 99) / 128.0;
        if (kind == 2 && sizeof(T) >= 2)
            value = std::is_signed_v<T> ? 30'000 : 65'535;
        pixels[i] = static_cast<T>(value);
    }
    return image;
}

template <class T>
MImage randomMask(Random& random, int width, int height)
{
    MImage mask(width, height, T(0));
    T* pixels = static_cast<T*>(mask.data());
    const double marks[] = {1, 2, 16, 31, 32, 64, 33, 96};
    for (std::size_t i = 0; i < mask.size(); ++i)
        if (between(random, 0, 7) == 0)
            pixels[i] = static_cast<T>((std::is_signed_v<T> && random() % 2 ? -1 : 1) *
                                       marks[random() % 8]);
    return mask;
}

StatisticsData randomRegion(Random& random, int kind, int width, int height)
{
    const auto in = [&](int low, int high) { return between(random, low, high); };
    StatisticsData region = regions::between(kind, in(-5, width + 5), in(-5, height + 5),
                                             in(-5, width + 5), in(-5, height + 5));
    if (random() % 5 == 0)
        region.endX = region.beginX;
    if (random() % 5 == 0)
        region.endY = region.beginY;
    region.circleX = in(-3, width + 3);
    region.circleY = in(-3, height + 3);
    region.radius = in(0, 12);
    const double angles[] = {0, pi / 2, pi, 0.7, 2.5, -1.1};
    region.theta = angles[random() % 6];
    region.innerRadius = in(0, 9);
    region.outerRadius = std::max(region.innerRadius + in(-1, 12), 0);
    region.powderX = in(-12, 4 * (width + 3)) / (random() % 2 ? 4.0 : 4.1);
    region.powderY = in(-12, 4 * (height + 3)) / (random() % 2 ? 4.0 : 4.1);
    return region;
}

void setGeometry(MImage& image)
{
    tarvik::tests::setGeometry(image.optionalData(), 10.25f, 7.5f, 75e-6f, 75e-6f, 0.125f, 0.98f);
}

/// @param scale  of values whose sums of squares cancel: a deviation is as exact as the radicand
///               that it is the root of
void expectNear(double product, double expected, const char* name, double scale = 0)
{
    const bool near =
        std::isnan(product) || std::isnan(expected)
            ? std::isnan(product) && std::isnan(expected)
            : std::abs(product - expected) <= 1e-12 * std::max(1.0, std::abs(expected)) ||
                  (scale > 0 &&
                   std::abs(product * product - expected * expected) <= 1e-12 * scale * scale);
    EXPECT_TRUE(near) << name << ": " << product << " and " << expected;
}

using Curve = std::vector<std::vector<double>>;

void expectSame(const RoiStatistics& product, const RoiStatistics& expected)
{
    using R = RoiStatistics;
    const double scale = std::max({1.0, std::abs(expected.maximum), std::abs(expected.minimum)});
    struct Number {
        const char* name;
        double R::*field;
        double scale = 0;
    };
    for (const auto& [name, field, scaled] :
         {Number{"integral", &R::integral}, Number{"mean", &R::mean}, Number{"length", &R::length},
          Number{"area", &R::area}, Number{"backgroundMean", &R::backgroundMean},
          Number{"intensity", &R::intensity}, Number{"centroidX", &R::centroidX},
          Number{"centroidY", &R::centroidY}, Number{"minimum", &R::minimum},
          Number{"maximum", &R::maximum}, Number{"sigma", &R::sigma, scale},
          Number{"backgroundSigma", &R::backgroundSigma, 100 * scale},
          Number{"intensitySigma", &R::intensitySigma, 1000 * scale}})
        expectNear(product.*field, expected.*field, name, scaled);
    for (const auto curve : {&R::curve, &R::secondCurve}) {
        ASSERT_EQ((product.*curve).size(), (expected.*curve).size());
        for (std::size_t i = 0; i < 3 * (product.*curve).size(); ++i)
            expectNear((product.*curve)[i / 3][i % 3], (expected.*curve)[i / 3][i % 3], "curve");
    }
    EXPECT_EQ(product.curveLabels, expected.curveLabels);
    EXPECT_EQ(product.secondCurveLabels, expected.secondCurveLabels);
    EXPECT_EQ(product.reflectionPixels, expected.reflectionPixels);
    EXPECT_EQ(product.lineSpotsString, expected.lineSpotsString);
    ASSERT_EQ(product.reflectionPositions.size(), expected.reflectionPositions.size());
    for (std::size_t i = 0; i < product.reflectionPositions.size(); ++i)
        expectNear(product.reflectionPositions[i], expected.reflectionPositions[i], "position");
}

RoiStatistics compute(const MImage& image, const MImage& mask, const StatisticsData& region)
{
    RoiComputer computer;
    computer.setImage(image);
    computer.setMask(mask);
    computer.setStatisticsData(region);
    return computer.compute();
}

RoiStatistics compute(const MImage& image, const StatisticsData& region)
{
    return compute(image, MImage(image, 0U), region);
}

template <class L, class R>
void compareRandomRegions(unsigned int seed)
{
    Random random(seed);
    for (int turn = 0; turn < 16 && !testing::Test::HasFailure(); ++turn) {
        const int width = turn == 0 ? 1 : between(random, 1, 40);
        const int height = turn == 0 ? 1 : between(random, 1, 30);
        MImage image = randomImage<L>(random, width, height);
        if (turn % 2)
            setGeometry(image);
        const MImage mask =
            turn % 3 ? randomMask<R>(random, width, height) : MImage(width, height, R(0));
        for (int kind = 0; kind <= 4; ++kind) {
            SCOPED_TRACE(testing::Message() << typeid(L).name() << typeid(R).name() << " turn "
                                            << turn << " kind " << kind);
            const StatisticsData region = randomRegion(random, kind, width, height);
            expectSame(compute(image, mask, region), reference::compute({image, mask}, region));
        }
    }
}

TEST(Regions, EqualThePlainComputationForAllTypes)
{
    using Types = morvend::datatypes::PixelTypes;
    unsigned int seed = 0;
    const auto compareAll = [&]<class L>(L) {
        std::apply([&](auto... masks) { (compareRandomRegions<L, decltype(masks)>(++seed), ...); },
                   Types());
    };
    std::apply([&](auto... images) { (compareAll(images), ...); }, Types());
}

TEST(Regions, NothingDefinedGivesADefaultRecord)
{
    const MImage image(4, 4, 1);
    StatisticsData region = regions::line(0, 0, 3, 3);
    EXPECT_EQ(compute(MImage(), MImage(), region).length, 0);
    EXPECT_THROW(compute(image, MImage(2, 2, 0u), region), morvend::MBadParameterException);
    region.defined = false;
    EXPECT_EQ(compute(image, region).length, 0);
    EXPECT_THROW(compute(image, regions::line(0, 0, 2'000'000'000, 3)),
                 morvend::MBadParameterException);
    const RoiStatistics point = compute(image, regions::line(2, 2, 2, 2));
    EXPECT_TRUE(point.curve.empty());
    EXPECT_THAT(point.curveLabels, ElementsAre("Length/Pixels", "Intensity"));
}

TEST(Line, EndPixelsCountHalf)
{
    const RoiStatistics result =
        compute(imageOf<int>(1, 4, {2, 4, 4, 2}), regions::line(0, 0, 0, 3));
    EXPECT_EQ(result.integral, 10);
    EXPECT_DOUBLE_EQ(result.mean, 10.0 / 3);
    EXPECT_EQ(result.length, 3);
    EXPECT_EQ(result.curve.size(), 8u);
}

TEST(Line, ReflectionsAreFoundInOneDirectionOnly)
{
    std::vector<int> values(60 * 3, 10);
    values[60 + 10] = values[60 + 11] = 900;  // equal: the earlier one wins
    values[60 + 40] = 500;
    MImage image = imageOf(60, 3, values);
    const RoiStatistics right = compute(image, regions::line(2, 1, 58, 1));
    EXPECT_THAT(right.reflectionPositions, ElementsAre(8, 38));
    EXPECT_THAT(right.reflectionPixels, ElementsAre(ElementsAre(10, 1)));
    EXPECT_THAT(right.lineSpotsString, ElementsAre("30 px"));
    EXPECT_TRUE(compute(image, regions::line(58, 1, 2, 1)).reflectionPositions.empty());
    setGeometry(image);
    EXPECT_THAT(compute(image, regions::line(2, 1, 58, 1)).lineSpotsString,
                ElementsAre(testing::EndsWith(" \u212B")));
}

TEST(Box, SquaresWrapInTheArithmeticOfTheType)
{
    const StatisticsData region = regions::box(0, 0, 2, 1);
    // The square of 65535 is -131071 as int, so that the radicand is negative; that of 65536 is 0.
    EXPECT_TRUE(std::isnan(compute(imageOf<unsigned short>(2, 1, {65535, 1}), region).sigma));
    EXPECT_TRUE(std::isnan(compute(imageOf<unsigned int>(2, 1, {65536, 0}), region).sigma));
}

TEST(Box, ExcludedPixelsEnterAsZeros)
{
    const RoiStatistics result =
        compute(imageOf<int>(2, 2, {1, 2, 3, 9}), imageOf<unsigned>(2, 2, {0, 0, 0, 2}),
                regions::box(0, 0, 2, 2));
    EXPECT_EQ(result.integral, 6);
    EXPECT_EQ(result.mean, 2);
    EXPECT_EQ(result.minimum, 0);
    EXPECT_EQ(result.area, 4);
}

TEST(Circle, AFlatImageHasNoSpot)
{
    const RoiStatistics result = compute(MImage(41, 41, 5), regions::circle(20, 20, 8));
    EXPECT_NEAR(result.mean, 5, 1e-12);
    EXPECT_NEAR(result.sigma, 0, 1e-6);
    EXPECT_NEAR(result.backgroundMean, 5, 1e-12);
    EXPECT_NEAR(result.intensity, 0, 1e-9);
    EXPECT_NEAR(result.intensitySigma, std::sqrt(result.integral), 1e-6);
    EXPECT_DOUBLE_EQ(result.length, 16);
}

TEST(Circle, SectionIsCutIntoTheSamePixelsBeyondTheImage)
{
    for (const double theta : {0.0, pi / 2, pi, -pi / 2, -0.75, 2.5}) {
        const Curve beyond = compute(MImage(9, 9, 5), regions::circle(1, 1, 4, theta)).curve;
        const Curve inside = compute(MImage(30, 30, 5), regions::circle(11, 11, 4, theta)).curve;
        ASSERT_EQ(beyond.size(), inside.size()) << theta;
        for (std::size_t i = 0; i < inside.size(); ++i)
            EXPECT_NEAR(beyond[i][0], inside[i][0], 1e-12) << theta;
    }
}

TEST(CentredCircle, TheNextImageOfASeriesGivesItsOwnNumbers)
{
    const StatisticsData region = regions::powder(50.3, 40.7, 3, 30);
    // The sums of covered parts come near the ring's true area.
    const double area = pi * (30.0 * 30.0 - 3.0 * 3.0);
    EXPECT_NEAR(compute(MImage(100, 90, 1), region).integral, area, 0.01 * area);
    const RoiStatistics second = compute(MImage(100, 90, 7), region);
    EXPECT_NEAR(second.mean, 7, 1e-12);
    for (const auto& point : second.curve)
        EXPECT_NEAR(point[1], 7, 1e-12);
    // Same centre, image of another size: another ring.
    EXPECT_LT(compute(MImage(60, 90, 1), region).integral, 0.9 * area);
}

TEST(CentredCircle, OfALargeImageEqualsThePlainComputation)
{
    Random random(5);
    const MImage image = randomImage<int>(random, 600, 310);
    const MImage mask = randomMask<unsigned int>(random, 600, 310);
    struct Case {
        double x, y;
        int inner, outer;
    };
    for (const auto& [x, y, inner, outer] : {Case{290.3, 150.8, 0, 400},
                                             {300, 155, 7, 290},
                                             {-20.5, 320.25, 30, 700},
                                             {599.5, 0.01, 100, 101},
                                             {40.75, 150, 20, 5}}) {
        SCOPED_TRACE(testing::Message() << x << ' ' << y);
        const StatisticsData region = regions::powder(x, y, inner, outer);
        const RoiStatistics plain = reference::compute({image, mask}, region);
        forEveryTarget([&] { expectSame(compute(image, mask, region), plain); });
    }
}

TEST(Regions, DoNotDependOnTheNumberOfThreads)
{
    Random random(6);
    const MImage image = randomImage<double>(random, 500, 400);
    const MImage mask = randomMask<unsigned char>(random, 500, 400);
    for (const StatisticsData& region :
         {regions::box(3, 4, 490, 395), regions::powder(240.3, 190.1, 5, 300)}) {
        RoiStatistics alone;
        tbb::task_arena(1).execute([&] { alone = compute(image, mask, region); });
        const RoiStatistics together = compute(image, mask, region);
        EXPECT_EQ(together.integral, alone.integral);
        EXPECT_EQ(together.sigma, alone.sigma);
        EXPECT_EQ(together.curve, alone.curve);
        EXPECT_EQ(together.secondCurve, alone.secondCurve);
    }
}

TEST(CoveredArea, SumsToTheCircle)
{
    for (const int r : {1, 2, 5, 17}) {
        double real = 0;
        for (int y = -20; y < 20; ++y)
            for (int x = -20; x < 20; ++x) {
                real += coveredArea(x, y, r, 0.3, -0.4);
                EXPECT_EQ(coveredArea(x, y, r, 1, 2), reference::coveredArea(x, y, r, 1, 2));
            }
        // Chords instead of arcs lose a little at each rim pixel.
        EXPECT_NEAR(real, pi * r * r, 0.5 * r);
    }
}

TEST(Labelling, KnowsOneDiagonalOnly)
{
    std::vector<int> labels;
    const auto count = [&](const std::vector<bool>& field) {
        ConnectedComponentLabelling::label(field, labels, 3, 3);
        std::set<int> found(labels.begin(), labels.end());
        found.erase(0);
        return found.size();
    };
    EXPECT_EQ(count({1, 0, 0, 0, 1, 0, 0, 0, 1}), 1u);
    EXPECT_EQ(count({0, 0, 1, 0, 1, 0, 1, 0, 0}), 3u);
    EXPECT_EQ(count({1, 0, 1, 1, 1, 1, 0, 0, 0}), 1u);  // two labels that meet below
    EXPECT_EQ(count(std::vector<bool>(9, false)), 0u);
    EXPECT_THAT(labels, testing::SizeIs(9));
}

TEST(Labelling, JoinsWhatMeetsFarAway)
{
    constexpr int width = 150, height = 140;
    Random random(7);
    std::vector<bool> field(std::size_t(width * height));
    for (auto&& bit : field)
        bit = random() % 2 != 0;
    std::vector<int> labels;
    ConnectedComponentLabelling::label(field, labels, width, height);
    // Each pixel takes the least label around it until nothing changes.
    std::vector<int> plain(field.size());
    for (std::size_t i = 0; i < field.size(); ++i)
        plain[i] = field[i] ? int(i) + 1 : 0;
    for (bool changed = true; changed;) {
        changed = false;
        for (int i = 0; i < width * height; ++i)
            for (const auto& [dx, dy] : {std::pair(-1, 0), {-1, -1}, {0, -1}}) {
                const int x = i % width + dx, y = i / width + dy;
                if (x < 0 || y < 0 || !plain[std::size_t(i)])
                    continue;
                int &here = plain[std::size_t(i)], &there = plain[std::size_t(y * width + x)];
                changed |= there && there != here;
                if (there)
                    here = there = std::min(here, there);
            }
    }
    std::map<int, int> pairs;
    for (std::size_t i = 0; i < field.size(); ++i)
        EXPECT_EQ(pairs.try_emplace(plain[i], labels[i]).first->second, labels[i]) << i;
    EXPECT_EQ(std::set<int>(labels.begin(), labels.end()).size(), pairs.size());
}

TEST(Reflections, OfADiagonalLineLookAtNoMoreThanItsSurroundings)
{
    constexpr int side = 3000;
    const MImage image(side, side, 0);
    std::vector<roi::ListPixel> list;
    for (int i = 0; i < side; ++i)
        list.push_back({i, i, i % 100 == 0 ? 9.0 : 0.0, 0});
    long long looks = 0;
    RoiStatistics result;
    roi::findReflections(
        result, list, roi::reflectionBox(0, 0, side - 1, side - 1, image),
        [&](int x, int y) { return ++looks, x % 100 < 3 && std::abs(x - y) < 2; }, image);
    EXPECT_EQ(result.reflectionPositions.size(), std::size_t(side / 100));
    EXPECT_LT(looks, 10 * side);
}

TEST(LatticeDistance, IsTheSpacingBetweenTwoRays)
{
    MImage image(1, 1, 0);
    EXPECT_EQ(latticeDistance(image, 1, 1, 2, 2), -1);
    setGeometry(image);
    EXPECT_EQ(latticeDistance(image, 3, 3, 3, 3), -1);
    // From the beam centre outwards: cos = D / sqrt(a^2 + D^2).
    const double a = 100 * double(75e-6f), d = 0.125;
    const double expected = double(0.98f) / std::sqrt(2 * (1 - d / std::sqrt(a * a + d * d)));
    EXPECT_NEAR(latticeDistance(image, 10.25, 7.5, 110.25, 7.5), expected, 1e-9);
}

}  // namespace
