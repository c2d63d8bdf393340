// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Statistics and histogram of random images, with each instruction set: NumPy as the witness.
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "tests/support/EveryTarget.h"
#include "tests/support/SourcePath.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <fstream>
#include <limits>
#include <optional>
#include <random>
#include <sstream>
#include <vector>

namespace {

using morvend::imglib::MImage;

constexpr int saturation = 200;

/// What kinds of values an image holds.
enum Values { Few, Counts, Wide, Special, LargeFirst, SmallFirst, Far };

/// All are so far from each other that no bin of the histogram holds two.
template <class T>
T randomPixel(std::mt19937& random, Values values, std::size_t place, std::size_t size)
{
    constexpr bool Real = std::is_floating_point_v<T>, Signed = std::numeric_limits<T>::is_signed;
    if (std::is_same_v<T, bool>)
        return T(random() % 2);
    if (values >= LargeFirst && values < Far && place < 2)
        return T(values == LargeFirst ? 1 << 24 : -(1 << 24));
    if (values == Special && Real) {
        const double some[] = {0.0, -0.0, 1.0, -3.5, std::nan(""), 7.25};
        return T(some[random() % 6]);
    }
    if (values == Wide || (values == Special && random() % 500 == 0))
        return Real ? T(double(random()) * 1e9)
                    : T(random() >> (32 - 8 * std::min<int>(sizeof(T), 4)));
    if (values == Far && Real)
        return T(double(random() % 2000) / 16384);
    if (values == Far) {
        // Elsewhere in each half, so that the window of counts moves.
        const int top = int(std::min<double>(double(std::numeric_limits<T>::max()), 1e6));
        const int some = int(random() % 200);
        const int far = place < size / 2 ? some + top / 2 : top - some;
        return T(random() % 100 == 0 ? some : Signed && place % 3 ? -far : far);
    }
    return T((Signed ? -3 : 0) + int(random() % (values == Few ? 4 : 120)));
}

template <class M>
M randomMark(std::mt19937& random, unsigned int kind)
{
    const int marks[] = {1, 2, 16, 32, 64, 3};
    const bool good = kind == 0 || random() % (kind == 1 ? 90U : 2U) != 0;
    return M(good ? 0 : marks[random() % 6]);
}

struct Case {
    std::string name;
    MImage image, mask;
    std::vector<double> places, expected;
};

/// Images that are shown to NumPy all at once.
class Witness {
public:
    template <class T, class M>
    void add(const std::string& type, const std::string& maskType, std::size_t size, Values values,
             unsigned int maskKind)
    {
        Case each{type + ' ' + std::to_string(size) + " values " + std::to_string(values) +
                      " mask " + maskType + std::to_string(maskKind),
                  MImage(int(size), 1, T(0)),
                  MImage(int(size), 1, M(0)),
                  {},
                  {}};
        auto* pixels = static_cast<T*>(each.image.data());
        auto* marks = static_cast<M*>(each.mask.data());
        for (std::size_t i = 0; i < size; ++i) {
            pixels[i] = randomPixel<T>(_random, values, i, size);
            marks[i] = randomMark<M>(_random, maskKind);
        }
        each.image.optionalData().set_saturation_value(saturation);
        for (int i = 0; i < 12; ++i)
            if (const auto value = double(pixels[_random() % size]); !std::isnan(value))
                each.places.push_back(value);
        _data.write(static_cast<const char*>(each.image.cdata()), long(each.image.dataSize()));
        _data.write(static_cast<const char*>(each.mask.cdata()), long(each.mask.dataSize()));
        _list << type << ' ' << maskType << ' ' << size;
        for (const double place : each.places)
            _list << ' ' << place;
        _list << '\n';
        _cases.push_back(std::move(each));
    }

    std::vector<Case> answers()
    {
        _data.close();
        _list.close();
        const std::string command =
            TARVIK_PYTHON " " +
            tarvik::tests::sourcePath("/tests/logic/analysis/statistics/witness.py ") +
            _folder.path() + " >" + (_folder / "answers");
        EXPECT_EQ(std::system(command.c_str()), 0);
        std::ifstream in(_folder / "answers");
        for (Case& each : _cases) {
            std::string line, word;
            std::getline(in, line);
            for (std::istringstream words(line); words >> word;)
                each.expected.push_back(std::stod(word));
        }
        return std::move(_cases);
    }

private:
    static std::ofstream opened(const std::string& path)
    {
        std::ofstream file(path, std::ios::binary);
        file.precision(17);
        return file;
    }

    const tarvik::tests::TempFolder _folder;
    std::ofstream _data = opened(_folder / "data"), _list = opened(_folder / "list");
    std::mt19937 _random{5};
    std::vector<Case> _cases;
};

bool sameBits(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

bool near(double a, double b, double size)
{
    return sameBits(a, b) || std::abs(a - b) <= 1e-12 * size;
}

void computeInSteps(ImageStatistics& found, const Case& each)
{
    std::vector<std::size_t> ends;
    testing::internal::CaptureStdout();
    ComputeStatistics(&found).compute(each.image, each.mask,
                                      [&](std::size_t end) { ends.push_back(end); });
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::is_sorted(ends.begin(), ends.end()));
    EXPECT_EQ(ends.back(), each.image.size());
}

void expectNumbers(const ImageStatistics& found, const Case& each)
{
    const std::vector<double>& wanted = each.expected;
    EXPECT_TRUE(sameBits(found.minimum, wanted[0])) << found.minimum << ", not " << wanted[0];
    EXPECT_TRUE(sameBits(found.maximum, wanted[1])) << found.maximum << ", not " << wanted[1];
    const double largest = std::max(std::abs(wanted[0]), std::abs(wanted[1]));
    EXPECT_TRUE(near(found.mean, wanted[2], largest)) << found.mean << ", not " << wanted[2];
    // Loses digits where the deviation is small against the values, as its definition does.
    EXPECT_TRUE(near(found.sigma * found.sigma, wanted[3] * wanted[3], largest * largest))
        << found.sigma << ", not " << wanted[3];
    // Sums of integers are exact, but for the widest ones.
    const bool exact = each.image.type() != morvend::datatypes::FLOAT;
    EXPECT_TRUE(near(found.sum, wanted[4], exact ? 0 : largest * double(each.image.size())))
        << found.sum << ", not " << wanted[4];
    EXPECT_EQ(found.zeros, wanted[5]);
    EXPECT_EQ(found.saturated, wanted[6]);
    EXPECT_EQ(found.defective, wanted[7]);
    EXPECT_EQ(found.hasNegatives, wanted[0] < -2);
}

void expectAgreement(const Case& each)
{
    SCOPED_TRACE(each.name);
    ASSERT_EQ(each.expected.size(), 8 + each.places.size());
    std::optional<std::array<double, 3>> other;  // of another instruction set
    forEveryTarget([&] {
        ImageStatistics found;
        computeInSteps(found, each);
        expectNumbers(found, each);
        ImageStatistics alone;
        ComputeStatistics(&alone).computeNumbers(each.image, each.mask);
        expectNumbers(alone, each);
        IntegratedHistogram histogram;
        const bool real = !std::isnan(found.mean);  // without a mean the range is another one
        histogram.compute(each.image, each.mask, real ? found.mean : 1);
        for (std::size_t i = 0; i < each.places.size(); ++i) {
            const auto [place, count] = std::pair(each.places[i], each.expected[8 + i]);
            EXPECT_TRUE(!real || found.histogram.value(place) == count) << "up to " << place;
            EXPECT_EQ(histogram.value(place), count) << "up to " << place;
        }
        const std::array numbers{found.sum, found.mean, found.sigma};
        for (std::size_t i = 0; other && i < numbers.size(); ++i)
            EXPECT_TRUE(sameBits(numbers[i], (*other)[i])) << i;
        other = numbers;
    });
}

template <class T>
void addHot(Witness& witness, const std::string& type)
{
    unsigned int kind = 0;  // each size and each kind of values meets every mask in turn
    for (const std::size_t size :
         {1U, 2U, 15U, 63U, 64U, 65U, 130U, 4095U, 4096U, 4097U, 9999U, 65'536U, 150'001U}) {
        for (const Values values : {Few, Counts, Wide, Special, LargeFirst, SmallFirst, Far}) {
            if (kind % 4 == 0)
                witness.add<T, unsigned int>(type, "u4", size, values, kind % 3);
            else if (kind % 4 == 1)
                witness.add<T, signed char>(type, "i1", size, values, kind % 3);
            else if (kind % 4 == 2)
                witness.add<T, bool>(type, "?", size, values, kind % 3);
            else
                witness.add<T, double>(type, "f8", size, values, kind % 3);
            ++kind;
        }
    }
}

TEST(NumPy, AgreesOnStatisticsAndHistogram)
{
    Witness witness;
    addHot<unsigned char>(witness, "u1");
    addHot<unsigned short>(witness, "u2");
    addHot<short>(witness, "i2");
    addHot<unsigned int>(witness, "u4");
    addHot<int>(witness, "i4");
    addHot<float>(witness, "f4");
    // The other types by plain code.
    for (const Values values : {Counts, Far}) {
        witness.add<bool, long long>("?", "i8", 5000, values, 2);
        witness.add<char, char>("b", "b", 5000, values, 2);
        witness.add<signed char, short>("i1", "i2", 5000, values, 2);
        witness.add<long long, unsigned long long>("i8", "u8", 5000, values, 2);
        witness.add<unsigned long long, float>("u8", "f4", 5000, values, 2);
        witness.add<double, unsigned short>("f8", "u2", 5000, values, 2);
    }
    for (const Case& each : witness.answers())
        if (!testing::Test::HasFailure())
            expectAgreement(each);
}

}  // namespace
