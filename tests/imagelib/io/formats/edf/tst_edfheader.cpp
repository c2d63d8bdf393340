// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header values of EDF files, and what is refused or damaged.
#include "imagelib/image/MBasicImageOptionalData.h"
#include "tests/imagelib/io/formats/edf/EdfCases.h"

#include <gmock/gmock.h>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

struct FieldCase {
    const char* name;
    const char* statements;
    const char* fields;
};

class EdfFields : public testing::TestWithParam<FieldCase> {};

/// All set fields but the raw text as "name=value;".
std::string fieldsOf(const MImage& image)
{
    std::ostringstream out;
    image.optionalData().forEachField([&]<class T>(const char* name, const T& value) {
        if constexpr (!std::is_same_v<T, boost::optional<MImage>>)
            if (value && std::string(name) != "rawHeader")
                out << name << '=' << *value << ';';
    });
    return out.str();
}

TEST_P(EdfFields, AreRead)
{
    EXPECT_EQ(fieldsOf(openBytes(blockOf(1, {1}, GetParam().statements))->frame(0)),
              GetParam().fields);
}

INSTANTIATE_TEST_SUITE_P(
    Values, EdfFields,
    testing::Values(
        FieldCase{"None", "", ""},
        FieldCase{"Centre", "Center_1 = 12.5 ; Center_2 = -7 ;",
                  "beam_center_x=12.5;beam_center_y=-7;"},
        FieldCase{"Distance", "SampleDistance = 0.25 ;", "detector_distance=0.25;"},
        FieldCase{"DistanceGlued", "SampleDistance = 909.99mm ;", "detector_distance=0.90999;"},
        FieldCase{"DistanceWithUnit", "SampleDistance = +25 cm ;", "detector_distance=0.25;"},
        FieldCase{"WaveLength", "WaveLength = 1.5e-10 ;", "wavelength=1.5;"},
        FieldCase{"WaveLengthInAngstrom", "WaveLength = 1.5A ;", "wavelength=1.5;"},
        FieldCase{"WaveLengthInNanometre", "wavelength = 0.15 nm ;", "wavelength=1.5;"},
        FieldCase{"Energy", "Energy = 12.39842keV ;", "wavelength=1;"},
        FieldCase{"EnergyAfterWaveLength", "Energy = 7.0keV ; WaveLength = 1e-10 ;",
                  "wavelength=1;"},
        FieldCase{"EnergyWithoutUnit", "Energy = 7 ;", ""},
        FieldCase{"EnergyZero", "Energy = 0 keV ;", ""},
        FieldCase{"PixelSize", "PSize_1 = 1.72e-4 ; PSize_2 = 50 um ;",
                  "x_pixel_size=0.000172;y_pixel_size=5e-05;"},
        FieldCase{"CountTime", "count_time = 2 ;", "count_time=2;"},
        FieldCase{"ExposureTimeFirst", "ExposureTime = 20 ms ; count_time = 2 ;",
                  "count_time=0.02;"},
        FieldCase{"ExposureTimeNone", "ExposureTime = Na ; count_time = 2 ;", "count_time=2;"},
        FieldCase{"NotANumber", "count_time = Na ; Center_1 = nan ; Center_2 = inf ;", ""},
        FieldCase{"CentreInMillimetres", "Center_1 = 12.5mm ;", ""},
        FieldCase{"TooLarge", "SampleDistance = 1e300 ;", ""},
        FieldCase{"Empty", "count_time = ; Date = ;", ""},
        FieldCase{"Date", "Date = Mon Mar  5 2024 ; time_of_day = 1.5 ;",
                  "data_collection_date=Mon Mar  5 2024;"},
        FieldCase{"TimeOfDay", "time_of_day = 1709618828.912 ;",
                  "data_collection_date=1709618828.912;"},
        FieldCase{"LastDuplicateWins", "count_time = 2 ; COUNT_TIME = 3 ;", "count_time=3;"}),
    [](const auto& row) { return row.param.name; });

TEST(EdfRawHeader, IsTheTextWithoutPadding)
{
    EXPECT_EQ(*openBytes("{\r\nDim_1 = 1 ;\r\nt\xe9 = 5 ;\r\n      }\r\n\1\2")
                   ->frame(0)
                   .optionalData()
                   .rawHeader(),
              "{\r\nDim_1 = 1 ;\r\nt\xe9 = 5 ;\n}\n");
}

struct RefusalCase {
    const char* name;
    const char* statements;
    const char* text;
};

class EdfRefusal : public testing::TestWithParam<RefusalCase> {};

TEST_P(EdfRefusal, NamesReasonAndFile)
{
    const std::string text = failureOf(blockOf(2, {1, 2}, GetParam().statements));
    EXPECT_THAT(text, testing::StartsWith("EDF: "));
    EXPECT_THAT(text, HasSubstr(GetParam().text));
    EXPECT_THAT(text, testing::EndsWith(": /data/x.edf"));
}

INSTANTIATE_TEST_SUITE_P(
    Header, EdfRefusal,
    testing::Values(
        RefusalCase{"Type", "DataType = Complex ;", "DataType \"Complex\" is not read"},
        RefusalCase{"Order", "ByteOrder = Odd ;", "ByteOrder \"Odd\" is not read"},
        RefusalCase{"Packing", "Compression = lzma ;", "Compression \"lzma\" is not read"},
        RefusalCase{"FourDimensions", "Dim_4 = 2 ;", "Dim_4 \"2\" is not read"},
        RefusalCase{"WidthZero", "Dim_1 = 0 ;", "Dim_1 can't be \"0\""},
        RefusalCase{"HeightNegative", "Dim_2 = -5 ;", "Dim_2 can't be \"-5\""},
        RefusalCase{"WidthNoNumber", "Dim_1 = many ;", "Dim_1 can't be \"many\""},
        RefusalCase{"WidthBeyondInt", "Dim_1 = 2147483648 ;", "Dim_1 can't be \"2147483648\""},
        RefusalCase{"WidthBeyondEverything", "Dim_1 = 99999999999999999999 ;", "Dim_1 can't be"},
        RefusalCase{"PixelsBeyondEverything",
                    "Dim_1 = 2147483647 ; Dim_2 = 2147483647 ; Dim_3 = 2147483647 ;",
                    "no file can hold 2147483647 x 2147483647 x 2147483647 pixels"},
        RefusalCase{"MorePixelsThanTheFile", "Dim_2 = 2000000 ;",
                    "pixel data of frame 0 ends after 4 of 8000000 bytes"},
        RefusalCase{"PlaneMissing", "Dim_3 = 2 ;", "frame 1 ends after 0 of 4 bytes"},
        RefusalCase{"ExternalName", "EDF_BinaryFileName = a/.. ;",
                    "EDF_BinaryFileName can't be \"a/..\""}),
    [](const auto& row) { return row.param.name; });

TEST(EdfDamage, OtherFilesAreNotMine)
{
    for (const char* bytes : {"", "{", "{}", "{}\n", "\n", "\n\n{a=1;}\n", "{\"a\": 1}\n",
                              "{ [1, 2] = 3 }", "###CBF: VERSION", "II*", "{ int x; y = 3; }"})
        EXPECT_EQ(failureOf(bytes) == "no failure", false) << bytes;
    for (const char* bytes : {"", "{", "{}\n", "{\"a\": 1}\n", "###CBF", "{ int x; y = 3; }\n"})
        EXPECT_EQ(failureOf(bytes), "not mine") << bytes;
}

TEST(EdfDamage, AShortFrameBeforeAnotherIsNotFilledFromIt)
{
    // The first frame lacks a pixel and says so: the second one begins where Size has it.
    const std::string cut = blockOf(2, {1}, "Dim_1 = 2 ;\nDim_2 = 1 ;\nSize = 2 ;\n");
    const auto file = openBytes(cut + blockOf(2, {3, 4}));
    ASSERT_EQ(file->frameCount(), 2u);
    EXPECT_EQ(shown(file->frame(1)), "UINT16 2x1: 3 4");
    EXPECT_THAT(failureOf(cut + blockOf(2, {3, 4})),
                HasSubstr("pixel data of frame 0 ends after 2 of 4 bytes"));
}

TEST(EdfDamage, SomethingThatIsNoHeaderIsOneMoreFrameThatSaysWhy)
{
    const std::string block = blockOf(2, {1, 2});
    const auto file = openBytes(block + std::string(block.size(), 'x') + block);
    EXPECT_EQ(file->frameCount(), 2u);
    EXPECT_EQ(shown(file->frame(0)), "UINT16 2x1: 1 2");
    EXPECT_THAT(failureOf(block + std::string(block.size(), 'x')),
                HasSubstr("EDF: frame 1 can't be found: there is no header at byte 516: /data"));
    EXPECT_THAT(failureOf(block + blockOf(2, {1, 2}, "Dim_1 = none ;")), HasSubstr("Dim_1"));
}

TEST(EdfDamage, EveryCutIsAFailure)
{
    const std::string first = blockOf(2, {1, 2});
    const std::string whole = first + blockOf(2, {3, 4});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string text = failureOf(whole.substr(0, size));
        // A piece of a header that is shorter than a frame is taken for padding at most while it
        // holds no key.
        if (size < first.size() || size > first.size() + 12) {
            ASSERT_NE(text, "no failure") << size;
        }
    }
}

TEST(EdfDamage, EveryChangedByteIsReadOrRefused)
{
    const std::string whole = headerOf("EDF_DataFormatVersion = 2.40 ;\n", 64) +
                              headerOf("Dim_1 = 2 ;\nDim_2 = 1;\nDim_3 = 2 ;\nSize = 8 ;\n", 64) +
                              "\1\2\3\4\5\6\7\10" + headerOf("Dim_1=1;Compression=none;", 64) +
                              "ab";
    ASSERT_EQ(failureOf(whole), "no failure");
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const char to : {'\0', ' ', ';', '=', '}', '{', '9', '\n', '\r', '-', '\xff'}) {
            std::string damaged = whole;
            damaged[at] = to;
            // More frames than a test can read are possible: look at the first ones.
            try {
                if (const auto file = openBytes(damaged))
                    for (std::size_t i = 0; i < std::min<std::size_t>(4, file->frameCount()); ++i)
                        file->frame(i);
            } catch (const MException&) {
            }
        }
}

}  // namespace
