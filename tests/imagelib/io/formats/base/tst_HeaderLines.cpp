// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header lines in all the spellings that files use.
#include "imagelib/io/formats/base/HeaderLines.h"
#include "imagelib/io/formats/base/HeaderWords.h"
#include "tests/imagelib/io/FileCases.h"

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace tarvik::tests {
namespace {

std::string parsed(std::string_view text)
{
    Header header;
    parseHeaderLines(text, header);
    return shown(header);
}

}  // namespace

TEST(HeaderLines, GiveTheirFields)
{
    for (const auto& row : rowsOf(R"(
# Exposure_time 0.0970000 s\r\n                    | count_time=0.097;
# Exposure_time: 0.097 s\r\n                       | count_time=0.097;
# Exposure_time : 0.097 s\r\n                      | count_time=0.097;
# Exposure_time = 0.097 s\n                        | count_time=0.097;
# Exposure_time=0.097\n                            | count_time=0.097;
Exposure_time 0.097 s                              | count_time=0.097;
#Exposure_time 0.097 s                             | count_time=0.097;
# exposure_Time 0.097                              | count_time=0.097;
# Exposure_time \\\r\n#  0.097 s\r\n# Flux 2\r\n   | count_time=0.097;beam_flux=2;
# Exposure_time 0.097 \\                           | count_time=0.097;
# Flux 3\n# Start_angle 1\r\n\r\n;\n# Angle_increment 2 \
    | rotation_angle=1;rotation_angle_step=2;beam_flux=3;
# Detector_distance 909.99mm                       | detector_distance=0.90999;
# Start_angle +12.5 deg.                           | rotation_angle=12.5;
# Angle_increment -1.5e-3 deg                      | rotation_angle_step=-0.0015;
# Wavelength (nil)\r\n# Flux (nil)                 |
# Wavelength\r\n# Beam_xy\r\n# Detector:\r\n#      |
# Wavelength 1.0x\n# Flux nan\n# Start_angle inf\n# Tau 1 s |
# Exposure_time 0,5 s                              |
# Flux 1e39\n# Start_angle 1e999                   |
# Flux 1\n# Flux 2                                 | beam_flux=1;
# Flux (nil)\n# Flux 2                             | beam_flux=2;
# Image_path: /data/Wavelength 1.5/                |
# Flux 2\0junk                                     | beam_flux=2;
# Pixel_size 172e-6 m x 172e-6 m                   | x_pixel_size=0.000172;y_pixel_size=0.000172;
# Pixel_size: 172 x 75 um                          | x_pixel_size=0.000172;y_pixel_size=7.5e-05;
# Pixel_size 75e-6 m                               | x_pixel_size=7.5e-05;y_pixel_size=7.5e-05;
# Pixel_size 75e-6 m x (nil)                       |
# Silicon sensor, thickness 0.000320 m             | sensor_thickness=0.00032;
# CdTe sensor, thickness 1 mm                      | sensor_thickness=0.001;
# Thickness of the sensor                          |
# Threshold_setting 6320 eV                        | threshold_energy=6320;
# Threshold_setting: 6.32 keV                      | threshold_energy=6320;
# Count_cutoff 1048500 counts                      | saturation_value=1048500;
# Count_cutoff 4294967295 counts                   |
# Beam_xy (1231.50, 1263.25) pixels                | beam_center_x=1231.5;beam_center_y=1263.25;
# Beam_xy (1231.50,1263.25) pixels                 | beam_center_x=1231.5;beam_center_y=1263.25;
# Beam_xy ( 12, 13) pixels                         | beam_center_x=12;beam_center_y=13;
# Beam_xy (1231,50, 1263,25) pixels                |
# Beam_xy (12.5, 13.5) mm                          |
# Beam_xy (12.5) pixels                            |
# Filter_transmission 100.0                        | filter_transmission=100;
# Transmission 0.3004                              | filter_transmission=0.3004;
# Flux 1.5e11 ph/s                                 | beam_flux=1.5e+11;
# Start_angle 90.0000 deg.                         | rotation_angle=90;
# Wavelength 0.1 nm                                | wavelength=1;
# Energy 12398.42 eV                               | wavelength=1;
# Energy: 12.39842 keV                             | wavelength=1;
# Energy 6000 eV\n# Wavelength 2 A                 | wavelength=2;
# Energy 0 eV                                      |
# Energy_range (0, 5000) eV                        |
# Detector: Large 6M, S/N 60-0001, Lab \
    | description=Large 6M;detector_number=60-0001, Lab;
# Detector Large 6M                                | description=Large 6M;
# Detector: (nil)                                  |
# 2014/Jan/10 12:34:56.7\r\n                       | data_collection_date=2014/Jan/10 12:34:56.7;
# 2014-01-10T12:34:56.7\r\n                        | data_collection_date=2014-01-10T12:34:56.7;
# 2010-Dec-14T21:43:23.655                         | data_collection_date=2010-Dec-14T21:43:23.655;
# 2007/Oct/22 15:32                                | data_collection_date=2007/Oct/22 15:32;
# 2007-10-22                                       | data_collection_date=2007-10-22;
# Date: Mon Jan 10 2014                            | data_collection_date=Mon Jan 10 2014;
# Image_path: /2014-01-10T12:34:56/a:b:c           |
# 2014 12:34:56\n# 2014/ab/10 1:2\n# 2014-01/10 1:2 |
)"))
        EXPECT_EQ(parsed(row.at(0)), row.at(1)) << row[0];
}

TEST(HeaderLines, OfManyPrograms)
{
    for (const auto& row : rowsOf(R"(
Exposure time: 500.000000ms                        | count_time=0.5;
Exposure time (ms) = 500                           | count_time=0.5;
Exposure time [s]: 250 ms                          | count_time=0.25;
# Exposure_time 5 fortnights                       |
Exposure time (fortnights): 5                      |
Integration time 5\nIntegration-time: 2 seconds    | count_time=2;
pixel X-size (um): 172\npixel Y-size (um): 75      | x_pixel_size=0.000172;y_pixel_size=7.5e-05;
Pixel size: 172 µm                          | x_pixel_size=0.000172;y_pixel_size=0.000172;
# Pixel_size 172 x 172                             |
# Pixel_size 172e-6 m x 172 furlongs               |
Distance_sample-detector: 909.99mm                 | detector_distance=0.90999;
Distance_sample-detector: 909.99                   |
# Detector_distance 909                            |
Distance (mm) 200\nDetector_distance 0.3 m         | detector_distance=0.3;
Photon energy = 7.0keV                             | wavelength=1.7712028;
Energy 12398.42\nthreshold energy = 6keV           | wavelength=1;threshold_energy=6000;
X-ray wavelength: 1.5 Å                     | wavelength=1.5;
wavelength 9.7e-11                                 | wavelength=0.97;
DATE (scan begin): 2014-01-10 12:34:56             | data_collection_date=2014-01-10 12:34:56;
Time: 0.5 s                                        |
Start time: 12:34:56                               | data_collection_date=12:34:56;
Date Mon Jan 10 12:34:56 2014                      | data_collection_date=Mon Jan 10 12:34:56 2014;
Detector Large 6M, S/N: 5                          | description=Large 6M;detector_number=5;
Date of birth: unknown\nDetector temperature: 23   |
Detector name: Large 6M SN: 60-0001                | description=Large 6M;detector_number=60-0001;
Serial number: 60-0114                             | detector_number=60-0114;
scan 5 # Pixel_size 172e-6 m x 172e-6 m            | x_pixel_size=0.000172;y_pixel_size=0.000172;
{"c": "# Exposure_time 2 s"}                       | count_time=2;
# Exposure_time 1 s # Flux 5 # Detector: A # Flux 6 | count_time=1;beam_flux=5;description=A # Flux 6;
note # Flux 4\n# Flux 5                            | beam_flux=5;
# Beam_xy (17.2, 34.4) mm\n# Pixel_size 172e-6 m x 172 um \
    | beam_center_x=100;beam_center_y=200;x_pixel_size=0.000172;y_pixel_size=0.000172;
Beam center x (mm): 17.2\nBeam center y: 7 px\npixel size x: 0.172 mm \
    | beam_center_x=100;beam_center_y=7;x_pixel_size=0.000172;
Beam center x: 17.2                                |
Filter transmission: 30 %                          | filter_transmission=0.3;
# Start_angle 1 rad                                | rotation_angle=57.29578;
# Flux 3e9 photons/sec\n# Count_cutoff 65535 ADU   | saturation_value=65535;beam_flux=3e+09;
)"))
        EXPECT_EQ(parsed(row.at(0)), row.at(1)) << row[0];
}

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

TEST(HeaderLines, WhatIsWrittenReadsBackExactly)
{
    using SetFloat = void (Header::*)(const float&);
    constexpr SetFloat Floats[] = {
        &Header::set_beam_center_x,       &Header::set_beam_center_y,
        &Header::set_wavelength,          &Header::set_x_pixel_size,
        &Header::set_detector_distance,   &Header::set_y_pixel_size,
        &Header::set_rotation_angle,      &Header::set_rotation_angle_step,
        &Header::set_count_time,          &Header::set_sensor_thickness,
        &Header::set_filter_transmission, &Header::set_frame_time,
        &Header::set_threshold_energy,    &Header::set_beam_flux};
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        Header header;
        for (const SetFloat set : Floats) {
            float value = std::numeric_limits<float>::infinity();
            while (!std::isfinite(value)) {
                const auto bits = static_cast<std::uint32_t>(random());
                std::memcpy(&value, &bits, sizeof value);
            }
            (header.*set)(value);
        }
        header.set_saturation_value(static_cast<int>(random()));
        header.set_data_collection_date("Fri Jan 10 12:34:56 2014");
        header.set_description("Large: 6M # (2)");
        header.set_detector_number("60-0001");
        ASSERT_EQ(parsed(headerLines(header)), shown(header));
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
    EXPECT_EQ(parsed(merged), shown(header));
    Header cleared;
    cleared.set_rawHeader(std::string(Original));
    EXPECT_EQ(mergedHeaderLines(cleared), "# Tau = 124.0e-09 s\r\n# Oscillation_axis X.CW\r\n");
}

TEST(MergedHeaderLines, KeepSpellingsOfOthersAsLongAsTheyHold)
{
    Header header;
    const std::string raw = "# Exposure time: 500ms\r\n# Beam center x (mm): 17.2\r\n"
                            "# Beam center y: 7 px\r\n# pixel size x: 0.172 mm\r\n"
                            "# note # Flux 3\r\n";
    parseHeaderLines(raw, header);
    header.set_rawHeader(raw);
    EXPECT_EQ(mergedHeaderLines(header), raw + "# Flux 3\r\n");
    header.set_count_time(0.25F);
    header.set_beam_center_y(8.0F);
    const std::string merged = mergedHeaderLines(header);
    EXPECT_EQ(merged, "# Exposure_time 0.25 s\r\n# pixel size x: 0.172 mm\r\n# note # Flux 3\r\n"
                      "# Beam_xy (100, 8) pixels\r\n# Flux 3\r\n");
    EXPECT_EQ(parsed(merged), shown(header));
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

}  // namespace tarvik::tests
