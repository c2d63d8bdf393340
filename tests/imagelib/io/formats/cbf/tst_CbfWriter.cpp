// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Written CBF files, read back here and by fabio.
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/cbf/CbfWriter.h"
#include "tests/support/TempFolder.h"

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using tarvik::tests::TempFolder;

std::string content(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

MImage readBack(const std::string& path)
{
    CbfOptions options;
    options.checkMd5 = true;
    return openCbf(ByteSource::open(path), options)->frame(0);
}

/// Any value of a type, its ends among them.
template <class T>
MImage anyPixels(int width, int height)
{
    MImage image(width, height, datatypes::typeOf<T>, datatypes::bitsOf<T>);
    auto* pixels = static_cast<T*>(image.data());
    std::mt19937_64 random(3);
    for (std::size_t i = 0; i < image.size(); ++i) {
        const auto bits = random();
        if constexpr (std::is_floating_point_v<T>)
            pixels[i] = static_cast<T>(static_cast<double>(bits) * (bits & 1 ? 1e-9 : -1e9));
        else if constexpr (std::is_same_v<T, bool>)
            pixels[i] = (bits & 1) != 0;
        else
            pixels[i] = bits & 4   ? static_cast<T>(bits >> 8 & 7)
                        : bits & 8 ? static_cast<T>(bits >> 8)
                        : bits & 1 ? std::numeric_limits<T>::max()
                                   : std::numeric_limits<T>::min();
    }
    return image;
}

template <class T>
class WrittenCbf : public testing::Test {};
using Types = testing::Types<bool, char, signed char, short, int, long long, unsigned char,
                             unsigned short, unsigned int, unsigned long long, float, double>;
TYPED_TEST_SUITE(WrittenCbf, Types);

TYPED_TEST(WrittenCbf, ReadsBackTheSame)
{
    const TempFolder folder;
    const MImage image = anyPixels<TypeParam>(37, 19);
    writeCbf(image, folder / "a.cbf");
    const MImage back = readBack(folder / "a.cbf");
    ASSERT_EQ(back.width(), 37);
    ASSERT_EQ(back.height(), 19);
    EXPECT_EQ(std::memcmp(image.cdata(), back.cdata(), image.dataSize()), 0);
    EXPECT_EQ(back.typeBits(), image.typeBits());
    if (!std::is_same_v<TypeParam, bool> && !std::is_same_v<TypeParam, char>) {
        EXPECT_EQ(back.type(), image.type());
    }
}

template <class T>
class ForFabio : public testing::Test {};
using FabioTypes =
    testing::Types<signed char, short, int, long long, unsigned char, unsigned short, unsigned int>;
TYPED_TEST_SUITE(ForFabio, FabioTypes);

TYPED_TEST(ForFabio, ReadsTheSameValues)
{
    const TempFolder folder;
    MImage image = anyPixels<TypeParam>(37, 19);
    // fabio does not know the escape to 8 bytes, which a step of exactly 2^31 needs.
    auto* pixels = static_cast<TypeParam*>(image.data());
    for (std::size_t i = 0; sizeof(TypeParam) >= 4 && i < image.size(); ++i)
        pixels[i] = static_cast<TypeParam>(pixels[i] / 4);
    writeCbf(image, folder / "a.cbf");
    const std::string raw =
        folder.write("raw", {static_cast<const char*>(image.cdata()), image.dataSize()});
    const std::string type =
        (std::is_signed_v<TypeParam> ? "i" : "u") + std::to_string(sizeof(TypeParam));
    const std::string script =
        folder.write("read.py", "import fabio, numpy, sys\n"
                                "image = fabio.open('" +
                                    (folder / "a.cbf") + "').data\nwanted = numpy.fromfile('" +
                                    raw + "', '" + type + "').reshape(19, 37)\n" +
                                    "sys.exit(0 if (image == wanted).all() else 1)\n");
    EXPECT_EQ(std::system((TARVIK_PYTHON " " + script).c_str()), 0);
}

TEST(CbfWriter, HeaderComesBack)
{
    const TempFolder folder;
    MImage image(4, 3, 7);
    auto& header = image.optionalData();
    header.set_sensor_thickness(0.00045F);
    header.set_wavelength(0.9795F);
    header.set_beam_center_x(12.25F);
    header.set_beam_center_y(-3.5F);
    header.set_description("Large; 6M");
    writeCbf(image, folder / "a b.cbf");
    const std::string text = content(folder / "a b.cbf");
    EXPECT_TRUE(text.starts_with("###CBF: VERSION 1.5\r\n\r\ndata_a_b\r\n"));
    EXPECT_NE(text.find("# Sensor, thickness 0.00045 m\r\n"), text.npos);
    const MImage image2 = readBack(folder / "a b.cbf");
    const auto& back = image2.optionalData();
    EXPECT_EQ(back.sensor_thickness(), header.sensor_thickness());
    EXPECT_EQ(back.wavelength(), header.wavelength());
    EXPECT_EQ(back.beam_center_x(), header.beam_center_x());
    EXPECT_EQ(back.beam_center_y(), header.beam_center_y());
    EXPECT_EQ(*back.description(), "Large, 6M");
}

TEST(CbfWriter, HeaderTextIsOneFieldForProgramsThatLookForSemicolons)
{
    const TempFolder folder;
    MImage image(4, 3, 7);
    image.optionalData().set_rawHeader(std::string("# Note: a; b\r\n# Tau 1 s\n;x\r\n"));
    writeCbf(image, folder / "a.cbf");
    const std::string text = content(folder / "a.cbf");
    const auto tag = text.find("_array_data.header_contents");
    const auto open = text.find(';', tag);
    const auto close = text.find(';', open + 1);
    EXPECT_EQ(text.substr(open, close - open + 1), ";\r\n# Note: a, b\r\n# Tau 1 s\r\n# ,x\r\n;");
}

TEST(CbfWriter, WritingTwiceChangesNothing)
{
    const TempFolder folder;
    MImage image = anyPixels<int>(37, 19);
    image.optionalData().set_rawHeader(
        std::string("# Tau 1 s\r\n# Silicon sensor, thickness 0.00032 m"));
    image.optionalData().set_sensor_thickness(0.00032F);
    image.optionalData().set_count_time(0.1F);
    writeCbf(image, folder / "a.cbf");
    writeCbf(readBack(folder / "a.cbf"), folder / "b.cbf");
    std::string first = content(folder / "a.cbf");
    first.replace(first.find("data_a"), 6, "data_b");
    EXPECT_EQ(first, content(folder / "b.cbf"));
}

TEST(CbfWriter, FailuresNameTheFile)
{
    const TempFolder folder;
    EXPECT_THROW(writeCbf(MImage(), folder / "a.cbf"), MBadParameterException);
    try {
        writeCbf(MImage(1, 1, 1), folder / "none/a.cbf");
        FAIL();
    } catch (const MNoFileAccessException& error) {
        EXPECT_NE(std::string(error.what()).find("none/a.cbf"), std::string::npos);
    }
}

}  // namespace
