// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// NumPy as an independent witness of statistics and histogram.
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <vector>

namespace {

using morvend::imglib::MImage;

/// Prints minimum, maximum, mean, sigma, sum, zeros, defective and the counts up to some values.
constexpr const char* script = R"(
import numpy as np, sys
image = np.fromfile(sys.argv[1] + "/image", sys.argv[2])
mask = np.fromfile(sys.argv[1] + "/mask", np.uint32)
good = image[(mask & 31) == 0].astype(np.float64)
numbers = [min(good.min(), image[0]), max(good.max(), image[0]), good.mean(), good.std(), good.sum(),
           (good == 0).sum(), ((mask & 30) != 0).sum()]
numbers += [(good <= float(text)).sum() for text in sys.argv[3:]]
print(*[repr(float(number)) for number in numbers])
)";

const std::vector<double> places{-5, 0, 3, 17, 255, 256, 3000, 30'000, 1e6, 2e9};

std::vector<double> numbersOfNumPy(const MImage& image, const MImage& mask, const char* type)
{
    const tarvik::tests::TempFolder folder;
    folder.write("image", {static_cast<const char*>(image.cdata()), image.dataSize()});
    folder.write("mask", {static_cast<const char*>(mask.cdata()), mask.dataSize()});
    std::string command =
        TARVIK_PYTHON " " + folder.write("witness.py", script) + ' ' + folder.path() + ' ' + type;
    for (const double place : places)
        command += ' ' + std::to_string(place);
    std::vector<double> numbers;
    if (std::FILE* child = ::popen(command.c_str(), "r")) {
        for (double number = 0; std::fscanf(child, "%lf", &number) == 1;)
            numbers.push_back(number);
        ::pclose(child);
    }
    return numbers;
}

template <class T>
void expectAgreement(const char* type)
{
    MImage image(401, 307, T(0));
    MImage mask(image, 0U);
    std::mt19937 random(9);
    auto* pixels = static_cast<T*>(image.data());
    auto* marks = static_cast<unsigned int*>(mask.data());
    for (std::size_t i = 0; i < image.size(); ++i) {
        pixels[i] = T(random() % (random() % 100 == 0 ? 40'000'000U : 40U));
        marks[i] = random() % 30 == 0 ? random() % 64 : 0;
    }
    ImageStatistics found;
    const ComputeStatistics compute(&found);
    compute.computeNumbers(image, mask);
    found.histogram.compute(image, mask, found.mean);
    const std::vector<double> expected = numbersOfNumPy(image, mask, type);
    ASSERT_EQ(expected.size(), 7 + places.size());
    EXPECT_EQ(found.minimum, expected[0]);
    EXPECT_EQ(found.maximum, expected[1]);
    EXPECT_NEAR(found.mean, expected[2], 1e-12 * expected[1]);
    EXPECT_NEAR(found.sigma, expected[3], 1e-10 * expected[3]);
    EXPECT_EQ(found.sum, expected[4]);
    EXPECT_EQ(found.zeros, expected[5]);
    EXPECT_EQ(found.defective, expected[6]);
    for (std::size_t i = 0; i < places.size(); ++i) {
        EXPECT_EQ(found.histogram.value(places[i]), expected[7 + i]) << "up to " << places[i];
    }
}

}  // namespace

TEST(NumPy, AgreesOnStatisticsAndHistogram)
{
    expectAgreement<int>("i4");
    expectAgreement<unsigned int>("u4");
    expectAgreement<float>("f4");
}
