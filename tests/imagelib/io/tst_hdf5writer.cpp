// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What MHdf5Writer writes, MImageSeries reads: every pixel, every header field, numbers from 1.
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "tests/imagelib/io/FileCases.h"

namespace tarvik::tests {
namespace {

MImage frameOf(unsigned seed)
{
    MImage image(301, 203, 0U);
    auto* const pixels = static_cast<unsigned*>(image.data());
    for (std::size_t i = 0; i < image.size(); ++i)
        pixels[i] = i % 97 == 0 ? 0xffffffffU : static_cast<unsigned>(i * 40503U + seed) >> 7 & 15U;
    auto& header = image.optionalData();
    header.set_beam_center_x(150.25F);
    header.set_beam_center_y(99.5F);
    header.set_detector_distance(0.123F);
    header.set_wavelength(0.9795F);
    header.set_x_pixel_size(75e-6F);
    header.set_y_pixel_size(172e-6F);
    header.set_rotation_angle(12.0F + 0.1F * static_cast<float>(seed));
    header.set_rotation_angle_step(0.1F);
    header.set_filter_transmission(0.31F);
    header.set_saturation_value(126634);
    header.set_sensor_thickness(320e-6F);
    header.set_threshold_energy(6329.0F);
    header.set_count_time(0.0997F);
    header.set_frame_time(0.1F);
    header.set_beam_flux(3.5e11F);
    header.set_data_collection_date(std::string("2026-03-01T12:00:00.5"));
    header.set_description(std::string("Demo detector"));
    header.set_detector_number(std::string("E-01-0102"));
    MImage mask(image, 0U);
    static_cast<unsigned*>(mask.data())[97] = 1;
    static_cast<unsigned*>(mask.data())[98] = 16;
    header.set_pixel_mask(mask);
    return image;
}

void expectFrame(const MImage& read, unsigned seed)
{
    const MImage written = frameOf(seed);
    EXPECT_TRUE(samePixels(read, written)) << seed;
    Header header = read.optionalData();
    header.set_imageDescription(boost::none);  // the series names its images
    EXPECT_EQ(shown(header), shown(written.optionalData()));
    ASSERT_TRUE(read.optionalData().pixel_mask());
    EXPECT_TRUE(
        samePixels(*read.optionalData().pixel_mask(), *written.optionalData().pixel_mask()));
}

}  // namespace

TEST(Hdf5Writer, SeriesComeBackFromEveryFilter)
{
    for (const int bits : {-1, 0, 1, 2, 4, 7}) {
        SCOPED_TRACE(bits);
        const TempFolder folder;
        const std::string path = folder / "a_master.h5";
        {
            MHdf5Writer writer(path, 0, frameOf(1).optionalData().nexusTree(),
                               static_cast<MCompression::FILTER>(bits));
            for (unsigned i = 1; i <= 4; ++i)
                writer.write(frameOf(i));
            writer.flush();
        }
        const auto stored = std::filesystem::file_size(folder / "a_data_000001.h5");
        EXPECT_EQ(stored > frameOf(1).dataSize() * 4, bits == 0);
        MImageSeries series(0);
        EXPECT_EQ(series.open(path), 1);
        EXPECT_EQ(series.first(), 1);
        EXPECT_EQ(series.last(), 4);
        for (unsigned i = 1; i <= 4; ++i)
            expectFrame(series.at(i), i);
        // One image of it as a file of its own.
        const MImage second = series.at(2);
        MHdf5Writer(folder / "b.h5", 1, second.optionalData().nexusTree(), MCompression::ALL)
            .write(second);
        MImageSeries saved(0);
        EXPECT_EQ(saved.open(folder / "b.h5"), 1);
        EXPECT_EQ(saved.last(), 1);
        expectFrame(saved.at(1), 2);
    }
}

}  // namespace tarvik::tests
