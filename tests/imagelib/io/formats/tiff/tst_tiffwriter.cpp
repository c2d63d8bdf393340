// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// TIFF files written here and read here, and both against other programs.
#include "imagelib/io/formats/tiff/TiffWriter.h"
#include "tests/imagelib/io/formats/tiff/TiffCases.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <tiffio.h>

#include <cmath>
#include <filesystem>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;

MImage readBack(const std::string& path) { return openTiff(ByteSource::open(path))->frame(0); }

/// An image whose values reach the ends of the type.
template <class T>
MImage extremes()
{
    using Limits = std::numeric_limits<T>;
    MImage image(3, 2, T(1));
    auto* pixels = static_cast<T*>(image.data());
    pixels[0] = Limits::lowest();
    pixels[1] = Limits::max();
    pixels[5] = Limits::min();
    return image;
}

template <class T>
class TiffWriterType : public testing::Test {};

using Types = testing::Types<bool, char, signed char, short, int, long long, unsigned char,
                             unsigned short, unsigned int, unsigned long long, float, double>;
TYPED_TEST_SUITE(TiffWriterType, Types);

TYPED_TEST(TiffWriterType, ComesBack)
{
    const TempFolder folder;
    const MImage image = extremes<TypeParam>();
    writeTiff(image, folder / "x.tif");
    const MImage back = readBack(folder / "x.tif");
    const bool small = std::is_same_v<TypeParam, bool> || std::is_same_v<TypeParam, char>;
    EXPECT_EQ(back.type(), !small                                      ? image.type()
                           : std::numeric_limits<TypeParam>::is_signed ? datatypes::INT
                                                                       : datatypes::UINT);
    EXPECT_EQ(back.typeBits(), image.typeBits());
    EXPECT_EQ(back.width(), 3);
    EXPECT_EQ(back.height(), 2);
    EXPECT_EQ(std::memcmp(back.cdata(), image.cdata(), image.dataSize()), 0);
}

/// A text tag as libtiff reads it.
std::string textTag(const std::string& path, std::uint32_t tag)
{
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    const char* text = nullptr;
    const std::string result = TIFFGetField(tiff, tag, &text) ? text : "absent";
    TIFFClose(tiff);
    return result;
}

TEST(TiffWriter, KeepsTheHeader)
{
    const TempFolder folder;
    MImage image = extremes<int>();
    auto& header = image.optionalData();
    header.set_wavelength(0.987654f);
    header.set_beam_center_x(1.25f);
    header.set_beam_center_y(-3.5f);
    header.set_sensor_thickness(0.00045f);
    header.set_saturation_value(123456);
    header.set_description("Model 5");
    header.set_detector_number("007");
    header.set_data_collection_date("2024-03-05T06:07:08.912");
    writeTiff(image, folder / "x.tif");
    const MImage read = readBack(folder / "x.tif");
    const auto& back = read.optionalData();
    EXPECT_EQ(*back.wavelength(), 0.987654f);
    EXPECT_EQ(*back.beam_center_x(), 1.25f);
    EXPECT_EQ(*back.beam_center_y(), -3.5f);
    EXPECT_EQ(*back.sensor_thickness(), 0.00045f);
    EXPECT_EQ(*back.saturation_value(), 123456);
    EXPECT_EQ(*back.description(), "Model 5");
    EXPECT_EQ(*back.detector_number(), "007");
    EXPECT_EQ(*back.data_collection_date(), "2024-03-05T06:07:08.912");
    EXPECT_FALSE(back.detector_distance());
    EXPECT_EQ(textTag(folder / "x.tif", TIFFTAG_DATETIME), "2024:03:05 06:07:08");
    EXPECT_EQ(textTag(folder / "x.tif", TIFFTAG_MODEL), "Model 5");
}

TEST(TiffWriter, LeavesOutWhatIsNotKnown)
{
    const TempFolder folder;
    MImage image = extremes<int>();
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
    EXPECT_THROW(writeTiff(extremes<int>(), folder / "none/x.tif"), MNoFileAccessException);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

void runPeer(const char* action, const TempFolder& folder)
{
    const std::string command = std::string(TARVIK_PYTHON) + " " + TARVIK_SOURCE_DIR +
                                "/tests/imagelib/io/formats/tiff/peer_tiff.py " + action + " " +
                                folder.path() + " 2>" + (folder / "log");
    ASSERT_EQ(std::system(command.c_str()), 0) << std::ifstream(folder / "log").rdbuf();
}

TEST(TiffPeers, FilesOfOthersAreReadExactly)
{
    const TempFolder folder;
    runPeer("write", folder);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        if (entry.path().extension() != ".tif")
            continue;
        const MImage image = readBack(entry.path());
        std::filesystem::path raw = entry.path();
        std::ifstream stream(raw.replace_extension(".raw"), std::ios::binary);
        const std::string expected(std::istreambuf_iterator<char>(stream), {});
        ASSERT_EQ(image.dataSize(), expected.size()) << entry.path();
        EXPECT_EQ(std::memcmp(image.cdata(), expected.data(), expected.size()), 0) << entry.path();
        ++files;
    }
    EXPECT_EQ(files, 23);
}

template <class T>
void writeForPeer(const TempFolder& folder, const std::string& dtype)
{
    const MImage image = extremes<T>();
    writeTiff(image, folder / (dtype + ".tif"));
    folder.write(dtype + "." + dtype + ".3.raw",
                 {static_cast<const char*>(image.cdata()), image.dataSize()});
}

TEST(TiffPeers, OurFilesAreReadExactly)
{
    const TempFolder folder;
    writeForPeer<signed char>(folder, "int8");
    writeForPeer<unsigned char>(folder, "uint8");
    writeForPeer<short>(folder, "int16");
    writeForPeer<unsigned short>(folder, "uint16");
    writeForPeer<int>(folder, "int32");
    writeForPeer<unsigned int>(folder, "uint32");
    writeForPeer<float>(folder, "float32");
    writeForPeer<double>(folder, "float64");
    runPeer("check", folder);
}

}  // namespace
