// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image header and the mask of NeXus files: from files, and from trees in many dialects.
#include "imagelib/io/formats/hdf5/NexusHeader.h"
#include "tests/imagelib/io/formats/hdf5/Samples.h"

#include <gmock/gmock.h>

namespace tarvik::tests {

using namespace morvend::imglib;
using hdf5::NexusHeader;
using morvend::nexus::MBasicNeXusTree;
using morvend::nexus::Node;
using testing::HasSubstr;

namespace {

const std::string Detector = "/entry/instrument/detector/";
const std::string Beam = "/entry/instrument/beam/";

using Field = boost::optional<float> (*)(const MBasicImageOptionalData<>&);
#define FIELD(name) [](const MBasicImageOptionalData<>& header) { return header.name(); }

struct Entry {
    std::string path;
    double value;
    std::string units;
};

struct FieldCase {
    const char* situation;
    Field field;
    std::vector<Entry> entries;
    boost::optional<float> expected;
};

const FieldCase FieldCases[] = {
    {"wavelength of the beam comes first",
     FIELD(wavelength),
     {{Beam + "wavelength", 1.0, "angstrom"},
      {"/entry/instrument/monochromator/wavelength", 2.0, "angstrom"}},
     1.0f},
    {"then that of the monochromator",
     FIELD(wavelength),
     {{"/entry/instrument/monochromator/wavelength", 0.2, "nm"},
      {Beam + "incident_wavelength", 3.0, "angstrom"}},
     2.0f},
    {"then the incident one", FIELD(wavelength), {{Beam + "incident_wavelength", 3.0, ""}}, 3.0f},
    {"then that of the sample's beam",
     FIELD(wavelength),
     {{"/entry/sample/beam/incident_wavelength", 1e-10, "m"}},
     1.0f},
    {"an energy will do", FIELD(wavelength), {{Beam + "incident_energy", 12.39842, "keV"}}, 1.0f},
    {"a wavelength of zero is none when there is a better one",
     FIELD(wavelength),
     {{Beam + "wavelength", 0, ""}, {Beam + "incident_wavelength", 1.5, "angstroms"}},
     1.5f},
    {"distance in millimetres",
     FIELD(detector_distance),
     {{Detector + "detector_distance", 150, "mm"}},
     0.15f},
    {"distance without unit is in metres",
     FIELD(detector_distance),
     {{Detector + "distance", 0.2, ""}},
     0.2f},
    {"centre in pixels",
     FIELD(beam_center_x),
     {{Detector + "beam_center_x", 10.5, "pixels"}},
     10.5f},
    {"centre as a length",
     FIELD(beam_center_x),
     {{Detector + "beam_center_x", 15, "mm"}, {Detector + "x_pixel_size", 75, "um"}},
     200.f},
    {"centre as a length without pixel size stays",
     FIELD(beam_center_y),
     {{Detector + "beam_center_y", 15, "mm"}},
     15.f},
    {"pixel size in micrometres",
     FIELD(x_pixel_size),
     {{Detector + "x_pixel_size", 55, "micron"}},
     55e-6f},
    {"pixel size that can only be micrometres",
     FIELD(y_pixel_size),
     {{Detector + "y_pixel_size", 55, ""}},
     55e-6f},
    {"pixel size that can only be millimetres",
     FIELD(y_pixel_size),
     {{Detector + "y_pixel_size", 0.172, ""}},
     172e-6f},
    {"pixel size from the module",
     FIELD(x_pixel_size),
     {{Detector + "module/fast_pixel_direction", 0.075, "mm"}},
     75e-6f},
    {"a thickness of 0.45 called metres is shown as it is",
     FIELD(sensor_thickness),
     {{Detector + "sensor_thickness", 0.45, "m"}},
     0.45f},
    {"threshold in keV",
     FIELD(threshold_energy),
     {{Detector + "threshold_energy", 6, "keV"}},
     6000.f},
    {"times in milliseconds",
     FIELD(count_time),
     {{Detector + "count_time", 5, "millisecond"}},
     0.005f},
    {"unknown units are taken for the usual ones",
     FIELD(frame_time),
     {{Detector + "frame_time", 0.5, "fortnights"}},
     0.5f},
    {"flux", FIELD(beam_flux), {{Beam + "incident_beam_flux", 1e12, ""}}, 1e12f},
    {"transmission as it stands",
     FIELD(filter_transmission),
     {{"/entry/instrument/attenuator/attenuator_transmission", 30.04, ""}},
     30.04f},
    {"omega of the goniometer",
     FIELD(rotation_angle),
     {{"/entry/sample/goniometer/omega", 0.5, "rad"}},
     28.6478898f},
    {"nothing", FIELD(wavelength), {}, boost::none},
};

MBasicImageOptionalData<> headerOf(const MBasicNeXusTree& tree, std::size_t frame = 0)
{
    return NexusHeader(tree, "/entry").of(frame);
}

Node& put(MBasicNeXusTree& tree, const std::string& path, std::vector<double> values,
          const std::string& units = "degrees")
{
    Node& node = tree.node(path);
    node.value = std::move(values);
    node.attributes["units"] = units;
    return node;
}

/// A chain phi <- chi <- omega, of which omega turns.
MBasicNeXusTree chainTree()
{
    MBasicNeXusTree tree;
    tree.setText("/entry/sample/depends_on", "/entry/sample/transformations/phi");
    const std::string axes = "/entry/sample/transformations/";
    put(tree, axes + "phi", {5, 5, 5}).attributes["depends_on"] = std::string("chi");
    put(tree, axes + "chi", {0}).attributes["depends_on"] = axes + "omega";
    put(tree, axes + "omega", {10, 11, 12}).attributes["depends_on"] = std::string(".");
    for (const char* axis : {"phi", "chi", "omega"})
        tree.node(axes + axis).attributes["transformation_type"] = std::string("rotation");
    return tree;
}

}  // namespace

TEST(NexusHeaderFields, AreFoundInTheirDialects)
{
    for (const FieldCase& each : FieldCases) {
        MBasicNeXusTree tree;
        for (const Entry& entry : each.entries)
            tree.setNumber(entry.path, entry.value, entry.units);
        const auto value = each.field(headerOf(tree));
        ASSERT_EQ(bool(value), bool(each.expected)) << each.situation;
        if (value) {
            EXPECT_FLOAT_EQ(*value, *each.expected) << each.situation;
        }
    }
}

TEST(NexusHeaderFields, SaturationFallsBackThroughTheDetectorsOwnValues)
{
    MBasicNeXusTree tree;
    tree.setNumber(
        Detector + "detectorSpecific/detectorModule_000/countrate_correction_count_cutoff", 1000);
    EXPECT_EQ(*headerOf(tree).saturation_value(), 1000);
    tree.setNumber(Detector + "detectorSpecific/countrate_correction_count_cutoff", 2000);
    EXPECT_EQ(*headerOf(tree).saturation_value(), 2000);
    tree.setNumber(Detector + "saturation_value", 4294967295.0);
    EXPECT_EQ(*headerOf(tree).saturation_value(), 2147483647);
}

TEST(NexusHeaderFields, ASpectrumGivesItsWeightedMean)
{
    MBasicNeXusTree tree;
    put(tree, Beam + "incident_wavelength", {1, 2, 3}, "angstrom");
    EXPECT_FLOAT_EQ(*headerOf(tree, 2).wavelength(), 3);
    put(tree, Beam + "incident_wavelength_weights", {0, 1, 3}, "");
    EXPECT_FLOAT_EQ(*headerOf(tree, 2).wavelength(), 2.75f);
}

TEST(NexusHeaderFields, OtherDetectorsAndEntriesAreFound)
{
    MBasicNeXusTree tree;
    tree.node("/entry_1/instrument_1").attributes["NX_class"] = std::string("NXinstrument");
    tree.node("/entry_1/instrument_1/eye").attributes["NX_class"] = std::string("NXdetector");
    tree.node("/entry_1/instrument_1/eye/detector_information");
    tree.setNumber("/entry_1/instrument_1/eye/detector_information/detector_distance", 0.7, "m");
    tree.setNumber("/entry_1/instrument_1/eye/acquisition/exposure_time", 0.25, "s");
    const MBasicImageOptionalData<> header = NexusHeader(tree, "/entry_1").of(0);
    EXPECT_FLOAT_EQ(*header.detector_distance(), 0.7f);
    EXPECT_FLOAT_EQ(*header.count_time(), 0.25f);
}

TEST(NexusHeaderFields, DistanceComesFromTheChainOfTheDetector)
{
    MBasicNeXusTree tree;
    tree.setText(Detector + "depends_on", "transformations/det_y");
    Node& lift = put(tree, Detector + "transformations/det_y", {30}, "mm");
    lift.attributes["vector"] = std::vector<double>{0, 1, 0};
    lift.attributes["transformation_type"] = std::string("translation");
    lift.attributes["depends_on"] = std::string("det_z");
    Node& along = put(tree, Detector + "transformations/det_z", {250}, "mm");
    along.attributes["vector"] = std::vector<double>{0, 0, -1};
    along.attributes["offset"] = std::vector<double>{1, 2, -5};
    along.attributes["transformation_type"] = std::string("translation");
    along.attributes["depends_on"] = std::string(".");
    EXPECT_FLOAT_EQ(*headerOf(tree).detector_distance(), 0.255f);
    // A chain that goes in a circle ends too.
    along.attributes["depends_on"] = std::string("det_y");
    EXPECT_TRUE(headerOf(tree).detector_distance());
}

TEST(NexusHeaderRotation, TheFirstAxisOfTheChainWhoseValuesDifferTurns)
{
    MBasicNeXusTree tree = chainTree();
    EXPECT_FLOAT_EQ(*headerOf(tree, 2).rotation_angle(), 12);
    EXPECT_FLOAT_EQ(*headerOf(tree, 2).rotation_angle_step(), 1);
    // Images may cover less than the way to the next one.
    put(tree, "/entry/sample/transformations/omega_increment_set", {0.25});
    EXPECT_FLOAT_EQ(*headerOf(tree, 1).rotation_angle_step(), 0.25);
    put(tree, "/entry/sample/transformations/omega_end", {10.5, 11.5, 12.75});
    EXPECT_FLOAT_EQ(*headerOf(tree, 2).rotation_angle_step(), 0.75);
}

TEST(NexusHeaderRotation, AChainThatGoesInACircleEnds)
{
    MBasicNeXusTree tree = chainTree();
    tree.node("/entry/sample/transformations/omega").attributes["depends_on"] = std::string("phi");
    EXPECT_FLOAT_EQ(*headerOf(tree, 1).rotation_angle(), 11);
}

TEST(NexusHeaderRotation, TheGoniometerHasOneAngleForEachImage)
{
    MBasicNeXusTree tree;
    put(tree, "/entry/sample/goniometer/omega", {90, 90, 90});
    put(tree, "/entry/sample/goniometer/omega_range_average", {0});
    EXPECT_FLOAT_EQ(*headerOf(tree, 1).rotation_angle(), 90);
    put(tree, "/entry/sample/goniometer/phi", {1, 2, 3});
    put(tree, "/entry/sample/goniometer/phi_range_average", {1});
    EXPECT_FLOAT_EQ(*headerOf(tree, 2).rotation_angle(), 3);
    EXPECT_FLOAT_EQ(*headerOf(tree, 2).rotation_angle_step(), 1);
}

TEST(NexusHeaderTree, CarriesTheNumberOfImagesAndTheFilesOwnWavelength)
{
    MBasicNeXusTree tree;
    tree.setNumber(Beam + "incident_wavelength", 1.5, "angstrom");
    tree.setNumber(Detector + "detectorSpecific/nimages", 10);
    tree.setNumber(Detector + "detectorSpecific/ntrigger", 3);
    NexusHeader header(tree, "/entry");
    EXPECT_EQ(header.plannedImages(), 30u);
    header.setImages(25);
    EXPECT_EQ(header.of(0).nexusTree().find(Beam + "wavelength"), nullptr);
    EXPECT_THAT(*header.of(0).rawHeader(), HasSubstr("detectorSpecific/nimages = 25\n"));
}

class Hdf5Header : public Samples<Hdf5Header> {
public:
    static constexpr const char* Group = "headers";
};

TEST_F(Hdf5Header, AFullFileFillsEveryField)
{
    const MBasicImageOptionalData<> header = open("full_master.h5")->frame(2).optionalData();
    EXPECT_FLOAT_EQ(*header.wavelength(), 0.97f);
    EXPECT_FLOAT_EQ(*header.beam_center_x(), 18.5f);
    EXPECT_FLOAT_EQ(*header.beam_center_y(), 11.25f);
    EXPECT_FLOAT_EQ(*header.detector_distance(), 0.1515f);
    EXPECT_FLOAT_EQ(*header.x_pixel_size(), 75e-6f);
    EXPECT_FLOAT_EQ(*header.y_pixel_size(), 75e-6f);
    EXPECT_FLOAT_EQ(*header.rotation_angle(), 11.0f);
    EXPECT_FLOAT_EQ(*header.rotation_angle_step(), 0.5f);
    EXPECT_FLOAT_EQ(*header.filter_transmission(), 0.25f);
    EXPECT_EQ(*header.saturation_value(), 46000);
    EXPECT_FLOAT_EQ(*header.sensor_thickness(), 0.00045f);
    EXPECT_FLOAT_EQ(*header.threshold_energy(), 6350.f);
    EXPECT_FLOAT_EQ(*header.count_time(), 0.0095f);
    EXPECT_FLOAT_EQ(*header.frame_time(), 0.01f);
    EXPECT_FLOAT_EQ(*header.beam_flux(), 1.5e12f);
    EXPECT_EQ(*header.data_collection_date(), "2024-05-06T07:08:09.123");
    EXPECT_EQ(*header.description(), "Detector 1M");
    EXPECT_EQ(*header.detector_number(), "E-01-0001");
    EXPECT_THAT(*header.rawHeader(), HasSubstr("/entry/definition = NXmx\n"));
    EXPECT_THAT(*header.rawHeader(),
                HasSubstr("/entry/instrument/detector/detector_distance = 151.5 mm\n"));
    EXPECT_THAT(*header.rawHeader(), testing::Not(HasSubstr("flatfield =")));
    EXPECT_THAT(*header.rawHeader(), testing::Not(HasSubstr("/entry/data/data")));
    EXPECT_FALSE(header.pixel_mask());
}

TEST_F(Hdf5Header, ValuesBehindExternalLinksAreRead)
{
    EXPECT_FLOAT_EQ(*open("linked_meta.nxs")->frame(0).optionalData().detector_distance(), 0.3f);
}

TEST_F(Hdf5Header, MasksOfEveryShapeAndTypeAreTheSame)
{
    for (const char* name :
         {"mask_u4.h5", "mask_i4.h5", "mask_rank3.h5", "mask_turned.h5", "mask_gzip.h5",
          "mask_specific.h5", "mask_second.h5", "mask_linked.h5", "mask_u1.h5"}) {
        SCOPED_TRACE(name);
        const MImage image = open(name)->frame(0);
        const auto mask = image.optionalData().pixel_mask();
        ASSERT_TRUE(mask);
        ASSERT_EQ(mask->type(), morvend::datatypes::UINT);
        ASSERT_EQ(mask->typeBits(), 32u);
        ASSERT_EQ(mask->width(), image.width());
        ASSERT_EQ(mask->height(), image.height());
        const bool bytes = std::string(name) == "mask_u1.h5";
        EXPECT_EQ(mask->pixel<unsigned>(0, 0, 9), 0u);
        EXPECT_EQ(mask->pixel<unsigned>(1, 0, 9), 1u);
        EXPECT_EQ(mask->pixel<unsigned>(0, 1, 9), 8u);
        EXPECT_EQ(mask->pixel<unsigned>(2, 2, 9), bytes ? 0u : (1u << 8 | 16u));
        EXPECT_EQ(mask->pixel<unsigned>(3, 3, 9), bytes ? 0u : 1u << 31);
        EXPECT_EQ(mask->pixel<unsigned>(4, 4, 9), 1u << 6 | 2u);
    }
}

TEST_F(Hdf5Header, MasksThatFitNoWayOrAreLostAreLeftOut)
{
    for (const char* name : {"mask_wrong.h5", "mask_lost.h5"})
        EXPECT_FALSE(open(name)->frame(0).optionalData().pixel_mask()) << name;
}

TEST_F(Hdf5Header, AllFramesShareOneMask)
{
    const auto file = open("mask_u4.h5");
    const auto identity = [&](std::size_t f) {
        return file->frame(f).optionalData().pixel_mask()->identity();
    };
    const std::uint64_t first = identity(0);
    EXPECT_EQ(identity(2), first);
    // Also when the file was written to, as long as the mask stays the same.
    std::filesystem::last_write_time(path("mask_u4.h5"),
                                     std::filesystem::file_time_type::clock::now());
    file->update();
    EXPECT_EQ(identity(1), first);
}

class Hdf5Damage : public Samples<Hdf5Damage> {
public:
    static constexpr const char* Group = "damage";
};

struct DamageCase {
    const char* name;
    const char* reason;
};

TEST_F(Hdf5Damage, DamagedFilesSayWhatIsWrong)
{
    const DamageCase cases[] = {
        {"cut.h5", "truncated file"},
        {"cut_tiny.h5", "can't be opened"},
        {"huge_frame.h5", "60000 x 60000 pixels, which can't be shown"},
        {"wide.h5", "can't be shown"},
        {"large_frame.h5", "more than the file"},
        {"bad_chunk.h5", "frame 2 of /entry/data/data is damaged"},
        {"short_bslz4.h5", "is damaged"},
        {"lying_bslz4.h5", "is damaged"},
        {"pipe_pixels.h5", "which is no regular file"},
    };
    for (const DamageCase& each : cases) {
        const std::string message = messageOf(
            [&] { open(each.name)->frame(std::string(each.name) == "bad_chunk.h5" ? 1 : 0); });
        EXPECT_THAT(message, testing::StartsWith("HDF5: "));
        EXPECT_THAT(message, HasSubstr(each.reason)) << each.name;
        EXPECT_THAT(message, HasSubstr(path(each.name)));
    }
}

TEST_F(Hdf5Damage, OneDamagedFrameLeavesTheOthers)
{
    const auto file = open("bad_chunk.h5");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(0), 0), "");
    EXPECT_NE(messageOf([&] { file->frame(1); }), "");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(2), 2), "");
}

TEST_F(Hdf5Damage, ASmallFileMayAnnounceManyFrames)
{
    const auto file = open("huge_count.h5");
    EXPECT_EQ(file->frameCount(), 1000u);
    EXPECT_EQ(file->frame(999).size(), 2167u * 2070u);
}

TEST_F(Hdf5Damage, ChunksLargerThanTheyShouldBeDoNoHarm)
{
    EXPECT_EQ(differenceFrom<unsigned>(open("long_plain.h5")->frame(1), 1), "");
}

TEST_F(Hdf5Damage, AValueInAHugeChunkIsLeftOut)
{
    const auto file = open("bomb_value.h5");
    EXPECT_EQ(differenceFrom<unsigned>(file->frame(1), 1), "");
    EXPECT_FALSE(file->frame(0).optionalData().detector_distance());
}

TEST_F(Hdf5Damage, AValueThatLiesInAPipeIsNotWaitedFor)
{
    EXPECT_EQ(differenceFrom<unsigned>(open("pipe_value.h5")->frame(1), 1), "");
}

TEST_F(Hdf5Damage, CutAnywhereAFileFailsWithAMessage)
{
    std::ifstream in(path("whole.h5"), std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(in)), {});
    for (std::size_t size = 8; size < whole.size(); size += 97) {
        const std::string cut = path("cut_here.h5");
        std::ofstream(cut, std::ios::binary) << whole.substr(0, size);
        EXPECT_NE(messageOf([&] { open("cut_here.h5")->frame(2); }), "") << size;
    }
}

TEST_F(Hdf5Damage, FlippedBytesEndInAnImageOrAMessage)
{
    std::ifstream in(path("whole.h5"), std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(in)), {});
    for (std::size_t at = 8; at < whole.size(); at += 13) {
        std::string bad = whole;
        bad[at] = static_cast<char>(~bad[at]);
        std::ofstream(path("flipped.h5"), std::ios::binary) << bad;
        messageOf([&] {
            const auto file = open("flipped.h5");
            file->frame(std::min<std::size_t>(file->frameCount(), 3) - 1);
        });
    }
}

}  // namespace tarvik::tests
