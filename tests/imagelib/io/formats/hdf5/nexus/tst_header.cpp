// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image header and the mask of NeXus files: from files, and from trees in many dialects.
#include "imagelib/io/formats/hdf5/nexus/NexusHeader.h"
#include "tests/imagelib/io/formats/hdf5/Samples.h"

namespace tarvik::tests {

using hdf5::NexusHeader;
using nexus::MBasicNeXusTree;
using nexus::Node;

namespace {

const std::string Detector = "/entry/instrument/detector/";
const std::string Beam = "/entry/instrument/beam/";
const std::string Sample = "/entry/sample/";

Header headerOf(const MBasicNeXusTree& tree, std::size_t frame = 0)
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

}  // namespace

TEST(NexusHeaderFields, AreFoundInTheirDialects)
{
    // "path value unit, path value unit" below /entry/instrument, and the fields they give. Where
    // there are several, the first one counts.
    for (const auto& row : rowsOf(R"(
beam/wavelength 1 angstrom, monochromator/wavelength 2 angstrom             | wavelength=1;
monochromator/wavelength 0.2 nm, beam/incident_wavelength 3 angstrom        | wavelength=2;
beam/incident_wavelength 3                                                  | wavelength=3;
/entry/sample/beam/incident_wavelength 1e-10 m                              | wavelength=1;
beam/incident_energy 12.39842 keV                                           | wavelength=1;
beam/wavelength 0, beam/incident_wavelength 1.5 angstroms                   | wavelength=1.5;
detector/detector_distance 150 mm | detector_distance=0.15;
detector/distance 0.2                                                       | detector_distance=0.2;
detector/beam_center_x 10.5 pixels                                          | beam_center_x=10.5;
detector/beam_center_x 15 mm, detector/x_pixel_size 75 um \
    | beam_center_x=200;x_pixel_size=7.5e-05;
detector/beam_center_x 0.015 m, detector/x_pixel_size 75 um \
    | beam_center_x=200;x_pixel_size=7.5e-05;
detector/beam_center_y 1.5 cm, detector/y_pixel_size 75 um \
    | beam_center_y=200;y_pixel_size=7.5e-05;
detector/beam_center_y 15000 um, detector/y_pixel_size 75 um \
    | beam_center_y=200;y_pixel_size=7.5e-05;
detector/beam_center_y 15 mm                                                |
detector/beam_center_y 15 fortnights, detector/y_pixel_size 75 um           | y_pixel_size=7.5e-05;
detector/beam_center_x 10.5, detector/beam_center_y 11.5 px \
    | beam_center_x=10.5;beam_center_y=11.5;
detector/x_pixel_size 55 micron                                             | x_pixel_size=5.5e-05;
detector/y_pixel_size 55                                                    | y_pixel_size=5.5e-05;
detector/y_pixel_size 0.172                                                 | y_pixel_size=0.000172;
detector/module/fast_pixel_direction 0.075 mm                               | x_pixel_size=7.5e-05;
detector/sensor_thickness 0.45 m                                            | sensor_thickness=0.45;
detector/threshold_energy 6 keV                                             | threshold_energy=6000;
detector/count_time 5 millisecond                                           | count_time=0.005;
detector/frame_time 0.5 fortnights                                          | frame_time=0.5;
beam/incident_beam_flux 1e12                                                | beam_flux=1e+12;
attenuator/attenuator_transmission 30.04 | filter_transmission=30.04;
/entry/sample/goniometer/omega 0.5 rad | rotation_angle=28.64789;
detector/detectorSpecific/detectorModule_000/countrate_correction_count_cutoff 1000 \
    | saturation_value=1000;
detector/detectorSpecific/detectorModule_000/countrate_correction_count_cutoff 1000, \
    detector/detectorSpecific/countrate_correction_count_cutoff 2000        | saturation_value=2000;
detector/detectorSpecific/countrate_correction_count_cutoff 2000, \
    detector/saturation_value 4294967295 | saturation_value=2147483647;
                                                                            |
)")) {
        MBasicNeXusTree tree;
        std::istringstream entries(row.at(0));
        for (std::string entry; std::getline(entries, entry, ',');) {
            std::istringstream words(entry);
            std::string path, unit;
            double value = 0;
            words >> path >> value >> unit;
            tree.setNumber(path[0] == '/' ? path : "/entry/instrument/" + path, value, unit);
        }
        EXPECT_EQ(shown(headerOf(tree)), row.at(1)) << row[0];
    }
}

TEST(NexusHeaderFields, ASpectrumGivesItsWeightedMean)
{
    MBasicNeXusTree tree;
    put(tree, Beam + "incident_wavelength", {1, 2, 3}, "angstrom");
    EXPECT_EQ(shown(headerOf(tree, 2)), "wavelength=3;");
    put(tree, Beam + "incident_wavelength_weights", {0, 1, 3}, "");
    EXPECT_EQ(shown(headerOf(tree, 2)), "wavelength=2.75;");
}

TEST(NexusHeaderFields, OtherDetectorsAndEntriesAreFound)
{
    MBasicNeXusTree tree;
    tree.node("/entry_1/instrument_1").attributes["NX_class"] = std::string("NXinstrument");
    tree.node("/entry_1/instrument_1/eye").attributes["NX_class"] = std::string("NXdetector");
    tree.setNumber("/entry_1/instrument_1/eye/detector_information/detector_distance", 0.7, "m");
    tree.setNumber("/entry_1/instrument_1/eye/acquisition/exposure_time", 0.25, "s");
    EXPECT_EQ(shown(NexusHeader(tree, "/entry_1").of(0)), "detector_distance=0.7;count_time=0.25;");
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
    EXPECT_EQ(shown(headerOf(tree)), "detector_distance=0.255;");
    // A chain that goes in a circle ends too.
    along.attributes["depends_on"] = std::string("det_y");
    EXPECT_TRUE(headerOf(tree).detector_distance());
}

TEST(NexusHeaderRotation, TheFirstAxisOfTheChainWhoseValuesDifferTurns)
{
    MBasicNeXusTree tree;
    const std::string axes = Sample + "transformations/";
    tree.setText(Sample + "depends_on", axes + "phi");
    put(tree, axes + "phi", {5, 5, 5}).attributes["depends_on"] = std::string("chi");
    put(tree, axes + "chi", {0}).attributes["depends_on"] = axes + "omega";
    put(tree, axes + "omega", {10, 11, 12}).attributes["depends_on"] = std::string(".");
    for (const char* axis : {"phi", "chi", "omega"})
        tree.node(axes + axis).attributes["transformation_type"] = std::string("rotation");
    EXPECT_EQ(shown(headerOf(tree, 2)), "rotation_angle=12;rotation_angle_step=1;");
    // Images may cover less than the way to the next one.
    put(tree, axes + "omega_increment_set", {0.25});
    EXPECT_EQ(shown(headerOf(tree, 1)), "rotation_angle=11;rotation_angle_step=0.25;");
    put(tree, axes + "omega_end", {10.5, 11.5, 12.75});
    EXPECT_EQ(shown(headerOf(tree, 2)), "rotation_angle=12;rotation_angle_step=0.75;");
    put(tree, axes + "omega_end", {12.75});
    EXPECT_EQ(shown(headerOf(tree, 2)), "rotation_angle=12;rotation_angle_step=0.25;");
    // A chain that goes in a circle ends.
    tree.node(axes + "omega").attributes["depends_on"] = std::string("phi");
    EXPECT_EQ(*headerOf(tree, 1).rotation_angle(), 11);
}

TEST(NexusHeaderRotation, TheGoniometerHasOneAngleForEachImage)
{
    MBasicNeXusTree tree;
    put(tree, Sample + "goniometer/omega", {90, 90, 90});
    put(tree, Sample + "goniometer/omega_range_average", {0});
    EXPECT_EQ(*headerOf(tree, 1).rotation_angle(), 90);
    put(tree, Sample + "goniometer/phi", {1, 2, 3});
    put(tree, Sample + "goniometer/phi_range_average", {1});
    EXPECT_EQ(shown(headerOf(tree, 2)), "rotation_angle=3;rotation_angle_step=1;");
}

TEST(NexusHeaderRotation, AnAxisWithAValueForEachImageComesBeforeAllOthers)
{
    MBasicNeXusTree tree;
    put(tree, Sample + "goniometer/omega", {90});
    put(tree, Sample + "goniometer/omega_range_average", {0.1});
    put(tree, Sample + "goniometer/phi", {0, 54});
    put(tree, Sample + "goniometer/chi", {1, 1.25, 1.5, 1.75});
    put(tree, Sample + "goniometer/kappa", {7, 7, 7, 7});
    NexusHeader header(tree, "/entry");
    header.setImages(4);
    EXPECT_EQ(shown(header.of(2)), "rotation_angle=1.5;rotation_angle_step=0.25;");
    // Transformations that no chain names.
    tree = {};
    put(tree, Sample + "transformations/chi", {54.7});
    put(tree, Sample + "transformations/omega", {10, 10.5});
    EXPECT_EQ(shown(headerOf(tree, 1)), "rotation_angle=10.5;rotation_angle_step=0.5;");
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
    const Header header = open("full_master.h5")->frame(2).optionalData();
    EXPECT_EQ(shown(header),
              "beam_center_x=18.5;beam_center_y=11.25;detector_distance=0.1515;wavelength=0.97;"
              "x_pixel_size=7.5e-05;y_pixel_size=7.5e-05;rotation_angle=11;"
              "rotation_angle_step=0.5;filter_transmission=0.25;saturation_value=46000;"
              "sensor_thickness=0.00045;threshold_energy=6350;count_time=0.0095;frame_time=0.01;"
              "beam_flux=1.5e+12;data_collection_date=2024-05-06T07:08:09.123;"
              "description=Detector 1M;detector_number=E-01-0001;");
    EXPECT_THAT(*header.rawHeader(), HasSubstr("/entry/definition = NXmx\n"));
    EXPECT_THAT(*header.rawHeader(),
                HasSubstr("/entry/instrument/detector/detector_distance = 151.5 mm\n"));
    EXPECT_THAT(*header.rawHeader(), testing::Not(HasSubstr("flatfield =")));
    EXPECT_THAT(*header.rawHeader(), testing::Not(HasSubstr("/entry/data/data")));
    EXPECT_FALSE(header.pixel_mask());
    // Values reached by an external link.
    const Header linked = open("linked_meta.nxs")->frame(0).optionalData();
    EXPECT_EQ(*linked.detector_distance(), 0.3f);
    EXPECT_THAT(*linked.rawHeader(), testing::Not(HasSubstr("WARNING"))) << "no mask, none lost";
}

TEST_F(Hdf5Header, MasksOfEveryShapeAndTypeAreTheSame)
{
    for (const char* name :
         {"u4", "i4", "rank3", "turned", "gzip", "specific", "second", "linked", "u1"}) {
        SCOPED_TRACE(name);
        const auto mask =
            open(std::string("mask_") + name + ".h5")->frame(0).optionalData().pixel_mask();
        ASSERT_TRUE(mask);
        MImage expected(SampleWidth, SampleHeight, 0u);
        const bool bytes = std::string(name) == "u1";
        const struct {
            int x, y;
            unsigned value;
        } bad[] = {{1, 0, 1},
                   {0, 1, 8},
                   {2, 2, bytes ? 0 : 1u << 8 | 16},
                   {3, 3, bytes ? 0 : 1u << 31},
                   {4, 4, 1 << 6 | 2}};
        for (const auto& each : bad)
            static_cast<unsigned*>(expected.data())[each.y * SampleWidth + each.x] = each.value;
        EXPECT_TRUE(samePixels(*mask, expected)) << shown(*mask);
    }
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

}  // namespace tarvik::tests
