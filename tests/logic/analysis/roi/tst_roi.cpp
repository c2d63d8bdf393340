// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Regions of interest against plain computations, and cases worked out by hand.
#include "logic/RoiComputer.h"
#include "logic/analysis/roi/ConnectedComponentLabelling.h"
#include "logic/analysis/roi/CoveredArea.h"
#include "logic/analysis/roi/LineReflections.h"
#include "tests/logic/analysis/roi/ReferenceRoi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

using morvend::imglib::MImage;
using testing::ElementsAre;

namespace {

using Random = std::mt19937;

int between(Random& random, int low, int high)
{
    return low + int(random() % unsigned(high - low + 1));
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
        if (kind == 2 && sizeof(T) >= 2 && !std::is_same_v<T, bool>)
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
    StatisticsData region;
    region.defined = true;
    region.roiType = kind;
    region.beginX = between(random, -5, width + 5);
    region.beginY = between(random, -5, height + 5);
    region.endX = random() % 5 ? between(random, -5, width + 5) : region.beginX;
    region.endY = random() % 5 ? between(random, -5, height + 5) : region.beginY;
    region.circleX = between(random, -3, width + 3);
    region.circleY = between(random, -3, height + 3);
    region.radius = between(random, 0, 12);
    const double angles[] = {0, std::acos(-1.0) / 2, std::acos(-1.0), 0.7, 2.5, -1.1};
    region.theta = angles[random() % 6];
    region.innerRadius = between(random, 0, 9);
    region.outerRadius = region.innerRadius + between(random, -1, 12);
    region.outerRadius = std::max(region.outerRadius, 0);
    region.powderX = between(random, -4 * 3, 4 * (width + 3)) / (random() % 2 ? 4.0 : 4.1);
    region.powderY = between(random, -4 * 3, 4 * (height + 3)) / (random() % 2 ? 4.0 : 4.1);
    return region;
}

void setGeometry(MImage& image)
{
    auto& header = image.optionalData();
    header.set_beam_center_x(10.25f);
    header.set_beam_center_y(7.5f);
    header.set_detector_distance(0.125f);
    header.set_wavelength(0.98f);
    header.set_x_pixel_size(75e-6f);
    header.set_y_pixel_size(75e-6f);
}

bool near(double product, double expected)
{
    if (std::isnan(product) || std::isnan(expected))
        return std::isnan(product) && std::isnan(expected);
    return std::abs(product - expected) <= 1e-12 * std::max(1.0, std::abs(expected));
}

/// Sums of squares cancel: a deviation is as exact as the radicand it is the root of.
bool nearSigma(double product, double expected, double scale)
{
    return near(product, expected) ||
           std::abs(product * product - expected * expected) <= 1e-12 * scale * scale;
}

void expectSameCurve(const std::vector<std::vector<double>>& product,
                     const std::vector<std::vector<double>>& expected, const char* name)
{
    ASSERT_EQ(product.size(), expected.size()) << name;
    for (std::size_t i = 0; i < product.size(); ++i)
        for (std::size_t k = 0; k < 3; ++k)
            ASSERT_TRUE(near(product[i][k], expected[i][k]))
                << name << " point " << i << " part " << k << ": " << product[i][k] << " and "
                << expected[i][k];
}

void expectSame(const RoiStatistics& product, const RoiStatistics& expected)
{
    const double scale = std::max({1.0, std::abs(expected.maximum), std::abs(expected.minimum)});
#define SAME(field)                                                                                \
    EXPECT_TRUE(near(product.field, expected.field))                                               \
        << #field << ": " << product.field << " and " << expected.field
    SAME(integral);
    SAME(mean);
    SAME(length);
    SAME(area);
    SAME(backgroundMean);
    SAME(intensity);
    SAME(centroidX);
    SAME(centroidY);
    SAME(minimum);
    SAME(maximum);
#undef SAME
    EXPECT_TRUE(nearSigma(product.sigma, expected.sigma, scale))
        << product.sigma << " and " << expected.sigma;
    EXPECT_TRUE(nearSigma(product.backgroundSigma, expected.backgroundSigma, 100 * scale));
    EXPECT_TRUE(near(product.intensitySigma, expected.intensitySigma) ||
                nearSigma(product.intensitySigma, expected.intensitySigma, 1000 * scale));
    expectSameCurve(product.curve, expected.curve, "curve");
    expectSameCurve(product.secondCurve, expected.secondCurve, "second curve");
    EXPECT_EQ(product.curveLabels, expected.curveLabels);
    EXPECT_EQ(product.secondCurveLabels, expected.secondCurveLabels);
    EXPECT_EQ(product.reflectionPixels, expected.reflectionPixels);
    EXPECT_EQ(product.lineSpotsString, expected.lineSpotsString);
    ASSERT_EQ(product.reflectionPositions.size(), expected.reflectionPositions.size());
    for (std::size_t i = 0; i < product.reflectionPositions.size(); ++i)
        EXPECT_TRUE(near(product.reflectionPositions[i], expected.reflectionPositions[i]));
}

RoiStatistics compute(const MImage& image, const MImage& mask, const StatisticsData& region)
{
    RoiComputer computer;
    computer.setImage(image);
    computer.setMask(mask);
    computer.setStatisticsData(region);
    return computer.compute();
}

template <class L, class R>
void compareRandomRegions(unsigned int seed)
{
    Random random(seed);
    for (int turn = 0; turn < 16; ++turn) {
        const int width = turn == 0 ? 1 : between(random, 1, 40);
        const int height = turn == 0 ? 1 : between(random, 1, 30);
        MImage image = randomImage<L>(random, width, height);
        if (turn % 2)
            setGeometry(image);
        const MImage mask =
            turn % 3 ? randomMask<R>(random, width, height) : MImage(width, height, R(0));
        for (int kind = 0; kind <= 4; ++kind) {
            const StatisticsData region = randomRegion(random, kind, width, height);
            SCOPED_TRACE(testing::Message()
                         << "seed " << seed << " turn " << turn << " kind " << kind << " image "
                         << width << " x " << height << " line " << region.beginX << ","
                         << region.beginY << " " << region.endX << "," << region.endY << " circle "
                         << region.circleX << "," << region.circleY << " r " << region.radius
                         << " theta " << region.theta << " powder " << region.powderX << ","
                         << region.powderY << " r " << region.innerRadius << " to "
                         << region.outerRadius);
            expectSame(compute(image, mask, region), reference::compute({image, mask}, region));
            if (testing::Test::HasFailure())
                return;
        }
    }
}

template <class L, class... Masks>
void compareAllMasks(unsigned int seed, std::tuple<Masks...>*)
{
    (compareRandomRegions<L, Masks>(++seed), ...);
}

template <class... Images>
void compareAllTypes(std::tuple<Images...>* all)
{
    unsigned int seed = 0;
    (compareAllMasks<Images>(seed += 100, all), ...);
}

StatisticsData lineOf(int x0, int y0, int x1, int y1)
{
    StatisticsData region;
    region.defined = true;
    region.roiType = StatisticsData::Line;
    region.beginX = x0;
    region.beginY = y0;
    region.endX = x1;
    region.endY = y1;
    return region;
}

MImage imageOf(int width, int height, const std::vector<int>& values)
{
    return {width, height, MImage::BasicImage(values.data(), values.size())};
}

}  // namespace

TEST(Regions, EqualThePlainComputationForAllTypes)
{
    compareAllTypes(static_cast<morvend::datatypes::PixelTypes*>(nullptr));
}

TEST(Regions, NothingDefinedGivesADefaultRecord)
{
    const MImage image(4, 4, 1), mask(4, 4, 0u);
    StatisticsData region = lineOf(0, 0, 3, 3);
    region.defined = false;
    EXPECT_EQ(compute(image, mask, region).length, 0);
    EXPECT_EQ(compute(MImage(), MImage(), lineOf(0, 0, 3, 3)).length, 0);
    EXPECT_THROW(compute(image, MImage(2, 2, 0u), lineOf(0, 0, 3, 3)),
                 morvend::MBadParameterException);
    EXPECT_THROW(compute(image, mask, lineOf(0, 0, 2'000'000'000, 3)),
                 morvend::MBadParameterException);
    const RoiStatistics point = compute(image, mask, lineOf(2, 2, 2, 2));
    EXPECT_TRUE(point.curve.empty());
    EXPECT_THAT(point.curveLabels, ElementsAre("Length/Pixels", "Intensity"));
}

TEST(Line, EndPixelsCountHalf)
{
    const RoiStatistics result =
        compute(imageOf(1, 4, {2, 4, 4, 2}), MImage(1, 4, 0u), lineOf(0, 0, 0, 3));
    EXPECT_EQ(result.integral, 10);
    EXPECT_DOUBLE_EQ(result.mean, 10.0 / 3);
    EXPECT_EQ(result.length, 3);
    EXPECT_EQ(result.curve.size(), 8u);
}

TEST(Line, ReflectionsAreFoundInOneDirectionOnly)
{
    std::vector<int> values(60 * 3, 10);
    values[60 + 10] = 900;
    values[60 + 11] = 900;  // equal: the earlier one wins
    values[60 + 40] = 500;
    MImage image = imageOf(60, 3, values);
    const MImage mask(60, 3, 0u);
    const RoiStatistics right = compute(image, mask, lineOf(2, 1, 58, 1));
    EXPECT_THAT(right.reflectionPositions, ElementsAre(8, 38));
    EXPECT_THAT(right.reflectionPixels, ElementsAre(ElementsAre(10, 1)));
    EXPECT_THAT(right.lineSpotsString, ElementsAre("30 px"));
    EXPECT_TRUE(compute(image, mask, lineOf(58, 1, 2, 1)).reflectionPositions.empty());

    setGeometry(image);
    const RoiStatistics spaced = compute(image, mask, lineOf(2, 1, 58, 1));
    EXPECT_THAT(spaced.lineSpotsString[0], testing::EndsWith(" \u212B"));
}

TEST(Box, SquaresWrapInTheArithmeticOfTheType)
{
    StatisticsData region = lineOf(0, 0, 2, 1);
    region.roiType = StatisticsData::Box;
    const MImage none(2, 1, 0u);
    const unsigned short narrow[] = {65535, 1};
    // The square of 65535 is -131071 as int, so that the radicand is negative.
    EXPECT_TRUE(
        std::isnan(compute(MImage(2, 1, MImage::BasicImage(narrow, 2)), none, region).sigma));
    const unsigned int wide[] = {65536, 0};  // the square is 0 modulo 2^32
    EXPECT_TRUE(std::isnan(compute(MImage(2, 1, MImage::BasicImage(wide, 2)), none, region).sigma));
}

TEST(Box, ExcludedPixelsEnterAsZeros)
{
    StatisticsData region = lineOf(0, 0, 2, 2);
    region.roiType = StatisticsData::Box;
    const unsigned int marks[] = {0, 0, 0, 2};
    const RoiStatistics result =
        compute(imageOf(2, 2, {1, 2, 3, 9}), MImage(2, 2, MImage::BasicImage(marks, 4)), region);
    EXPECT_EQ(result.integral, 6);
    EXPECT_EQ(result.mean, 2);
    EXPECT_EQ(result.minimum, 0);
    EXPECT_EQ(result.area, 4);
}

TEST(Circle, AFlatImageHasNoSpot)
{
    StatisticsData region;
    region.defined = true;
    region.roiType = StatisticsData::Circle;
    region.circleX = region.circleY = 20;
    region.radius = 8;
    const RoiStatistics result = compute(MImage(41, 41, 5), MImage(41, 41, 0u), region);
    EXPECT_NEAR(result.mean, 5, 1e-12);
    EXPECT_NEAR(result.sigma, 0, 1e-6);
    EXPECT_NEAR(result.backgroundMean, 5, 1e-12);
    EXPECT_NEAR(result.intensity, 0, 1e-9);
    EXPECT_NEAR(result.intensitySigma, std::sqrt(result.integral), 1e-6);
    EXPECT_DOUBLE_EQ(result.length, 16);
}

TEST(CentredCircle, TheNextImageOfASeriesGivesItsOwnNumbers)
{
    StatisticsData region;
    region.defined = true;
    region.roiType = StatisticsData::CentredCircle;
    region.powderX = 50.3;
    region.powderY = 40.7;
    region.innerRadius = 3;
    region.outerRadius = 30;
    const MImage mask(100, 90, 0u);
    // The sums of covered parts come near the ring's true area.
    const double area = std::acos(-1.0) * (30.0 * 30.0 - 3.0 * 3.0);
    EXPECT_NEAR(compute(MImage(100, 90, 1), mask, region).integral, area, 0.01 * area);
    const RoiStatistics second = compute(MImage(100, 90, 7), mask, region);
    EXPECT_NEAR(second.mean, 7, 1e-12);
    for (const auto& point : second.curve)
        EXPECT_NEAR(point[1], 7, 1e-12);
    // Same centre, image of another size: another ring.
    EXPECT_LT(compute(MImage(60, 90, 1), MImage(60, 90, 0u), region).integral, 0.9 * area);
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
        EXPECT_NEAR(real, std::acos(-1.0) * r * r, 0.5 * r);
    }
}

TEST(Labelling, KnowsOneDiagonalOnly)
{
    std::vector<int> labels;
    ConnectedComponentLabelling labelling;
    const auto count = [&](const std::vector<bool>& field) {
        labelling.label(field, labels, 3, 3);
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
