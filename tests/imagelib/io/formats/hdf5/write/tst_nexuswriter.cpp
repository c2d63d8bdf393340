// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// h5py with the plug-ins reads every pixel, every header value and every link of what is written.
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"
#include "imagelib/io/formats/hdf5/write/NexusWriter.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/SourcePath.h"

#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace tarvik::tests {

using hdf5::Compression;
using nlohmann::json;

namespace {

/// What h5py finds, in one process for all tests: data sets with values, attributes and check sums,
/// by path, links followed; or "error".
json readByH5py(const std::string& path)
{
    static const TempFolder folder;
    static FILE* const peer = [] {
        const std::string answer = folder / "answer";
        const std::string command =
            TARVIK_PYTHON " " + sourcePath("/tests/imagelib/io/formats/hdf5/write/dump_nexus.py ") +
            answer;
        return ::mkfifo(answer.c_str(), 0600) == 0 ? ::popen(command.c_str(), "w") : nullptr;
    }();
    std::fputs((path + '\n').c_str(), peer);
    std::fflush(peer);
    return json::parse(contentOf(folder / "answer"));
}

template <class T>
MImage frameOf(int width, int height, unsigned seed)
{
    MImage image(width, height, T(0));
    auto* pixels = static_cast<T*>(image.data());
    for (std::size_t i = 0; i < image.size(); ++i)
        pixels[i] = static_cast<T>((i * 2654435761U + seed * 977) >> 11 & 0x7f);
    return image;
}

/// Sum over i of (i mod 1000 + 1) * pixel, as the script computes it for each image.
template <class T>
json sumOf(const MImage& image)
{
    double sum = 0;
    for (std::size_t i = 0; i < image.size(); ++i)
        sum += static_cast<double>(i % 1000 + 1) * static_cast<double>(image.pixels<T>()[i]);
    return sum;
}

class NexusFile : public testing::Test {
protected:
    json written() const { return readByH5py(path); }
    Header readBack() const { return openHdf5(ByteSource::open(path))->frame(0).optionalData(); }
    std::ptrdiff_t files() const
    {
        return std::distance(std::filesystem::directory_iterator(folder.path()), {});
    }
    template <class T>
    void expectPixels(Compression compression, const std::string& dtype) const
    {
        NexusWriter writer(path, {}, {compression, 2});
        json sums, read = json::array();
        for (unsigned i = 0; i < 5; ++i) {
            const MImage frame = frameOf<T>(61, 47, i);
            sums.push_back(sumOf<T>(frame));
            writer.write(frame);
        }
        writer.flush();
        const json file = written();
        for (const char* block : {"data_000001", "data_000002", "data_000003"}) {
            const json& data = file.at(std::string("/entry/data/") + block);
            EXPECT_EQ(data["dtype"], dtype);
            read.insert(read.end(), data["sums"].begin(), data["sums"].end());
        }
        EXPECT_EQ(read, sums);
    }

    const TempFolder folder;
    const std::string path = folder / "a_master.h5";
};

MImage maskOf(int width, int height)
{
    MImage mask(width, height, 0u);
    static_cast<unsigned*>(mask.data())[9] = 1;
    static_cast<unsigned*>(mask.data())[10] = 16;
    return mask;
}

MImage frameWithHeader()
{
    MImage image = frameOf<unsigned>(7, 5, 0);
    Header& header = image.optionalData();
    header.set_beam_center_x(1.5F);
    header.set_beam_center_y(2.25F);
    header.set_detector_distance(0.15F);
    header.set_wavelength(0.9795F);
    header.set_x_pixel_size(75e-6F);
    header.set_y_pixel_size(172e-6F);
    header.set_rotation_angle(10.1F);
    header.set_rotation_angle_step(0.1F);
    header.set_filter_transmission(0.25F);
    header.set_saturation_value(126634);
    header.set_sensor_thickness(450e-6F);
    header.set_threshold_energy(6329.0F);
    header.set_count_time(0.0999F);
    header.set_frame_time(0.1F);
    header.set_beam_flux(1e12F);
    header.set_data_collection_date(std::string("2026-03-01T12:00:00.5"));
    header.set_description(std::string("Demo detector"));
    header.set_detector_number(std::string("E-01-0102"));
    header.setImageDescription("a lysozyme crystal");
    header.set_pixel_mask(maskOf(7, 5));
    return image;
}

}  // namespace

TEST_F(NexusFile, HasPixelsOfEveryTypeAndCompression)
{
    expectPixels<unsigned char>(Compression::BitshuffleLz4, "uint8");
    expectPixels<char>(Compression::BitshuffleLz4, "int8");
    expectPixels<unsigned short>(Compression::BitshuffleLz4, "uint16");
    expectPixels<short>(Compression::BitshuffleLz4, "int16");
    expectPixels<unsigned int>(Compression::BitshuffleLz4, "uint32");
    expectPixels<int>(Compression::BitshuffleLz4, "int32");
    expectPixels<unsigned long long>(Compression::BitshuffleLz4, "uint64");
    expectPixels<float>(Compression::BitshuffleLz4, "float32");
    expectPixels<double>(Compression::BitshuffleLz4, "float64");
    for (const auto compression : {Compression::None, Compression::Deflate, Compression::Lz4})
        expectPixels<unsigned int>(compression, "uint32");
}

TEST_F(NexusFile, HasEveryFieldAtItsPathWithItsUnit)
{
    MImage frame = frameWithHeader();
    {
        NexusWriter writer(path, {}, {});
        writer.write(frame);
        frame.optionalData().set_rotation_angle(10.2F);
        writer.write(frame);
    }
    const json file = written();
    for (const auto& row : rowsOf(R"(
definition                               | "NXmx"                           | null
start_time                               | "2026-03-01T12:00:00.5"          | null
title                                    | "a lysozyme crystal"             | null
instrument/detector/beam_center_x        | 1.5                              | "pixel"
instrument/detector/beam_center_y        | 2.25                             | "pixel"
instrument/detector/detector_distance    | 0.15                             | "m"
instrument/detector/x_pixel_size         | 75e-6                            | "m"
instrument/detector/y_pixel_size         | 172e-6                           | "m"
instrument/detector/saturation_value     | 126634                           | null
instrument/detector/sensor_thickness     | 450e-6                           | "m"
instrument/detector/threshold_energy     | 6329.0                           | "eV"
instrument/detector/count_time           | 0.0999                           | "s"
instrument/detector/frame_time           | 0.1                              | "s"
instrument/detector/description          | "Demo detector"                  | null
instrument/detector/detector_number      | "E-01-0102"                      | null
instrument/detector/bit_depth_image      | 32                               | null
instrument/beam/wavelength               | 0.9795                           | "angstrom"
instrument/beam/incident_wavelength      | 0.9795                           | "angstrom"
instrument/beam/total_flux               | 1e12                             | "Hz"
instrument/attenuator/attenuator_transmission | 0.25                        | null
sample/goniometer/omega                  | [10.1, 10.2]                     | "deg"
sample/goniometer/omega_range_average    | 0.1                              | "deg"
sample/depends_on                        | "/entry/sample/goniometer/omega" | null
)")) {
        ASSERT_TRUE(file.contains("/entry/" + row.at(0))) << row[0];
        const json& node = file["/entry/" + row[0]];
        EXPECT_EQ(node["value"], json::parse(row.at(1))) << row[0];
        EXPECT_EQ(node["attributes"].value("units", json()), json::parse(row.at(2))) << row[0];
    }
    EXPECT_EQ(file["/entry/instrument/detector/pixel_mask"]["sums"],
              json::array({sumOf<unsigned>(maskOf(7, 5))}));
    EXPECT_EQ(file["/entry"]["attributes"]["NX_class"], "NXentry");
    EXPECT_EQ(file["/entry/instrument/detector"]["attributes"]["NX_class"], "NXdetector");
    EXPECT_EQ(file["/entry/data"]["attributes"]["signal"], "data_000001");
    // The same comes back here, but for the title, which is the series' to give.
    Header expected = frameWithHeader().optionalData();
    expected.set_imageDescription(boost::none);
    EXPECT_EQ(shown(readBack()), shown(expected));
    EXPECT_TRUE(samePixels(readBack().pixel_mask().value(), maskOf(7, 5)));
}

TEST_F(NexusFile, HasTheTreeBehindTheImagesHeader)
{
    const std::string text(200'000, 'x');
    nexus::MBasicNeXusTree tree;
    tree.setNumber("/entry/instrument/beam/wavelength", 3.0, "angstrom");
    tree.setNumber("/entry/instrument/detector/detectorSpecific/ntrigger", 4);
    tree.node("/entry/notes/list").value = std::vector<std::string>{"one", "two"};
    tree.node("/entry/notes/numbers").value = std::vector<std::int64_t>{1, -2};
    tree.node("/entry/notes/numbers").attributes["log"] = text;
    tree.node("/entry/data/data_000009").value = std::int64_t(5);         // image data: left out
    tree.node("/entry/notes/list/below").value = std::int64_t(5);         // can't exist: left out
    tree.node("/entry/sample/goniometer").value = std::string("a text");  // has to be a group
    NexusWriter(path, tree, {}).write(frameWithHeader());
    const json file = written();
    EXPECT_EQ(file["/entry/instrument/beam/wavelength"]["value"], 0.9795);
    EXPECT_EQ(file["/entry/instrument/detector/detectorSpecific/ntrigger"]["value"], 4);
    EXPECT_EQ(file["/entry/notes/list"]["value"], json({"one", "two"}));
    EXPECT_EQ(file["/entry/notes/numbers"]["value"], json({1, -2}));
    EXPECT_EQ(file["/entry/notes/numbers"]["attributes"]["log"], text);
    EXPECT_FALSE(file.contains("/entry/data/data_000009"));
    EXPECT_EQ(file["/entry/sample/goniometer/omega"]["value"], json({10.1}));
    const Header header = readBack();
    const nexus::Node* node = header.nexusTree().find("/entry/notes/numbers");
    ASSERT_TRUE(node);
    EXPECT_EQ(node->attributes.at("log"), nexus::Value(text));
}

TEST_F(NexusFile, IsNamedAfterTheMasterAndNumbersItsImages)
{
    int names = 0;
    for (const auto& row : rowsOf(R"(
x_master.h5      | x_data_000002.h5
x.y_master.hdf5  | x.y_data_000002.hdf5
plain.h5         | plain_data_000002.h5
bare             | bare_data_000002.h5
)")) {
        {
            NexusWriter writer(folder / row.at(0), {}, {Compression::BitshuffleLz4, 2});
            for (unsigned i = 0; i < 3; ++i)
                writer.write(frameOf<unsigned short>(9, 8, i));
        }
        EXPECT_EQ(files(), 3 * ++names);
        const json data = readByH5py(folder / row.at(1))["/entry/data/data"];
        EXPECT_EQ(data["attributes"]["image_nr_low"], 3);
        EXPECT_EQ(data["attributes"]["image_nr_high"], 3);
        EXPECT_EQ(data["shape"], json({1, 8, 9}));
    }
}

TEST_F(NexusFile, AppearsWithTheFirstFlushAndGrowsWithEachOne)
{
    {
        NexusWriter none(path, {}, {});
        none.flush();
        EXPECT_THROW(none.write(MImage()), MBadParameterException);
    }
    EXPECT_EQ(files(), 0);
    NexusWriter writer(path, {}, {});
    EXPECT_FALSE(std::filesystem::exists(path));
    for (unsigned frames = 1; frames <= 3; ++frames) {
        MImage frame = frameOf<unsigned int>(30, 20, frames);
        frame.optionalData().set_rotation_angle(static_cast<float>(frames));
        writer.write(frame);
        writer.flush();
        const json file = written();
        EXPECT_EQ(file["/entry/data/data_000001"]["shape"], json({frames, 20, 30}));
        EXPECT_EQ(file["/entry/sample/goniometer/omega"]["value"].size(), frames);
    }
    const std::string none = folder / "none/a_master.h5";
    EXPECT_THROW(NexusWriter(none, {}, {}), MNoFileAccessException);
    EXPECT_THAT(failureOf([&] { NexusWriter(none, {}, {}); }), HasSubstr(none));
}

TEST_F(NexusFile, RefusesImagesThatDoNotFitAndGoesOn)
{
    const MImage frame = frameOf<unsigned int>(9, 8, 0);
    EXPECT_THROW(NexusWriter(path, {}, {}).write(frame.imageData()), MBadParameterException);
    nexus::MBasicNeXusTree geometry;
    const std::string specific = "/entry/instrument/detector/detectorSpecific/";
    geometry.setNumber(specific + "x_pixels_in_detector", 9);
    geometry.setNumber(specific + "y_pixels_in_detector", 8);
    NexusWriter writer(path, geometry, {});
    writer.write(frame.imageData());
    EXPECT_THROW(writer.write(frameOf<unsigned int>(9, 7, 0).imageData()), MBadParameterException);
    EXPECT_THROW(writer.write(frameOf<unsigned int>(8, 9, 0)), MBadParameterException);
    EXPECT_THROW(writer.write(frameOf<unsigned short>(9, 8, 0)), MBadParameterException);
    writer.write(frame);
    writer.flush();
    EXPECT_EQ(written()["/entry/data/data_000001"]["shape"], json({2, 8, 9}));
}

}  // namespace tarvik::tests
