// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header lines in all the spellings that files use.
#include "imagelib/io/formats/base/HeaderLines.h"
#include "imagelib/io/formats/base/HeaderWords.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

namespace {

using namespace morvend::imglib;
using Header = MBasicImageOptionalData<>;

/// All set fields as "name=value;" in the order of the header.
std::string shown(const Header& header)
{
    std::ostringstream out;
    header.forEachField([&]<class T>(const char* name, const boost::optional<T>& value) {
        if constexpr (!std::is_same_v<T, MImage>) {
            if (value)
                out << name << '=' << *value << ';';
        }
    });
    return out.str();
}

std::string parsed(std::string_view text)
{
    Header header;
    parseHeaderLines(text, header);
    return shown(header);
}

struct LineCase {
    const char* name;
    std::string_view text;
    const char* fields;
};

class HeaderLine : public testing::TestWithParam<LineCase> {};

TEST_P(HeaderLine, GivesItsFields) { EXPECT_EQ(parsed(GetParam().text), GetParam().fields); }

const auto rowName = [](const auto& row) { return row.param.name; };

INSTANTIATE_TEST_SUITE_P(
    Syntax, HeaderLine,
    testing::Values(
        LineCase{"Blank", "# Exposure_time 0.0970000 s\r\n", "count_time=0.097;"},
        LineCase{"Colon", "# Exposure_time: 0.097 s\r\n", "count_time=0.097;"},
        LineCase{"ColonApart", "# Exposure_time : 0.097 s\r\n", "count_time=0.097;"},
        LineCase{"Equals", "# Exposure_time = 0.097 s\n", "count_time=0.097;"},
        LineCase{"EqualsGlued", "# Exposure_time=0.097\n", "count_time=0.097;"},
        LineCase{"NoHash", "Exposure_time 0.097 s", "count_time=0.097;"},
        LineCase{"HashGlued", "#Exposure_time 0.097 s", "count_time=0.097;"},
        LineCase{"OtherCase", "# exposure_Time 0.097", "count_time=0.097;"},
        LineCase{"Continued", "# Exposure_time \\\r\n#  0.097 s\r\n# Flux 2\r\n",
                 "count_time=0.097;beam_flux=2;"},
        LineCase{"ContinuedAtTheEnd", "# Exposure_time 0.097 \\", "count_time=0.097;"},
        LineCase{"MixedLineEnds", "# Flux 3\n# Start_angle 1\r\n\r\n;\n# Angle_increment 2",
                 "rotation_angle=1;rotation_angle_step=2;beam_flux=3;"},
        LineCase{"UnitGlued", "# Detector_distance 909.99mm", "detector_distance=0.90999;"},
        LineCase{"PlusSign", "# Start_angle +12.5 deg.", "rotation_angle=12.5;"},
        LineCase{"NegativeExponent", "# Angle_increment -1.5e-3 deg",
                 "rotation_angle_step=-0.0015;"},
        LineCase{"Nil", "# Wavelength (nil)\r\n# Flux (nil)", ""},
        LineCase{"KeyAlone", "# Wavelength\r\n# Beam_xy\r\n# Detector:\r\n#", ""},
        LineCase{"NoNumbers", "# Wavelength 1.0x\n# Flux nan\n# Start_angle inf\n# Tau 1 s", ""},
        LineCase{"DecimalCommaIsNoNumber", "# Exposure_time 0,5 s", ""},
        LineCase{"TooLargeForAFloat", "# Flux 1e39\n# Start_angle 1e999", ""},
        LineCase{"FirstOfTwoCounts", "# Flux 1\n# Flux 2", "beam_flux=1;"},
        LineCase{"FirstWithAValueCounts", "# Flux (nil)\n# Flux 2", "beam_flux=2;"},
        LineCase{"KeyInsideALine", "# Image_path: /data/Wavelength 1.5/", ""},
        LineCase{"Nul", std::string_view("# Flux 2\0junk", 13), "beam_flux=2;"}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Keys, HeaderLine,
    testing::Values(
        LineCase{"PixelSize", "# Pixel_size 172e-6 m x 172e-6 m",
                 "x_pixel_size=0.000172;y_pixel_size=0.000172;"},
        LineCase{"PixelSizeUnitAtTheEnd", "# Pixel_size: 172 x 75 um",
                 "x_pixel_size=0.000172;y_pixel_size=7.5e-05;"},
        LineCase{"PixelSizeSquare", "# Pixel_size 75e-6 m",
                 "x_pixel_size=7.5e-05;y_pixel_size=7.5e-05;"},
        LineCase{"PixelSizeHalfBroken", "# Pixel_size 75e-6 m x (nil)", ""},
        LineCase{"Silicon", "# Silicon sensor, thickness 0.000320 m", "sensor_thickness=0.00032;"},
        LineCase{"OtherMaterial", "# CdTe sensor, thickness 1 mm", "sensor_thickness=0.001;"},
        LineCase{"ThicknessAlone", "# Thickness of the sensor", ""},
        LineCase{"Threshold", "# Threshold_setting 6320 eV", "threshold_energy=6320;"},
        LineCase{"ThresholdColonKilo", "# Threshold_setting: 6.32 keV", "threshold_energy=6320;"},
        LineCase{"Cutoff", "# Count_cutoff 1048500 counts", "saturation_value=1048500;"},
        LineCase{"CutoffBeyondInt", "# Count_cutoff 4294967295 counts", ""},
        LineCase{"BeamBlankBetween", "# Beam_xy (1231.50, 1263.25) pixels",
                 "beam_center_x=1231.5;beam_center_y=1263.25;"},
        LineCase{"BeamNoBlank", "# Beam_xy (1231.50,1263.25) pixels",
                 "beam_center_x=1231.5;beam_center_y=1263.25;"},
        LineCase{"BeamBlankInside", "# Beam_xy ( 12, 13) pixels",
                 "beam_center_x=12;beam_center_y=13;"},
        LineCase{"BeamDecimalCommas", "# Beam_xy (1231,50, 1263,25) pixels", ""},
        LineCase{"BeamInMillimetres", "# Beam_xy (12.5, 13.5) mm", ""},
        LineCase{"BeamHalf", "# Beam_xy (12.5) pixels", ""},
        LineCase{"TransmissionPercent", "# Filter_transmission 100.0", "filter_transmission=100;"},
        LineCase{"TransmissionPlain", "# Transmission 0.3004", "filter_transmission=0.3004;"},
        LineCase{"FluxWithUnit", "# Flux 1.5e11 ph/s", "beam_flux=1.5e+11;"},
        LineCase{"AngleDotted", "# Start_angle 90.0000 deg.", "rotation_angle=90;"},
        LineCase{"WavelengthInNanometres", "# Wavelength 0.1 nm", "wavelength=1;"},
        LineCase{"EnergyIsTheFallback", "# Energy 12398.42 eV", "wavelength=1;"},
        LineCase{"EnergyInKilo", "# Energy: 12.39842 keV", "wavelength=1;"},
        LineCase{"WavelengthBeatsEnergy", "# Energy 6000 eV\n# Wavelength 2 A", "wavelength=2;"},
        LineCase{"EnergyZero", "# Energy 0 eV", ""},
        LineCase{"EnergyRange", "# Energy_range (0, 5000) eV", ""}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Texts, HeaderLine,
    testing::Values(
        LineCase{"Detector", "# Detector: Large 6M, S/N 60-0001, Lab",
                 "description=Large 6M;detector_number=60-0001, Lab;"},
        LineCase{"DetectorNoColonNoSerial", "# Detector Large 6M", "description=Large 6M;"},
        LineCase{"DetectorNil", "# Detector: (nil)", ""},
        LineCase{"DateSlashes", "# 2014/Jan/10 12:34:56.7\r\n",
                 "data_collection_date=2014/Jan/10 12:34:56.7;"},
        LineCase{"DateIso", "# 2014-01-10T12:34:56.7\r\n",
                 "data_collection_date=2014-01-10T12:34:56.7;"},
        LineCase{"DateMonthName", "# 2010-Dec-14T21:43:23.655",
                 "data_collection_date=2010-Dec-14T21:43:23.655;"},
        LineCase{"DateNoSeconds", "# 2007/Oct/22 15:32", "data_collection_date=2007/Oct/22 15:32;"},
        LineCase{"DateAlone", "# 2007-10-22", "data_collection_date=2007-10-22;"},
        LineCase{"DateKeyed", "# Date: Mon Jan 10 2014", "data_collection_date=Mon Jan 10 2014;"},
        LineCase{"PathIsNoDate", "# Image_path: /2014-01-10T12:34:56/a:b:c", ""},
        LineCase{"NumberIsNoDate", "# 2014 12:34:56\n# 2014/ab/10 1:2\n# 2014-01/10 1:2", ""}),
    rowName);

TEST(HeaderLines, OtherFieldsStay)
{
    Header header;
    header.set_wavelength(3.0F);
    header.set_description("before");
    parseHeaderLines("# Flux 5", header);
    EXPECT_EQ(shown(header), "wavelength=3;beam_flux=5;description=before;");
}

TEST(HeaderLines, LongContinuationsTakeLinearTime)
{
    std::string text = "# Flux ";
    for (int i = 0; i < 300'000; ++i)
        text += "\\\r\n";
    EXPECT_EQ(parsed(text + "5"), "beam_flux=5;");
}

TEST(HeaderLines, DoNotDependOnTheLocale)
{
    // Falls back to "C" where the German locale is not installed: then only half the test.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    Header header;
    header.set_wavelength(1.5F);
    EXPECT_EQ(headerLines(header), "# Wavelength 1.5 A\r\n");
    EXPECT_EQ(parsed("# Wavelength 1.25 A"), "wavelength=1.25;");
    std::setlocale(LC_ALL, "C");
}

/// A header with random values of any size in every field that has a line.
Header randomHeader(std::mt19937& random)
{
    const auto number = [&] {
        float value = 0;
        do {
            const std::uint32_t bits = static_cast<std::uint32_t>(random());
            std::memcpy(&value, &bits, sizeof value);
        } while (!std::isfinite(value));
        return value;
    };
    Header header;
    header.set_beam_center_x(number());
    header.set_beam_center_y(number());
    header.set_detector_distance(number());
    header.set_wavelength(number());
    header.set_x_pixel_size(number());
    header.set_y_pixel_size(number());
    header.set_rotation_angle(number());
    header.set_rotation_angle_step(number());
    header.set_filter_transmission(number());
    header.set_saturation_value(static_cast<int>(random()));
    header.set_sensor_thickness(number());
    header.set_threshold_energy(number());
    header.set_count_time(number());
    header.set_frame_time(number());
    header.set_beam_flux(number());
    header.set_data_collection_date("Fri Jan 10 12:34:56 2014");
    header.set_description("Large: 6M # (2)");
    header.set_detector_number("60-0001");
    return header;
}

template <class T>
void expectSame(const char* name, const boost::optional<T>& a, const boost::optional<T>& b)
{
    ASSERT_EQ(a.has_value(), b.has_value()) << name;
    if constexpr (!std::is_same_v<T, MImage>) {
        if (a) {
            EXPECT_EQ(*a, *b) << name;
        }
    }
}

void expectSameFields(const Header& a, const Header& b)
{
#define TARVIK_FIELD(T, name) expectSame(#name, a.name(), b.name());
    TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
}

TEST(HeaderLines, WhatIsWrittenReadsBackExactly)
{
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        const Header header = randomHeader(random);
        Header back;
        parseHeaderLines(headerLines(header), back);
        expectSameFields(header, back);
    }
}

TEST(HeaderLines, TextsCannotBreakTheirLine)
{
    Header header;
    header.set_description("Two\r\nlines\\");
    header.set_data_collection_date("\n");
    header.set_beam_flux(1.0F);
    header.set_wavelength(std::numeric_limits<float>::infinity());
    EXPECT_EQ(headerLines(header), "# Detector: Two  lines\r\n# Flux 1\r\n");
}

constexpr const char* Original = "# Detector: Large 6M, S/N 1\r\n"
                                 "# 2014/Jan/10 12:34:56\n"
                                 "# Silicon sensor, thickness 0.000320 m\r\n"
                                 "# Tau = 124.0e-09 s\r\n"
                                 "# Energy 6000 eV\r\n"
                                 "# Wavelength 1.0000 A\r\n"
                                 "Oscillation_axis X.CW\r\n"
                                 "# Wavelength 1.0000 A\r\n"
                                 "# Start_angle 5.00 deg.\r\n";

TEST(MergedHeaderLines, KeepWhatStillHolds)
{
    Header header;
    parseHeaderLines(Original, header);
    header.set_rawHeader(std::string(Original));
    header.set_rotation_angle(6.5F);
    header.set_beam_flux(7.0F);
    const std::string merged = mergedHeaderLines(header);
    EXPECT_EQ(merged, "# Detector: Large 6M, S/N 1\r\n"
                      "# 2014/Jan/10 12:34:56\r\n"
                      "# Silicon sensor, thickness 0.000320 m\r\n"
                      "# Tau = 124.0e-09 s\r\n"
                      "# Wavelength 1 A\r\n"
                      "# Oscillation_axis X.CW\r\n"
                      "# Start_angle 6.5 deg.\r\n"
                      "# Flux 7\r\n");
    Header back;
    parseHeaderLines(merged, back);
    header.set_rawHeader(boost::none);
    expectSameFields(header, back);
}

TEST(MergedHeaderLines, LeaveOutClearedFields)
{
    Header header;
    header.set_rawHeader(std::string(Original));
    EXPECT_EQ(mergedHeaderLines(header), "# Tau = 124.0e-09 s\r\n# Oscillation_axis X.CW\r\n");
}

TEST(MergedHeaderLines, AreWrittenAnewForOtherHeaders)
{
    Header header;
    header.set_beam_flux(7.0F);
    for (const char* raw : {"", "{\nHeaderID = EH:000001 ;\n}", "/entry/definition = NXmx\n",
                            "###CBF: VERSION 1.5\r\ndata_image\r\n"}) {
        header.set_rawHeader(std::string(raw));
        EXPECT_EQ(mergedHeaderLines(header), "# Flux 7\r\n") << raw;
    }
}

}  // namespace
