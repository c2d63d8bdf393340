// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Statistics and histogram of random images against the plain loop over pixels, for every
// instruction set of this processor.
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "logic/analysis/statistics/MaskRule.h"
#include "tests/support/EveryTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <span>
#include <vector>

namespace {

using morvend::imglib::MImage;

constexpr int saturation = 200;

/// The definition, pixel by pixel.
template <class T, class M>
void plainStatistics(ImageStatistics& out, std::span<T> pixels, std::span<M> mask)
{
    T minimum = pixels[0], maximum = pixels[0];
    unsigned int good = 0;
    double squares = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (!maskrule::good(mask[i])) {
            out.defective += maskrule::defective(mask[i]);
            continue;
        }
        const T v = pixels[i];
        if (!(v > T(0)) && !(v < T(0)))
            ++out.zeros;
        else if (std::is_integral_v<T> && double(v) >= saturation)
            ++out.saturated;
        ++good;
        out.sum += double(v);
        squares += double(v) * double(v);
        if (v > maximum)
            maximum = v;
        else if (!(v >= minimum))
            minimum = v;
    }
    out.minimum = double(minimum);
    out.maximum = double(maximum);
    out.mean = out.sum / good;
    out.sigma = std::sqrt(std::abs(squares / good - out.mean * out.mean));
    out.hasNegatives = -2.0 > out.minimum;
}

bool sameBits(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

void expectNear(double a, double b, double size)
{
    EXPECT_TRUE(sameBits(a, b) || std::abs(a - b) <= 1e-12 * size) << a << " and " << b;
}

/// What kinds of values an image holds.
enum Values { Few, Counts, Wide, Special, LargeFirst, SmallFirst };

template <class T>
T randomPixel(std::mt19937& random, Values values, std::size_t place)
{
    if (values >= LargeFirst && place < 2)
        return T(values == LargeFirst ? 1 << 24 : -(1 << 24));
    if (values == Special && std::is_floating_point_v<T>) {
        const double some[] = {0.0, -0.0, 1.0, -3.5, std::nan(""), 7.25};
        return T(some[random() % 6]);
    }
    if (values == Wide || (values == Special && random() % 500 == 0))
        return std::is_floating_point_v<T> ? T(double(random()) * 1e9)
                                           : T(random() >> (32 - 8 * sizeof(T)));
    const int low = std::numeric_limits<T>::is_signed ? -3 : 0;
    return T(low + int(random() % (values == Few ? 4 : 250)));
}

template <class M>
M randomMark(std::mt19937& random, int kind)
{
    const int marks[] = {1, 2, 16, 32, 64, 3};
    if (kind == 0 || random() % (kind == 1 ? 90U : 2U) != 0)
        return M(0);
    return M(marks[random() % 6]);
}

template <class T, class M>
void compare(std::mt19937& random, std::size_t size, Values values, int maskKind)
{
    MImage image(int(size), 1, T(0));
    MImage mask(image, M(0));
    const std::span pixels(static_cast<T*>(image.data()), size);
    const std::span marks(static_cast<M*>(mask.data()), size);
    for (std::size_t i = 0; i < size; ++i) {
        pixels[i] = randomPixel<T>(random, values, i);
        marks[i] = randomMark<M>(random, maskKind);
    }
    image.optionalData().set_saturation_value(saturation);
    ImageStatistics plain;
    plainStatistics(plain, pixels, marks);
    std::optional<std::array<double, 3>> other;  // of another instruction set
    forEveryTarget([&] {
        ImageStatistics found;
        ComputeStatistics(&found).computeNumbers(image, mask);
        EXPECT_TRUE(sameBits(found.minimum, plain.minimum)) << found.minimum << plain.minimum;
        EXPECT_TRUE(sameBits(found.maximum, plain.maximum)) << found.maximum << plain.maximum;
        EXPECT_EQ(found.zeros, plain.zeros);
        EXPECT_EQ(found.saturated, plain.saturated);
        EXPECT_EQ(found.defective, plain.defective);
        EXPECT_EQ(found.hasNegatives, plain.hasNegatives);
        const double largest = std::max(std::abs(plain.minimum), std::abs(plain.maximum));
        expectNear(found.sum, plain.sum, largest * double(size));
        expectNear(found.mean, plain.mean, largest);
        // Loses digits where the deviation is small against the values, as its definition does.
        expectNear(found.sigma * found.sigma, plain.sigma * plain.sigma, largest * largest);
        EXPECT_TRUE(!std::is_integral_v<T> || values == Wide || sameBits(found.sum, plain.sum));
        const std::array numbers{found.sum, found.mean, found.sigma};
        for (std::size_t i = 0; other && i < numbers.size(); ++i)
            EXPECT_TRUE(sameBits(numbers[i], (*other)[i])) << i;
        other = numbers;
    });
}

template <class T>
class TotalsOf : public testing::Test {};
using HotTypes = testing::Types<unsigned char, unsigned short, short, unsigned int, int, float>;
TYPED_TEST_SUITE(TotalsOf, HotTypes);

TYPED_TEST(TotalsOf, RandomImagesAreThoseOfThePlainLoop)
{
    std::mt19937 random(5);
    int maskKind = 0;  // each size and each kind of values meets every one in turn
    for (const std::size_t size : {1U, 2U, 15U, 63U, 64U, 65U, 130U, 4095U, 4096U, 4097U, 9999U}) {
        for (const Values values : {Few, Counts, Wide, Special, LargeFirst, SmallFirst}) {
            SCOPED_TRACE(testing::Message()
                         << size << " pixels, values " << values << ", mask " << maskKind);
            compare<TypeParam, unsigned int>(random, size, values, maskKind);
            compare<TypeParam, signed char>(random, size, values, (maskKind + 1) % 3);
            compare<TypeParam, bool>(random, size, values, (maskKind + 2) % 3);
            compare<TypeParam, double>(random, size, values, (maskKind + 1) % 3);
            maskKind = (maskKind + 1) % 3;
        }
        maskKind = (maskKind + 1) % 3;
    }
}

/// Most values lie far from 0 and elsewhere in each half, so that the window of counts moves.
template <class T>
void expectPlainOfFarValues(std::size_t size)
{
    std::mt19937 random(7);
    MImage image(int(size), 1, T(0));
    MImage mask(image, 0U);
    const std::span pixels(static_cast<T*>(image.data()), size);
    const std::span marks(static_cast<unsigned int*>(mask.data()), size);
    const int top = int(std::min<long long>(std::numeric_limits<T>::max(), 1'000'000));
    for (std::size_t i = 0; i < size; ++i) {
        const int some = int(random() % 200);
        const int far = i < size / 2 ? some + top / 2 : top - some;
        pixels[i] = T(random() % 100 == 0 ? some : std::is_signed_v<T> && i % 3 ? -far : far);
        marks[i] = random() % 50 == 0 ? unsigned(random() % 64) : 0U;
    }
    image.optionalData().set_saturation_value(saturation);
    ImageStatistics plain;
    plainStatistics(plain, pixels, marks);
    forEveryTarget([&] {
        ImageStatistics found;
        std::vector<std::size_t> ends;
        testing::internal::CaptureStdout();
        ComputeStatistics(&found).compute(image, mask, [&](auto end) { ends.push_back(end); });
        testing::internal::GetCapturedStdout();
        EXPECT_TRUE(std::is_sorted(ends.begin(), ends.end()));
        EXPECT_EQ(ends.back(), size);
        EXPECT_EQ(found.zeros, plain.zeros);
        EXPECT_EQ(found.saturated, plain.saturated);
        EXPECT_EQ(found.minimum, plain.minimum);
        EXPECT_EQ(found.maximum, plain.maximum);
        EXPECT_TRUE(sameBits(found.sum, plain.sum));
        EXPECT_NEAR(found.sigma, plain.sigma, 1e-9 * plain.sigma);
        IntegratedHistogram apart;
        apart.compute(image, mask, found.mean);
        for (std::size_t i = 0; i < size; i += 501)
            EXPECT_EQ(found.histogram.value(pixels[i]), apart.value(pixels[i]));
        EXPECT_EQ(found.histogram.value(top),
                  std::size_t(std::count_if(marks.begin(), marks.end(),
                                            [](auto m) { return maskrule::good(m); })));
    });
}

TEST(Totals, OfLargeImagesAreThoseOfThePlainLoopWhereverTheirValuesLie)
{
    for (const std::size_t size : {65'536U, 200'001U}) {
        SCOPED_TRACE(size);
        expectPlainOfFarValues<unsigned char>(size);
        expectPlainOfFarValues<unsigned short>(size);
        expectPlainOfFarValues<short>(size);
        expectPlainOfFarValues<unsigned int>(size);
        expectPlainOfFarValues<int>(size);
    }
}

TEST(Totals, OfLargestSquaresAreExact)
{
    // 5000 times (2^32 - 1) needs more than 64 bits for the squares.
    MImage image(5000, 1, 0xffffffffU);
    ImageStatistics found;
    ComputeStatistics(&found).computeNumbers(image, MImage(image, 0U));
    EXPECT_EQ(found.sum, 5000 * 4294967295.0);
    EXPECT_EQ(found.mean, 4294967295.0);
    EXPECT_EQ(found.sigma, 0);
}

TEST(GoodPixels, AMaskThatIsChangedIsReadAgain)
{
    MImage image(100, 3, 5);
    MImage mask(image, 0U);
    ImageStatistics found;
    const ComputeStatistics compute(&found);
    for (unsigned int bad = 0; bad < 4; ++bad) {
        compute.computeNumbers(image, mask);
        EXPECT_EQ(found.sum, 1500 - 5 * bad);
        EXPECT_EQ(found.defective, bad);
        static_cast<unsigned int*>(mask.data())[70 * bad] = 2;
    }
    // The same memory as another type is another mask.
    const MImage rough(300, 1, {mask.imageData().buffer(), morvend::datatypes::UINT, 8, 300});
    compute.computeNumbers(image, rough);
    EXPECT_EQ(found.defective, 2U) << "bytes 0 and 280";
}

}  // namespace
