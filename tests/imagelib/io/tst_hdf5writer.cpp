// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What MHdf5Writer writes, MImageSeries reads: every pixel, every header field, numbers from 1.
#include "imagelib/image/MException.h"
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace morvend::imglib {
namespace {

using tarvik::tests::TempFolder;

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

template <class T>
void expectField(const char* name, const boost::optional<T>& written,
                 const boost::optional<T>& read)
{
    if (!written)
        return;  // the reader may know more, such as the raw header
    ASSERT_TRUE(read) << name;
    if constexpr (std::is_same_v<T, MImage>)
        EXPECT_TRUE(samePixels(*written, *read)) << name;
    else if constexpr (std::is_same_v<T, float>)
        EXPECT_FLOAT_EQ(*read, *written) << name;
    else
        EXPECT_EQ(*read, *written) << name;
}

void expectHeader(const MImage& written, const MImage& read)
{
#define TARVIK_FIELD(T, name)                                                                      \
    expectField<T>(#name, written.optionalData().name(), read.optionalData().name());
    TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
}

class EveryFilter : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Bits, EveryFilter, testing::Values(-1, 0, 1, 2, 4, 7),
                         [](const auto& row) {
                             return row.param < 0 ? std::string("All")
                                                  : "Bits" + std::to_string(row.param);
                         });

TEST_P(EveryFilter, SeriesComesBack)
{
    const TempFolder folder;
    const std::string path = folder / "a_master.h5";
    const auto filter = static_cast<MCompression::FILTER>(GetParam());
    {
        MHdf5Writer writer(path, 0, frameOf(1).optionalData().nexusTree(), filter);
        for (unsigned i = 1; i <= 4; ++i)
            writer.write(frameOf(i));
        writer.flush();
    }
    const auto plain = frameOf(1).dataSize() * 4;
    const auto stored = std::filesystem::file_size(folder / "a_data_000001.h5");
    EXPECT_EQ(stored > plain, GetParam() == 0);
    MImageSeries series(0);
    EXPECT_EQ(series.open(path), 1);
    EXPECT_EQ(series.first(), 1);
    EXPECT_EQ(series.last(), 4);
    for (unsigned i = 1; i <= 4; ++i) {
        const MImage read = series.at(i);
        EXPECT_TRUE(samePixels(read, frameOf(i))) << i;
        expectHeader(frameOf(i), read);
    }
}

TEST(Hdf5Writer, SavesAnImageOfAnHdf5SeriesAsAFileOfItsOwn)
{
    const TempFolder folder;
    {
        MHdf5Writer writer(folder / "a_master.h5", 0, {}, MCompression::ALL);
        for (unsigned i = 1; i <= 3; ++i)
            writer.write(frameOf(i));
    }
    MImageSeries series(0);
    series.open(folder / "a_master.h5");
    const MImage second = series.at(2);
    {
        MHdf5Writer writer(folder / "b.h5", 1, second.optionalData().nexusTree(),
                           MCompression::ALL);
        writer.write(second);
        writer.flush();
    }
    MImageSeries saved(0);
    EXPECT_EQ(saved.open(folder / "b.h5"), 1);
    EXPECT_EQ(saved.last(), 1);
    EXPECT_TRUE(samePixels(saved.at(1), second));
    expectHeader(frameOf(2), saved.at(1));
}

}  // namespace
}  // namespace morvend::imglib
