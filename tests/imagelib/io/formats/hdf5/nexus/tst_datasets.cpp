// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which data set of a file is shown, by itself or by path, and the list of all of them.
#include "imagelib/io/formats/base/ImagePath.h"
#include "imagelib/io/formats/hdf5/nexus/DatasetList.h"
#include "tests/imagelib/io/formats/hdf5/Samples.h"

#include <filesystem>

namespace tarvik::tests {

class Hdf5Datasets : public Samples<Hdf5Datasets> {
public:
    static constexpr const char* Group = "layouts";

    static std::unique_ptr<ImageFile> openAt(const std::string& name, const std::string& dataset)
    {
        return openHdf5At(ByteSource::open(path(name)), dataset);
    }
};

TEST_F(Hdf5Datasets, ImagesAreFoundWhereverTheyLie)
{
    for (const char* name :
         {"entry1.h5", "default.h5", "signal.h5", "signal_missing.h5", "old_entry_data.h5",
          "lima.h5", "cxi.h5", "detector.h5", "exchange.h5", "largest.h5", "soft.h5",
          "detectors.h5", "default_lost_way.h5", "default_table.h5", "default_chain.h5",
          "old_signal.h5", "beside.h5", "linked_group.h5"})
        expectFrames(name, 3);
    expectFrames("old_blocks.h5", 5);
    expectFrames("block_in_file.h5", 4);
}

TEST_F(Hdf5Datasets, ImagesThatAreGoneAreNotReplacedByMasksAndTables)
{
    for (const auto& row : rowsOf(R"(
lost_data     | gone.h5 does not exist, to which the link /entry/data/data leads
lost_group    | gone.h5 does not exist, to which the link /entry/plot leads
lost_default  | gone.h5 does not exist, to which the link /entry/plot/eye leads
lost_detector | gone.h5 does not exist, to which the link /entry/instrument/detector leads
mask_alone    | no images, only tables such as /entry/instrument/detector/detectorSpecific/flatfield
mask_group    | no images, only tables such as /entry/pixel_mask/data
circle        | the links from /entry/data/data go in a circle
)")) {
        const std::string failure = failureOf([&] { open(row.at(0) + ".h5"); });
        EXPECT_THAT(failure, HasSubstr(row.at(1)));
        EXPECT_THAT(failure, EndsWith(": " + path(row[0] + ".h5")));
    }
}

TEST_F(Hdf5Datasets, APathOpensADataSetOrTheImagesOfAGroup)
{
    // Of the file: the path, width and height, and the data set where it is not the file's choice.
    for (const auto& row : rowsOf(R"(
detectors /entry/eye/counts               | 37x23 |
detectors /entry/eye                      | 37x23 |
detectors /entry                          | 37x23 |
detectors /entry/instrument/eye/data      | 37x23 | /entry/instrument/eye/data
detectors /entry/mca                      | 512x9 | /entry/mca
detectors /entry/instrument/apd           | 1x9   | /entry/instrument/apd
default_chain /entry/data                 | 60x60 | /entry/data
block_in_file /entry/data/data_000002     | 37x23 | /entry/data/data_000002
block_in_file /entry/data                 | 37x23 |
mask_alone /entry/instrument/detector/pixel_mask | 37x23 | /entry/instrument/detector/pixel_mask
)")) {
        const std::size_t blank = row.at(0).find(' ');
        const auto file = openAt(row[0].substr(0, blank) + ".h5", row[0].substr(blank + 1));
        const MImage image = file->frame(0);
        EXPECT_EQ(std::to_string(image.width()) + 'x' + std::to_string(image.height()), row.at(1));
        EXPECT_EQ(file->dataset(), row.size() > 2 ? row[2] : "") << row[0];
    }
    EXPECT_FALSE(openAt("mask_alone.h5", "/entry/instrument/detector/pixel_mask")
                     ->frame(0)
                     .optionalData()
                     .pixel_mask());
    for (const auto& row : rowsOf(R"(
detectors /entry/nothing               | there is no /entry/nothing in the file
detectors /entry/instrument/apd/distance | has 0 dimensions and can't be shown as images
circle /entry/data/x                   | the links from /entry/data/x go in a circle
lost_default /entry/plot/eye           | gone.h5 does not exist, to which the link /entry/plot/eye
mask_alone /entry/instrument           | the group /entry/instrument holds no images
)")) {
        const std::size_t blank = row.at(0).find(' ');
        const std::string name = row[0].substr(0, blank) + ".h5";
        const std::string failure = failureOf([&] { openAt(name, row[0].substr(blank + 1)); });
        EXPECT_THAT(failure, HasSubstr(row.at(1)));
        EXPECT_THAT(failure, EndsWith(": " + path(name)));
    }
}

TEST_F(Hdf5Datasets, ValuesOfTheHeaderAreThoseOfTheDetectorThatTookTheImage)
{
    EXPECT_EQ(*open("detectors.h5")->frame(0).optionalData().detector_distance(), 2);
    EXPECT_EQ(*openAt("detectors.h5", "/entry/mca")->frame(0).optionalData().detector_distance(),
              3);
}

TEST_F(Hdf5Datasets, TheListTellsWhatCanBeShown)
{
    const auto listed = [](const std::string& name) {
        std::string text;
        for (const Hdf5Dataset& each : listHdf5(path(name))) {
            text += (each.isDefault ? "*" : " ") + each.path;
            for (const std::size_t extent : each.shape)
                text += ' ' + std::to_string(extent);
            text += ' ' + each.type + ' ' + each.groupClass;
            if (each.blocks > 1)
                text += " blocks " + std::to_string(each.blocks);
            if (each.missing)
                text += " missing " + std::to_string(each.missing);
            if (!each.leadsTo.empty())
                text += " -> " + each.leadsTo.substr(each.leadsTo.find("gone.h5") + 1);
            text += '\n';
        }
        return text;
    };
    EXPECT_EQ(listed("detectors.h5"),
              " /entry/apd/counts 9 1 float64 NXdata -> /entry/instrument/apd/data\n"
              "*/entry/eye/counts 3 23 37 uint16 NXdata -> /entry/instrument/eye/data\n"
              " /entry/instrument/apd/data 9 1 float64 NXdetector\n"
              " /entry/instrument/eye/data 3 23 37 uint16 NXdetector\n"
              " /entry/instrument/mca/data 9 512 float64 NXdetector\n"
              " /entry/mca/counts 9 512 float64 NXdata -> /entry/instrument/mca/data\n");
    EXPECT_EQ(listed("block_in_file.h5"), "*/entry/data 3 23 37 uint16  blocks 2\n");
    EXPECT_EQ(listed("empty_blocks.h5"), " /entry/data float32  blocks 2\n");
    EXPECT_THAT(listed("lost_data.h5"), HasSubstr("*/entry/data/data  NXdata missing 1 -> one.h5::"
                                                  "/entry/data/data\n"));
    const TempFolder folder;
    EXPECT_THAT(failureOf([&] { listHdf5(folder.write("x.h5", "x")); }), HasSubstr("no HDF5 file"));
}

TEST(ImagePath, IsTakenApartBehindTheFileThatExists)
{
    const TempFolder folder;
    const std::string plain = folder.write("x.h5", "x");
    const std::string odd = folder.write("a::b.h5", "x");
    std::filesystem::create_directories(folder / "c:");
    std::filesystem::create_directories(folder / "d.h5::");
    const std::string deep = folder.write("d.h5::/entry", "x");
    const struct {
        std::string text, file, dataset;
    } cases[] = {{plain, plain, ""},
                 {plain + "::/entry/data/", plain, "/entry/data"},
                 {plain + "::/", plain, ""},
                 {plain + "::/a::/b", plain, "/a::/b"},
                 {odd, odd, ""},
                 {odd + "::/entry/data", odd, "/entry/data"},
                 {deep, deep, ""},
                 {deep + "::/data", deep, "/data"},
                 {folder / "none.h5::/entry", folder / "none.h5", "/entry"},
                 {folder / "none::h5", folder / "none::h5", ""}};
    for (const auto& each : cases) {
        const ImagePath path = ImagePath::of(each.text);
        EXPECT_EQ(path.file, each.file) << each.text;
        EXPECT_EQ(path.dataset, each.dataset) << each.text;
    }
}

}  // namespace tarvik::tests
