// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// h5py with the plug-ins reads every pixel, every header value and every link of what is written.
#include "imagelib/io/formats/hdf5/NexusReader.h"
#include "imagelib/io/formats/hdf5/NexusWriter.h"
#include "tests/imagelib/io/formats/hdf5/H5pyPeer.h"

namespace tarvik::tests {

using hdf5::Compression;
using nlohmann::json;

namespace {

template <class T>
MImage frameOf(int width, int height, unsigned seed)
{
    MImage image(width, height, T(0));
    auto* pixels = static_cast<T*>(image.data());
    for (std::size_t i = 0; i < image.size(); ++i)
        pixels[i] = static_cast<T>((i * 2654435761U + seed * 977) >> 11 & 0x7f);
    return image;
}

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    return names;
}

template <class T>
json sumOf(const MImage& image)
{
    return weightedSum(std::span(image.pixels<T>(), image.size()));
}

template <class T>
void expectPixels(Compression compression, const std::string& dtype)
{
    const TempFolder folder;
    const std::string path = folder / "a_master.h5";
    json sums;
    {
        NexusWriter writer(path, {}, {compression, 2});
        for (unsigned i = 0; i < 5; ++i) {
            const MImage frame = frameOf<T>(61, 47, i);
            sums.push_back(sumOf<T>(frame));
            writer.write(frame);
        }
    }
    const json file = readByH5py(path);
    json read;
    for (const char* block : {"data_000001", "data_000002", "data_000003"}) {
        const json& data = file.at(std::string("/entry/data/") + block);
        EXPECT_EQ(data["dtype"], dtype);
        for (const json& sum : data["sums"])
            read.push_back(sum);
    }
    EXPECT_EQ(read, sums);
}

}  // namespace

TEST(NexusWriterPixels, OfEveryTypeAndCompressionAreReadByH5py)
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

namespace {

Header fullHeader()
{
    Header header;
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
    return header;
}

}  // namespace

TEST(NexusWriterHeader, EveryFieldStandsAtItsPathWithItsUnit)
{
    const TempFolder folder;
    const std::string path = folder / "a_master.h5";
    {
        NexusWriter writer(path, {}, {});
        MImage frame = frameOf<unsigned int>(7, 5, 0);
        frame.setOptionalData(fullHeader());
        frame.optionalData().set_pixel_mask(frameOf<unsigned int>(7, 5, 3));
        writer.write(frame);
        frame.optionalData().set_rotation_angle(10.2F);
        writer.write(frame);
    }
    const json file = readByH5py(path);
    const std::string detector = "/entry/instrument/detector/";
    for (const auto& row : rowsOf(R"(
/entry/definition                             | "NXmx"                        | null
/entry/start_time                             | "2026-03-01T12:00:00.5"       | null
/entry/title                                  | "a lysozyme crystal"          | null
/entry/instrument/detector/beam_center_x      | 1.5                           | "pixel"
/entry/instrument/detector/beam_center_y      | 2.25                          | "pixel"
/entry/instrument/detector/detector_distance  | 0.15                          | "m"
/entry/instrument/detector/x_pixel_size       | 75e-6                         | "m"
/entry/instrument/detector/y_pixel_size       | 172e-6                        | "m"
/entry/instrument/detector/saturation_value   | 126634                        | null
/entry/instrument/detector/sensor_thickness   | 450e-6                        | "m"
/entry/instrument/detector/threshold_energy   | 6329.0                        | "eV"
/entry/instrument/detector/count_time         | 0.0999                        | "s"
/entry/instrument/detector/frame_time         | 0.1                           | "s"
/entry/instrument/detector/description        | "Demo detector"               | null
/entry/instrument/detector/detector_number    | "E-01-0102"                   | null
/entry/instrument/detector/bit_depth_image    | 32                            | null
/entry/instrument/beam/wavelength             | 0.9795                        | "angstrom"
/entry/instrument/beam/incident_wavelength    | 0.9795                        | "angstrom"
/entry/instrument/beam/total_flux             | 1e12                          | "Hz"
/entry/instrument/attenuator/attenuator_transmission | 0.25                   | null
/entry/sample/goniometer/omega                | [10.1, 10.2]                  | "deg"
/entry/sample/goniometer/omega_range_average  | 0.1                           | "deg"
/entry/sample/depends_on                      | "/entry/sample/goniometer/omega" | null
)")) {
        ASSERT_TRUE(file.contains(row.at(0))) << row[0];
        const json& node = file[row[0]];
        EXPECT_EQ(node["value"], json::parse(row.at(1))) << row[0];
        EXPECT_EQ(node["attributes"].value("units", json()), json::parse(row.at(2))) << row[0];
    }
    EXPECT_EQ(file[detector + "pixel_mask"]["sums"],
              json::array({sumOf<unsigned>(frameOf<unsigned>(7, 5, 3))}));
    EXPECT_EQ(file["/entry"]["attributes"]["NX_class"], "NXentry");
    EXPECT_EQ(file["/entry/instrument/detector"]["attributes"]["NX_class"], "NXdetector");
    EXPECT_EQ(file["/entry/data"]["attributes"]["signal"], "data_000001");
}

TEST(NexusWriterHeader, TreeIsWrittenAndTheImagesHeaderGoesBeforeIt)
{
    const TempFolder folder;
    nexus::MBasicNeXusTree tree;
    tree.setNumber("/entry/instrument/beam/wavelength", 3.0, "angstrom");
    tree.setNumber("/entry/instrument/detector/detectorSpecific/ntrigger", 4);
    tree.node("/entry/notes/list").value = std::vector<std::string>{"one", "two"};
    tree.node("/entry/notes/numbers").value = std::vector<std::int64_t>{1, -2};
    tree.node("/entry/data/data_000009").value = std::int64_t(5);         // image data: left out
    tree.node("/entry/notes/list/below").value = std::int64_t(5);         // can't exist: left out
    tree.node("/entry/sample/goniometer").value = std::string("a text");  // has to be a group
    MImage frame = frameOf<unsigned int>(7, 5, 0);
    frame.setOptionalData(fullHeader());
    const std::string path = folder / "a_master.h5";
    NexusWriter(path, tree, {}).write(frame);
    const json file = readByH5py(path);
    EXPECT_EQ(file["/entry/instrument/beam/wavelength"]["value"], 0.9795);
    EXPECT_EQ(file["/entry/instrument/detector/detectorSpecific/ntrigger"]["value"], 4);
    EXPECT_EQ(file["/entry/notes/list"]["value"], json({"one", "two"}));
    EXPECT_EQ(file["/entry/notes/numbers"]["value"], json({1, -2}));
    EXPECT_FALSE(file.contains("/entry/data/data_000009"));
    EXPECT_EQ(file["/entry/sample/goniometer/omega"]["value"], json({10.1}));
}

TEST(NexusWriterHeader, AnAttributeMayBeALongText)
{
    const TempFolder folder;
    const std::string path = folder / "a_master.h5";
    const std::string text(200'000, 'x');
    nexus::MBasicNeXusTree tree;
    tree.node("/entry/notes").value = std::int64_t(1);
    tree.node("/entry/notes").attributes["log"] = text;
    NexusWriter(path, tree, {Compression::None, 10}).write(frameOf<int>(4, 3, 1));
    EXPECT_EQ(readByH5py(path)["/entry/notes"]["attributes"]["log"], text);
    const auto header = openHdf5(ByteSource::open(path))->frame(0).optionalData();
    const nexus::Node* node = header.nexusTree().find("/entry/notes");
    ASSERT_TRUE(node);
    EXPECT_EQ(node->attributes.at("log"), nexus::Value(text));
}

TEST(NexusWriterFiles, AreNamedAfterTheMasterAndNumberTheirImages)
{
    for (const auto& row : rowsOf(R"(
x_master.h5      | x_data_000002.h5
x.y_master.hdf5  | x.y_data_000002.hdf5
plain.h5         | plain_data_000002.h5
bare             | bare_data_000002.h5
)")) {
        const TempFolder folder;
        {
            NexusWriter writer(folder / row.at(0), {}, {Compression::BitshuffleLz4, 2});
            for (unsigned i = 0; i < 3; ++i)
                writer.write(frameOf<unsigned short>(9, 8, i));
        }
        EXPECT_EQ(namesIn(folder.path()).size(), 3U);
        ASSERT_TRUE(std::filesystem::exists(folder / row.at(1))) << row.at(1);
        const json file = readByH5py(folder / row.at(1));
        EXPECT_EQ(file["/entry/data/data"]["attributes"]["image_nr_low"], 3);
        EXPECT_EQ(file["/entry/data/data"]["attributes"]["image_nr_high"], 3);
        EXPECT_EQ(file["/entry/data/data"]["shape"], json({1, 8, 9}));
    }
}

TEST(NexusWriterFiles, AppearWithTheFirstFlushAndGrowWithEachOne)
{
    const TempFolder folder;
    const std::string path = folder / "a_master.h5";
    NexusWriter writer(path, {}, {});
    EXPECT_FALSE(std::filesystem::exists(path));
    for (unsigned frames = 1; frames <= 3; ++frames) {
        MImage frame = frameOf<unsigned int>(30, 20, frames);
        frame.optionalData().set_rotation_angle(static_cast<float>(frames));
        writer.write(frame);
        writer.flush();
        const json file = readByH5py(path);
        EXPECT_EQ(file["/entry/data/data_000001"]["shape"], json({frames, 20, 30}));
        EXPECT_EQ(file["/entry/sample/goniometer/omega"]["value"].size(), frames);
    }
}

TEST(NexusWriterErrors, LeaveNothingWithoutAFrameAndNameTheFolderThatIsNotThere)
{
    const TempFolder folder;
    {
        NexusWriter writer(folder / "a_master.h5", {}, {});
        writer.flush();
        EXPECT_THROW(writer.write(MImage()), MBadParameterException);
    }
    EXPECT_THAT(namesIn(folder.path()), testing::IsEmpty());
    const std::string none = folder / "none/a_master.h5";
    EXPECT_THROW(NexusWriter(none, {}, {}), MNoFileAccessException);
    EXPECT_THAT(failureOf([&] { NexusWriter(none, {}, {}); }), HasSubstr(none));
}

TEST(NexusWriterErrors, ImageOfAnotherShapeIsRefusedAndTheSeriesGoesOn)
{
    const TempFolder folder;
    const std::string path = folder / "a_master.h5";
    {
        NexusWriter writer(path, {}, {});
        writer.write(frameOf<unsigned int>(9, 8, 0));
        EXPECT_THROW(writer.write(frameOf<unsigned int>(8, 9, 0)), MBadParameterException);
        EXPECT_THROW(writer.write(frameOf<unsigned short>(9, 8, 0)), MBadParameterException);
        writer.write(frameOf<unsigned int>(9, 8, 1));
    }
    EXPECT_EQ(readByH5py(path)["/entry/data/data_000001"]["shape"], json({2, 8, 9}));
}

TEST(NexusWriterErrors, PixelsWithoutGeometryTakeItFromTheTreeOrAreRefused)
{
    const TempFolder folder;
    const MImage frame = frameOf<unsigned int>(9, 8, 0);
    EXPECT_THROW(NexusWriter(folder / "a_master.h5", {}, {}).write(frame.imageData()),
                 MBadParameterException);
    nexus::MBasicNeXusTree tree;
    const std::string specific = "/entry/instrument/detector/detectorSpecific/";
    tree.setNumber(specific + "x_pixels_in_detector", 9);
    tree.setNumber(specific + "y_pixels_in_detector", 8);
    const std::string path = folder / "b_master.h5";
    {
        NexusWriter writer(path, tree, {});
        writer.write(frame.imageData());
        EXPECT_THROW(writer.write(frameOf<unsigned int>(9, 7, 0).imageData()),
                     MBadParameterException);
        writer.write(frame.imageData());
    }
    EXPECT_EQ(readByH5py(path)["/entry/data/data_000001"]["shape"], json({2, 8, 9}));
}

}  // namespace tarvik::tests
