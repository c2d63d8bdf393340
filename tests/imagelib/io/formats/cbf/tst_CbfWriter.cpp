// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Headers of written CBF files, and failures; pixels are compared in tst_peers.
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/cbf/CbfWriter.h"
#include "tests/imagelib/io/FileCases.h"

namespace tarvik::tests {
namespace {

MImage readBack(const std::string& path)
{
    CbfOptions options;
    options.checkMd5 = true;
    return openCbf(ByteSource::open(path), options)->frame(0);
}

}  // namespace

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
    const std::string text = contentOf(folder / "a b.cbf");
    EXPECT_THAT(text, StartsWith("###CBF: VERSION 1.5\r\n\r\ndata_a_b\r\n"));
    EXPECT_THAT(text, HasSubstr("# Sensor, thickness 0.00045 m\r\n"));
    header.set_description("Large, 6M");
    EXPECT_EQ(shown(readBack(folder / "a b.cbf").optionalData()), shown(header));
}

TEST(CbfWriter, HeaderTextIsOneFieldForProgramsThatLookForSemicolons)
{
    const TempFolder folder;
    MImage image(4, 3, 7);
    image.optionalData().set_rawHeader(std::string("# Note: a; b\r\n# Tau 1 s\n;x\r\n"));
    writeCbf(image, folder / "a.cbf");
    const std::string text = contentOf(folder / "a.cbf");
    const auto open = text.find(';', text.find("_array_data.header_contents"));
    const auto close = text.find(';', open + 1);
    EXPECT_EQ(text.substr(open, close - open + 1), ";\r\n# Note: a, b\r\n# Tau 1 s\r\n# ,x\r\n;");
}

TEST(CbfWriter, WritingTwiceChangesNothing)
{
    const TempFolder folder;
    MImage image(37, 19, -70000);
    image.optionalData().set_rawHeader(
        std::string("# Tau 1 s\r\n# Silicon sensor, thickness 0.00032 m"));
    image.optionalData().set_sensor_thickness(0.00032F);
    image.optionalData().set_count_time(0.1F);
    writeCbf(image, folder / "a.cbf");
    writeCbf(readBack(folder / "a.cbf"), folder / "b.cbf");
    std::string first = contentOf(folder / "a.cbf");
    first.replace(first.find("data_a"), 6, "data_b");
    EXPECT_EQ(first, contentOf(folder / "b.cbf"));
}

TEST(CbfWriter, FailuresNameTheFile)
{
    const TempFolder folder;
    EXPECT_THROW(writeCbf(MImage(), folder / "a.cbf"), MBadParameterException);
    EXPECT_THROW(writeCbf(MImage(1, 1, 1), folder / "none/a.cbf"), MNoFileAccessException);
    EXPECT_THAT(failureOf([&] { writeCbf(MImage(1, 1, 1), folder / "none/a.cbf"); }),
                HasSubstr("none/a.cbf"));
}

}  // namespace tarvik::tests
