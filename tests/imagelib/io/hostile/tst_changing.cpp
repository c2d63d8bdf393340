// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files that change, shrink, grow or vanish while they are read, and HDF5 files read by the process
// tarvik-reader, which is killed now and then.
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/MImageWriter.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/EdfFile.h"
#include "tests/support/Processes.h"

#include <boost/optional/optional_io.hpp>

#include <fcntl.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <thread>

namespace tarvik::tests {

namespace {

constexpr int SmallSide = 120;

/// The bytes of a file whose pixels all have one value.
std::string smallFile(const TempFolder& folder, const std::string& extension, int value)
{
    const MImage image(SmallSide, SmallSide, value);
    std::string path = folder / ("small" + extension);
    if (extension == ".h5") {
        MHdf5Writer(folder / "small_master.h5", 1, {}, MCompression::BITSHUFFLE_LZ4).write(image);
        path = folder / "small_data_000001.h5";
    } else if (extension == ".edf") {
        writeEdf(folder, "small.edf", SmallSide,
                 std::vector<std::int32_t>(std::size_t(SmallSide) * SmallSide, value));
    } else {
        MImageWriter::write(image, path,
                            extension == ".cbf" ? MImageWriter::CBF : MImageWriter::TIFF);
    }
    return contentOf(path);
}

/// What writers, copying programs and users do to a file, beside this thread.
class Disturber {
public:
    Disturber(const std::string& path, const std::string& one, const std::string& two)
        : _thread([=](const std::stop_token& stop) {
            for (std::minstd_rand random(4711); !stop.stop_requested();)
                disturb(path, random() % 2 ? one : two, random);
        })
    {}

private:
    static void disturb(const std::string& path, const std::string& bytes, std::minstd_rand& random)
    {
        const auto action = random() % 4;
        const std::string target = action == 0 ? path + ".new" : path;
        if (action == 1)
            ::unlink(path.c_str());
        std::size_t from = 0;
        const int file = ::open(target.c_str(), O_RDWR | O_CREAT, 0600);
        if (action == 2 && ::ftruncate(file, off_t(random() % bytes.size())) == 0)
            from = random() % bytes.size();
        while (from < bytes.size()) {
            const auto piece = std::min<std::size_t>(bytes.size() - from, 1 + random() % 20000);
            EXPECT_GT(::pwrite(file, bytes.data() + from, piece, off_t(from)), 0);
            from += piece;
        }
        EXPECT_EQ(::ftruncate(file, off_t(bytes.size())), 0);
        ::close(file);
        if (target != path)
            ::rename(target.c_str(), path.c_str());
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
    }

    std::jthread _thread;
};

/// Of the pixels of an image none is anything but what some state of the file had.
bool plausible(const MImage& image)
{
    if (image.width() != SmallSide || image.height() != SmallSide)
        return false;
    for (int i = 0; i < SmallSide; ++i)
        if (const int value = image.pixel<int>(i, i, -1); value < 0 || value > 2)
            return false;
    return true;
}

struct Counts {
    int images = 0;
    int failures = 0;
};

/// Opens, reads and updates until there were enough images and enough failures, two minutes at
/// most. Whatever is thrown must be an MException with a path.
Counts readDuring(const std::string& path, int enough)
{
    Counts counts;
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (std::min(counts.images, counts.failures) < enough &&
           std::chrono::steady_clock::now() < end)
        try {
            MImageSeries series(0);
            const int number = series.open(path);
            for (int round = 0; round < 5; ++round) {
                const MImage image = series.at(number);
                EXPECT_TRUE(plausible(image));
                ++counts.images;
                series.update();
            }
        } catch (const MException& error) {
            EXPECT_THAT(error.what(), HasSubstr(path));
            ++counts.failures;
        }
    return counts;
}

class Changing : public testing::TestWithParam<const char*> {
public:
    // As in the viewer: the HDF5 library may not survive what is done here.
    void SetUp() override { FormatRegistry::readHdf5OutOfProcess(true); }
    void TearDown() override { FormatRegistry::readHdf5OutOfProcess(false); }

    const TempFolder folder;
    const std::string extension = GetParam();
    const std::string one = smallFile(folder, extension, 1);
    const std::string two = smallFile(folder, extension, 2);
};

class Apart : public testing::Test {
public:
    void SetUp() override
    {
        letSignalsEndPrograms();
        FormatRegistry::readHdf5OutOfProcess(true);
        for (int i = 0; i < 5; ++i)
            write();
    }
    void TearDown() override { FormatRegistry::readHdf5OutOfProcess(false); }

    /// Lets the series grow by an image with header and mask.
    void write()
    {
        MImage image(700, 500, static_cast<unsigned short>(100 + images));
        image.optionalData().set_wavelength(0.98f);
        image.optionalData().set_rotation_angle(0.5f * static_cast<float>(images++));
        image.optionalData().set_pixel_mask(MImage(700, 500, 1u));
        writer.write(image);
        writer.flush();
    }

    const TempFolder folder;
    const std::string path = folder / "x_master.h5";
    MHdf5Writer writer{path, 0, {}, MCompression::BITSHUFFLE_LZ4};
    int images = 0;
};

}  // namespace

TEST_P(Changing, FilesUnderChangeAreReadOrRefused)
{
    const std::string path = folder.write("changing" + extension, one);
    Counts counts;
    {
        const Disturber disturber(path, one, two);
        counts = readDuring(path, 20);
    }
    EXPECT_GT(counts.images, 0);
    EXPECT_GT(counts.failures, 0);
    folder.write("changing" + extension, two);
    MImageSeries series(0);
    const int number = series.open(path);
    EXPECT_EQ(series.at(number).pixel<int>(5, 5, 0), 2);
}

TEST_P(Changing, AFileThatIsCutOrVanishesIsReadAgainAndNeverMapped)
{
    const std::string name = "cut_1" + extension;
    const std::string path = folder.write(name, one);
    MImageSeries series(0);
    const int number = series.open(path);
    EXPECT_TRUE(plausible(series.at(number)));
    // A mapped file that shrinks would end the process.
    EXPECT_THAT(contentOf("/proc/self/maps"), testing::Not(HasSubstr(folder.path())));
    for (const std::size_t size : {two.size() / 2, std::size_t(10), std::size_t(0)}) {
        SCOPED_TRACE(size);
        folder.write(name, two.substr(0, size));
        EXPECT_THROW(series.at(number), MException);
        series.update();
        EXPECT_THROW(series.at(number), MException);
        folder.write(name, two);
        series.update();
        EXPECT_EQ(series.at(number).pixel<int>(7, 7, 0), 2);
    }
    ::unlink(path.c_str());
    EXPECT_THROW(series.at(number), MException);
    folder.write(name, one);
    EXPECT_EQ(series.at(number).pixel<int>(7, 7, 0), 1);
}

TEST_P(Changing, ChangedBytesNeverEndThisProcess)
{
    int readable = 0;
    for (std::size_t at = 0; at < std::min<std::size_t>(one.size(), 4096); at += 61) {
        std::string damaged = one;
        damaged[at] = static_cast<char>(damaged[at] ^ 0xff);
        const std::string failure = failureOf([&] {
            MImageSeries series(0);
            const int number = series.open(folder.write("flip" + extension, damaged));
            readable += !series.at(number).empty();
        });
        EXPECT_THAT(failure, testing::AnyOf("no failure", HasSubstr(folder.path())));
    }
    EXPECT_GT(readable, 0);
}

INSTANTIATE_TEST_SUITE_P(Format, Changing, testing::Values(".cbf", ".tif", ".edf", ".h5"),
                         [](const auto& row) { return std::string(row.param + 1); });

TEST_F(Apart, ImagesAndHeadersAreThoseReadInPlace)
{
    MImageSeries apart(0);
    EXPECT_EQ(apart.open(path), 1);
    EXPECT_EQ(children().size(), 1u);
    FormatRegistry::readHdf5OutOfProcess(false);
    MImageSeries here(0);
    EXPECT_EQ(here.open(path), 1);
    EXPECT_EQ(apart.formatName(), here.formatName());
    EXPECT_EQ(apart.last(), 5);
    for (const std::size_t number : {1u, 2u, 5u, 3u, 1u}) {
        const MImage one = apart.at(number);
        const MImage other = here.at(number);
        EXPECT_TRUE(samePixels(one, other));
        EXPECT_EQ(apart.pathToImage(number), here.pathToImage(number));
        const auto& header = one.optionalData();
        const auto& expected = other.optionalData();
        EXPECT_EQ(header.rotation_angle(), 0.5f * (static_cast<float>(number) - 1));
        EXPECT_EQ(shown(header), shown(expected));
        EXPECT_EQ(header.rawHeader(), expected.rawHeader());
        EXPECT_EQ(header.nexusTree().toText(), expected.nexusTree().toText());
        ASSERT_TRUE(header.pixel_mask());
        EXPECT_TRUE(samePixels(*header.pixel_mask(), *expected.pixel_mask()));
    }
    // One that did not change is known to be the same.
    EXPECT_EQ(apart.at(1).optionalData().pixel_mask()->identity(),
              apart.at(4).optionalData().pixel_mask()->identity());
    EXPECT_THROW(apart.at(6), MOutOfRangeException);
    write();
    apart.update();
    EXPECT_EQ(apart.last(), 6);
    EXPECT_EQ(apart.at(6).pixel<int>(1, 1, 0), 105);
}

TEST_F(Apart, ADataSetIsShownByItsPathAndNamed)
{
    writer.flush();
    MImageSeries apart(0);
    EXPECT_EQ(apart.open(path + "::/entry/instrument/detector/pixel_mask"), 1);
    EXPECT_EQ(apart.last(), 1);
    EXPECT_EQ(apart.at(1).pixel<int>(1, 1, 0), 1);
    EXPECT_EQ(*apart.at(1).optionalData().imageDescription(),
              "x_master.h5::/entry/instrument/detector/pixel_mask");
    apart.open(path + "::/entry/data");
    EXPECT_EQ(*apart.at(5).optionalData().imageDescription(), "x_master.h5 - image 5");
}

TEST_F(Apart, EverySeriesHasAReaderOfItsOwn)
{
    MImageSeries one(0);
    MImageSeries two(0);
    one.open(path);
    const pid_t first = children().at(0);
    two.open(path);
    EXPECT_EQ(children().size(), 2u);
    ::kill(first, SIGKILL);
    // On a busy machine a killed process takes its time.
    ASSERT_TRUE(waitFor([&] { return hasEnded(first); }));
    // A reader that is gone costs nothing but its start.
    EXPECT_EQ(two.at(2).pixel<int>(0, 0, 0), 101);
    EXPECT_EQ(one.at(2).pixel<int>(699, 499, 0), 101);
    const std::vector<pid_t> readers = children();
    one.open(1);
    EXPECT_TRUE(waitFor([&] { return std::ranges::count_if(readers, hasEnded) == 1; }));
}

}  // namespace tarvik::tests
