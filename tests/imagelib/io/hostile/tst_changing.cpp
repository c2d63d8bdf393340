// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files that change, shrink, grow or vanish while they are read.
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MImageSeries.h"
#include "tests/imagelib/io/hostile/SmallFiles.h"
#include "tests/support/Processes.h"

#include <gmock/gmock.h>

#include <csignal>
#include <random>

#include <fcntl.h>
#include <sys/wait.h>

namespace tarvik::tests {

using namespace morvend;
using namespace morvend::imglib;

namespace {

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

/// Opens, reads and updates for a while. Whatever is thrown must be an MException with a path.
Counts readDuring(const std::string& path, std::chrono::milliseconds time)
{
    Counts counts;
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end)
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
            EXPECT_THAT(error.what(), testing::HasSubstr(path));
            ++counts.failures;
        }
    return counts;
}

class Changing : public testing::TestWithParam<SmallFormat> {
public:
    // As in the viewer: the HDF5 library may not survive what is done here.
    void SetUp() override { FormatRegistry::readHdf5Apart(true); }
    void TearDown() override { FormatRegistry::readHdf5Apart(false); }

    const TempFolder folder;
    const std::string extension = GetParam().extension;
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
        counts = readDuring(path, std::chrono::milliseconds(1500));
    }
    std::printf("%s: %d images, %d failures\n", GetParam().name, counts.images, counts.failures);
    EXPECT_GT(counts.images, 0);
    EXPECT_GT(counts.failures, 0);
    folder.write("changing" + extension, two);
    MImageSeries series(0);
    const int number = series.open(path);
    EXPECT_EQ(series.at(static_cast<std::size_t>(number)).pixel<int>(5, 5, 0), 2);
}

TEST_P(Changing, AFileThatIsCutAndCompletedIsReadAgain)
{
    const std::string path = folder.write("cut_1" + extension, one);
    MImageSeries series(0);
    const auto number = static_cast<std::size_t>(series.open(path));
    EXPECT_TRUE(plausible(series.at(number)));
    for (const std::size_t size : {two.size() / 2, std::size_t(10), std::size_t(0)}) {
        SCOPED_TRACE(size);
        folder.write("cut_1" + extension, two.substr(0, size));
        EXPECT_THROW(series.at(number), MException);
        series.update();
        EXPECT_THROW(series.at(number), MException);
        folder.write("cut_1" + extension, two);
        series.update();
        EXPECT_EQ(series.at(number).pixel<int>(7, 7, 0), 2);
    }
}

TEST_P(Changing, AFileThatVanishesAndComesBackIsReadAgain)
{
    const std::string path = folder.write("gone_1" + extension, one);
    MImageSeries series(0);
    const auto number = static_cast<std::size_t>(series.open(path));
    EXPECT_TRUE(plausible(series.at(number)));
    ::unlink(path.c_str());
    EXPECT_THROW(series.at(number), MException);
    folder.write("gone_1" + extension, two);
    EXPECT_EQ(series.at(number).pixel<int>(7, 7, 0), 2);
}

TEST_P(Changing, NoFileIsMapped)
{
    // A mapped file that shrinks would end the process.
    const std::string path = folder.write("mapped_1" + extension, one);
    MImageSeries series(0);
    const MImage image = series.at(static_cast<std::size_t>(series.open(path)));
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        EXPECT_EQ(line.find(folder.path()), std::string::npos) << line;
}

INSTANTIATE_TEST_SUITE_P(Format, Changing, testing::ValuesIn(SmallFormats),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace tarvik::tests
