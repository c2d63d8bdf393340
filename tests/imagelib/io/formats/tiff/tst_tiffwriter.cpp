// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Headers of written TIFF files, and failures; pixels are compared in tst_peers.
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "imagelib/io/formats/tiff/TiffWriter.h"
#include "tests/imagelib/io/FileCases.h"

#include <tiffio.h>

namespace tarvik::tests {
namespace {

/// A text tag as libtiff reads it.
std::string textTag(const std::string& path, std::uint32_t tag)
{
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    const char* text = nullptr;
    const std::string result = TIFFGetField(tiff, tag, &text) ? text : "absent";
    TIFFClose(tiff);
    return result;
}

}  // namespace

TEST(TiffWriter, KeepsTheHeader)
{
    const TempFolder folder;
    MImage image(3, 2, 1);
    auto& header = image.optionalData();
    header.set_wavelength(0.987654f);
    header.set_beam_center_x(1.25f);
    header.set_beam_center_y(-3.5f);
    header.set_sensor_thickness(0.00045f);
    header.set_saturation_value(123456);
    header.set_description("Model 5");
    header.set_detector_number("007");
    header.set_data_collection_date("2024-03-05T06:07:08.912");
    const std::string path = folder / "x.tif";
    writeTiff(image, path);
    EXPECT_EQ(shown(openTiff(ByteSource::open(path))->frame(0).optionalData()), shown(header));
    EXPECT_EQ(textTag(path, TIFFTAG_DATETIME), "2024:03:05 06:07:08");
    EXPECT_EQ(textTag(path, TIFFTAG_MODEL), "Model 5");
}

TEST(TiffWriter, LeavesOutWhatIsNotKnown)
{
    const TempFolder folder;
    MImage image(3, 2, 1);
    writeTiff(image, folder / "x.tif");
    EXPECT_EQ(textTag(folder / "x.tif", TIFFTAG_MODEL), "absent");
    for (const char* date : {"yesterday", "2024/Mar/05 06:07:08", "2024-03-05", ""}) {
        image.optionalData().set_data_collection_date(std::string(date));
        writeTiff(image, folder / "x.tif");
        EXPECT_EQ(textTag(folder / "x.tif", TIFFTAG_DATETIME), "absent") << date;
    }
}

TEST(TiffWriter, FailsWithoutATrace)
{
    const TempFolder folder;
    EXPECT_THROW(writeTiff(MImage(), folder / "x.tif"), MBadParameterException);
    EXPECT_THROW(writeTiff(MImage(3, 2, 1), folder / "none/x.tif"), MNoFileAccessException);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

}  // namespace tarvik::tests
