// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files that change, shrink, grow or vanish while they are read.
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/MImageWriter.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/EdfFile.h"
#include "tests/support/Processes.h"

#include <csignal>
#include <random>

#include <fcntl.h>
#include <sys/wait.h>

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

void writeSlowly(int file, const std::string& bytes, std::size_t from, std::minstd_rand& random)
{
    while (from < bytes.size()) {
        const std::size_t piece = std::min<std::size_t>(bytes.size() - from, 1 + random() % 20000);
        if (::pwrite(file, bytes.data() + from, piece, static_cast<off_t>(from)) < 0)
            std::_Exit(1);
        from += piece;
    }
}

/// What writers, copying programs and users do to a file, until this process is killed.
[[noreturn]] void disturb(const std::string& path, const std::string& one, const std::string& two)
{
    std::minstd_rand random(4711);
    for (;;) {
        const std::string& bytes = random() % 2 ? one : two;
        std::string target = path;
        std::size_t from = 0;
        switch (random() % 4) {
        case 0:  // shortened, then completed
            from = random() % bytes.size();
            if (::truncate(path.c_str(), static_cast<off_t>(from)) != 0)
                from = 0;
            break;
        case 1:  // deleted, then written anew
            ::unlink(path.c_str());
            break;
        case 2:  // replaced at one stroke
            target += ".new";
            break;
        default:  // overwritten in place
            break;
        }
        const int file = ::open(target.c_str(), O_RDWR | O_CREAT, 0600);
        writeSlowly(file, bytes, from, random);
        if (::ftruncate(file, static_cast<off_t>(bytes.size())) != 0)
            std::_Exit(1);
        ::close(file);
        if (target != path)
            ::rename(target.c_str(), path.c_str());
        ::usleep(static_cast<useconds_t>(random() % 2000));
    }
}

/// Runs the disturber beside this process.
class Disturber {
public:
    Disturber(const std::string& path, const std::string& one, const std::string& two)
        : _pid(::fork())
    {
        if (_pid == 0)
            disturb(path, one, two);
    }
    Disturber(const Disturber&) = delete;
    Disturber& operator=(const Disturber&) = delete;
    ~Disturber()
    {
        ::kill(_pid, SIGKILL);
        ::waitpid(_pid, nullptr, 0);
    }

private:
    pid_t _pid;
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

/// Opens, reads and updates until there were enough images and enough failures, ten seconds at
/// most. Whatever is thrown must be an MException with a path.
Counts readDuring(const std::string& path, int enough)
{
    Counts counts;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::min(counts.images, counts.failures) < enough &&
           std::chrono::steady_clock::now() < end)
        try {
            MImageSeries series(0);
            const int number = series.open(path);
            for (int round = 0; round < 5; ++round) {
                const MImage image = series.at(static_cast<std::size_t>(number));
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
    void SetUp() override { FormatRegistry::readHdf5Apart(true); }
    void TearDown() override { FormatRegistry::readHdf5Apart(false); }

    const TempFolder folder;
    const std::string extension = GetParam();
    const std::string one = smallFile(folder, extension, 1);
    const std::string two = smallFile(folder, extension, 2);
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
    EXPECT_EQ(series.at(static_cast<std::size_t>(number)).pixel<int>(5, 5, 0), 2);
}

TEST_P(Changing, AFileThatIsCutOrVanishesIsReadAgainAndNeverMapped)
{
    const std::string name = "cut_1" + extension;
    const std::string path = folder.write(name, one);
    MImageSeries series(0);
    const auto number = static_cast<std::size_t>(series.open(path));
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
    for (std::size_t at = 0; at < std::min<std::size_t>(one.size(), 4096); at += 149) {
        std::string damaged = one;
        damaged[at] = static_cast<char>(damaged[at] ^ 0xff);
        const std::string failure = failureOf([&] {
            MImageSeries series(0);
            const int number = series.open(folder.write("flip" + extension, damaged));
            readable += !series.at(static_cast<std::size_t>(number)).empty();
        });
        EXPECT_THAT(failure, testing::AnyOf("no failure", HasSubstr(folder.path())));
    }
    EXPECT_GT(readable, 0);
}

INSTANTIATE_TEST_SUITE_P(Format, Changing, testing::Values(".cbf", ".tif", ".edf", ".h5"),
                         [](const auto& row) { return std::string(row.param + 1); });

}  // namespace tarvik::tests
