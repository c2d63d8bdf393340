// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Regions of interest against kept records and cases worked out by hand.
#include "logic/analysis/roi/ConnectedComponentLabelling.h"
#include "logic/analysis/roi/LineReflections.h"
#include "logic/analysis/roi/RegionNumbers.h"
#include "logic/analysis/roi/RoiComputer.h"
#include "tests/support/EveryTarget.h"
#include "tests/support/Geometry.h"
#include "tests/support/Regions.h"
#include "tests/support/SourcePath.h"

#include <gmock/gmock.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <barrier>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <thread>

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
/// @param most  a value that a twentieth of the pixels takes
template <class T>
MImage randomImage(Random& random, int width, int height, int most = 120)
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
        if (kind == 2)
            value = most;
        pixels[i] = static_cast<T>(value);
    }
    return image;
}

template <class T>
MImage randomMask(Random& random, int width, int height)
{
    MImage mask(width, height, T(0));
    T* pixels = static_cast<T*>(mask.data());
    // Integers exclude by their lowest five bits, the others by any value.
    const std::vector<int> marks = std::is_floating_point_v<T> ? std::vector{1, 2, 31, 33}
                                   : std::is_same_v<T, bool>
                                       ? std::vector{1}
                                       : std::vector{1, 2, 16, 31, 32, 64, 33, 96};
    for (std::size_t i = 0; i < mask.size(); ++i)
        if (between(random, 0, 7) == 0)
            pixels[i] = static_cast<T>((std::is_signed_v<T> && random() % 2 ? -1 : 1) *
                                       marks[random() % marks.size()]);
    return mask;
}

void setGeometry(MImage& image)
{
    tarvik::tests::setGeometry(image.optionalData(), 10.25f, 7.5f, 75e-6f, 75e-6f, 0.125f, 0.98f);
}

/// Squares are compared where values are near 0: a deviation is as exact as the radicand.
bool near(double found, double expected)
{
    return std::isnan(found) || std::isnan(expected)
               ? std::isnan(found) && std::isnan(expected)
               : std::abs(found - expected) <= 1e-9 * std::max(1.0, std::abs(expected)) ||
                     std::abs(found * found - expected * expected) <= 1e-9;
}

using Curve = std::vector<std::vector<double>>;

/// A record in four lines: its numbers, both curves, the reflections.
std::string textOf(const RoiStatistics& r)
{
    std::ostringstream text;
    text.precision(11);
    for (const double number :
         {r.integral, r.mean, r.sigma, r.length, r.area, r.backgroundMean, r.backgroundSigma,
          r.intensity, r.intensitySigma, r.centroidX, r.centroidY, r.minimum, r.maximum})
        text << ' ' << number;
    for (const Curve& curve : {r.curve, r.secondCurve}) {
        text << '\n';
        for (const auto& point : curve)
            text << ' ' << point.at(0) << ' ' << point.at(1) << ' ' << point.at(2);
    }
    text << '\n';
    for (const double position : r.reflectionPositions)
        text << ' ' << position;
    for (const auto& pixel : r.reflectionPixels)
        text << " at " << pixel.at(0) << ' ' << pixel.at(1);
    for (const std::string& distance : r.lineSpotsString)
        text << " apart " << distance;
    return text.str() + '\n';
}

/// Word for word, numbers within the rounding of sums in another order.
void expectSameText(const std::string& found, const std::string& expected)
{
    std::istringstream foundWords(found), expectedWords(expected);
    std::string word, wanted;
    while (expectedWords >> wanted) {
        ASSERT_TRUE(foundWords >> word) << found << expected;
        char* end = nullptr;
        const double number = std::strtod(wanted.c_str(), &end);
        const bool same = *end ? word == wanted : near(std::strtod(word.c_str(), nullptr), number);
        ASSERT_TRUE(same) << word << " and " << wanted << '\n' << found << expected;
    }
    EXPECT_FALSE(foundWords >> word) << found << expected;
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

/// The region that a line describes by the name of its kind and its numbers.
StatisticsData regionOf(const std::string& line)
{
    std::istringstream words(line);
    std::string kind;
    double a = 0, b = 0, c = 0, d = 0;
    words >> kind >> a >> b >> c >> d;
    return kind == "line"     ? regions::line(int(a), int(b), int(c), int(d))
           : kind == "box"    ? regions::box(int(a), int(b), int(c), int(d))
           : kind == "circle" ? regions::circle(int(a), int(b), int(c), d)
                              : regions::powder(a, b, int(c), int(d));
}

/// The numbers of many images of a size are those of one, whatever the processor.
void expectSameNumbers(RegionNumbers& numbers, const MImage& image, const MImage& mask,
                       const StatisticsData& region)
{
    const RoiStatistics found = numbers.compute(image, mask), one = compute(image, mask, region);
    for (const auto field : {&RoiStatistics::weight, &RoiStatistics::integral, &RoiStatistics::mean,
                             &RoiStatistics::maximum, &RoiStatistics::backgroundMean,
                             &RoiStatistics::intensity, &RoiStatistics::intensitySigma}) {
        ASSERT_TRUE(near(found.*field, one.*field)) << found.*field << " and " << one.*field;
        forEveryTarget([&] {
            const double again = numbers.compute(image, mask).*field;
            ASSERT_TRUE(again == found.*field || std::isnan(again)) << again - found.*field;
        });
    }
}

/// Compares with the kept file, or writes it when TARVIK_UPDATE_REGIONS is set. Each record stands
/// in four lines below its region and the size of its image, 40 x 30 by itself; every second one
/// has the geometry of its experiment.
TEST(Regions, AreThoseThatAreKept)
{
    const std::string path = tarvik::tests::sourcePath("/tests/data/regions.txt");
    std::ifstream in(path);
    std::ostringstream updated;
    unsigned int seed = 0;
    for (std::string line; std::getline(in, line);) {
        SCOPED_TRACE(line);
        Random random(++seed);
        int width = 40, height = 30;
        if (const auto at = line.find(" in "); at != line.npos)
            std::istringstream(line.substr(at + 4)) >> width >> height;
        MImage image = randomImage<int>(random, width, height, seed % 3 ? 600 : 30'000);
        if (seed % 2)
            setGeometry(image);
        const MImage mask = randomMask<unsigned int>(random, width, height);
        const StatisticsData region = regionOf(line);
        const std::string found = textOf(compute(image, mask, region));
        updated << line << '\n' << found;
        std::string kept;
        for (int i = 0; i < 4 && std::getline(in, line); ++i)
            kept += line + '\n';
        if (!std::getenv("TARVIK_UPDATE_REGIONS"))
            forEveryTarget([&] { expectSameText(textOf(compute(image, mask, region)), kept); });
        RegionNumbers numbers(region);
        expectSameNumbers(numbers, image, mask, region);
        MImage thirds = randomImage<double>(random, width, height, 100);
        for (std::size_t i = 0; i < thirds.size(); ++i)
            static_cast<double*>(thirds.data())[i] /= 3;
        expectSameNumbers(numbers, thirds, mask, region);
    }
    EXPECT_GT(seed, 30U);
    if (std::getenv("TARVIK_UPDATE_REGIONS"))
        std::ofstream(path) << updated.str();
}

/// Sizes change all the time, so that the pixels of the region are worked out anew while others
/// use those of before.
TEST(Regions, OfManyImagesAreComputedByManyThreadsAtOnce)
{
    Random random(5);
    const MImage images[] = {randomImage<int>(random, 30, 20), randomImage<int>(random, 50, 40)};
    const MImage masks[] = {MImage(images[0], 0U), MImage(images[1], 0U)};
    for (const char* line : {"line 1 2 25 18", "circle 14 9 6 0", "powder 14.3 9.6 2 9"}) {
        RegionNumbers numbers(regionOf(line));
        const auto integral = [&](int i) { return numbers.compute(images[i], masks[i]).integral; };
        const double expected[] = {integral(0), integral(1)};
        std::atomic<int> wrong = 0;
        std::barrier start(4);
        std::vector<std::jthread> threads;
        for (int first = 0; first < 4; ++first)
            threads.emplace_back([&, first] {
                start.arrive_and_wait();
                for (int i = first; i < first + 50; ++i)
                    wrong += integral(i % 2) != expected[i % 2];
            });
        threads.clear();
        EXPECT_EQ(wrong, 0) << line;
    }
}

/// All kinds of regions of an image as text.
std::string textsOf(const MImage& image, const MImage& mask)
{
    std::string text;
    for (const char* line : {"line -3 2 21 12", "line 15 4 1 4", "box -2 1 17 11",
                             "circle 7 6 4 0.7", "powder 8.3 5.6 2 9"})
        text += textOf(compute(image, mask, regionOf(line)));
    return text;
}

template <class T, class Wide>
MImage widened(const MImage& image)
{
    MImage wide(image.width(), image.height(), Wide(0));
    std::copy_n(image.pixels<T>(), image.size(), static_cast<Wide*>(wide.data()));
    return wide;
}

TEST(Regions, OfEveryPixelTypeAreThoseOfTheSameValues)
{
    Random random(11);
    const auto check = [&]<class T>(T) {
        SCOPED_TRACE(typeid(T).name());
        const MImage image = randomImage<T>(random, 18, 13);
        const MImage mask = randomMask<T>(random, 18, 13);
        const MImage other = randomImage<int>(random, 18, 13);
        expectSameText(textsOf(image, mask),
                       textsOf(widened<T, double>(image), widened<T, long long>(mask)));
        expectSameText(textsOf(other, mask), textsOf(other, widened<T, long long>(mask)));
    };
    std::apply([&](auto... types) { (check(types), ...); }, morvend::datatypes::PixelTypes());
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

TEST(Regions, NaNIsNoExtremeBesideNumbers)
{
    constexpr double Gap = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> pixels(1600);
    for (int i = 0; i < 1600; ++i)
        pixels[std::size_t(i)] = i % 40 < 2 ? Gap : i % 40 + i / 40;
    MImage image = imageOf(40, 40, pixels);
    setGeometry(image);
    for (const StatisticsData& region :
         {regions::box(0, 0, 40, 40), regions::powder(10.25, 7.5, 0, 60),
          regions::line(0, 3, 39, 3)}) {
        const RoiStatistics result = compute(image, region);
        const bool line = region.roiType == StatisticsData::Line;
        EXPECT_EQ(result.minimum, line ? 5 : 2);
        EXPECT_EQ(result.maximum, line ? 42 : 78);
    }
    EXPECT_TRUE(std::isnan(compute(image, regions::box(0, 0, 2, 40)).minimum));
}

TEST(Line, ReflectionsAreComparedByTheIntegerPartOfTheBestSoFar)
{
    std::vector<double> spot(20);
    spot[6] = 90.7;
    spot[7] = 90.2;
    EXPECT_THAT(compute(imageOf(20, 1, spot), regions::line(0, 0, 19, 0)).reflectionPositions,
                ElementsAre(7));
}

TEST(Box, SquaresWrapInTheArithmeticOfTheType)
{
    const StatisticsData region = regions::box(0, 0, 2, 1);
    // The square of 65535 is -131071 as int, so that the radicand is negative; that of 65536 is 0.
    EXPECT_TRUE(std::isnan(compute(imageOf<unsigned short>(2, 1, {65535, 1}), region).sigma));
    EXPECT_TRUE(std::isnan(compute(imageOf<unsigned int>(2, 1, {65536, 0}), region).sigma));
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

TEST(Regions, DoNotDependOnTheNumberOfThreads)
{
    Random random(6);
    const MImage image = randomImage<double>(random, 500, 400, 65'535);
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
