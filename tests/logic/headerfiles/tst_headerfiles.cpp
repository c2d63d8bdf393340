// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header lines that change in place, in one file and in a series.
#include "logic/headerfiles/HeaderUndo.h"
#include "logic/headerfiles/ReplacedFile.h"
#include "logic/headerfiles/UndoHeadersThread.h"
#include "logic/headerfiles/WriteHeaderToFilesThread.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using tarvik::tests::TempFolder;
using Header = CbfHeaderWriter::Header;

const std::string Head = "###CBF: VERSION 1.5\r\n_array_data.header_contents\r\n;\r\n";
const std::string Tail =
    std::string("\r\n;\r\n# Wavelength 9 A\r\nbinary \x0c\x1a\x04\xd5\0;\n#", 38);

std::string join(std::initializer_list<std::string_view> pieces)
{
    std::string text;
    for (const std::string_view piece : pieces)
        text += piece;
    return text;
}

std::string read(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

Header header(const std::vector<std::pair<void (Header::*)(const float&), float>>& values)
{
    Header result;
    for (const auto& [set, value] : values)
        (result.*set)(value);
    return result;
}

TEST(CbfHeader, ChangesTheLinesOfItsValuesOnly)
{
    using H = Header;
    struct Row {
        Header header;
        std::string before, after;
    };
    for (const Row& row : std::initializer_list<Row>{
             {header({{&H::set_wavelength, 0.97F}}), "# Detector: x\r\n# Wavelength 1.0 A\r\n# End",
              "# Detector: x\r\n# Wavelength 0.97 A\r\n# End"},
             {header({{&H::set_detector_distance, 0.15F}}),
              "# Detector_distance 1 m\r\n# Detector_distance 2 m",
              "# Detector_distance 0.15 m\r\n# Detector_distance 2 m"},
             {header({{&H::set_beam_center_x, 1.5F}, {&H::set_beam_center_y, 2.F}}),
              "# Beam_xy (1, 2) pixels", "# Beam_xy ( 1.5, 2) pixels"},
             {header({{&H::set_beam_center_x, 1.5F}}),  // half of one
              "# Beam_xy (1, 2) pixels", "# Beam_xy (1, 2) pixels"},
             {header({{&H::set_filter_transmission, 0.5F}}),  // not in the first column
              " # Filter_transmission 1\r\n# Filter_transmission 1",
              " # Filter_transmission 1\r\n# Filter_transmission 0.5"},
             {header({{&H::set_wavelength, 2.F}}),  // searched in the first part of long lines
              "# Wavelength 1 A" + std::string(2000, ' ') + "\r\n# x" + std::string(1024, '.') +
                  "# Wavelength 3 A",
              "# Wavelength 2 A\r\n# x" + std::string(1024, '.') + "# Wavelength 3 A"},
             {header({{&H::set_wavelength, 2.F}}), "# Wavelength 1 A; of last week",
              "# Wavelength 2 A"},
             {header({{&H::set_wavelength, 2.F}}),  // a line of binary data
              "#\x01# Wavelength 1 A\r\n# Wavelength 1 A",
              "#\x01# Wavelength 1 A\r\n# Wavelength 2 A"}}) {
        const TempFolder folder;
        const std::string path =
            folder.write("x.cbf", std::string(Head).append(row.before).append(Tail));
        CbfHeaderWriter writer;
        writer.setNeXuS(row.header);
        writer.write(path);
        std::string expected = Head;  // in steps, since it is long
        expected += row.after;
        expected += Tail;
        EXPECT_EQ(read(path), expected);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1)
            << "no temporary file stays";
    }
}

TEST(CbfHeader, OneMissingLineIsAddedAtTheEnd)
{
    const TempFolder folder;
    const std::string path = folder.write("x.cbf", Head + "# Other" + Tail);
    CbfHeaderWriter writer;
    writer.setNeXuS(
        header({{&Header::set_rotation_angle_step, 0.1F}, {&Header::set_rotation_angle, 1.F}}));
    writer.write(path);
    EXPECT_EQ(read(path), Head + "# Other\r\n# Start_angle 1 deg\r\n" + Tail.substr(2));
    writer.write(path);
    EXPECT_EQ(read(path), Head + "# Other\r\n# Start_angle 1 deg\r\n# Angle_increment 0.1 deg\r\n" +
                              Tail.substr(2));
}

TEST(CbfHeader, FailuresAreReportedAndChangeNothing)
{
    const TempFolder folder;
    CbfHeaderWriter writer;
    testing::internal::CaptureStderr();
    writer.write(folder / "none.cbf");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error: Can't open " + (folder / "none.cbf") + " for reading\n");
    const std::string path = folder.write("x.cbf", "no header;;");
    writer.setNeXuS(header({{&Header::set_wavelength, 1.F}}));
    writer.write(path);
    EXPECT_EQ(read(path), "no header;;");
}

HeaderChanges writeOne(const std::string& path, const TempFolder& journals, HeaderReport& report)
{
    CbfHeaderWriter writer;
    writer.setNeXuS(header({{&Header::set_wavelength, 2.F}}));
    HeaderBatch batch(HeaderBatch::Mode::Write, journals.path());
    HeaderChanges changes;
    try {
        changes = batch.write(path, writer);
    } catch (const std::exception&) {
        changes.clear();
    }
    report = batch.report();
    return changes;
}

TEST(HeaderBatch, RefusesWhatItWouldDamage)
{
    const std::string block = "_array_data.header_contents\r\n;\r\n# Wavelength 1 A\r\n;\r\n";
    const std::string binary = "--CIF-BINARY-FORMAT-SECTION--\r\nX-Binary-Size: 10\r\n\r\n"
                               "\x0c\x1a\x04\xd5";
    struct Row {
        std::string content, reason;
    };
    for (const Row& row : std::initializer_list<Row>{
             {block, "no CBF file"},
             {"\x1f\x8b_gzip" + block, "Compressed files"},
             {"###CBF\r\n;\r\n# Wavelength 1 A\r\n;", "no header text"},
             {std::string("###CBF\r\n\0", 9) + block, "no header text"},
             {"###CBF\r\n_array_data.header_contents\r\n# Wavelength 1 A\r\n;\r\n;\r\n",
              "no opening mark"},
             {join({"###CBF\r\n_array_data.header_contents\r\n;\r\n", binary, ";"}),
              "no closing mark"},
             {join({Head, "# Detector: a; b\r\n# Wavelength 1 A", Tail}),
              "semicolon within a line"},
             {join({"###CBF\r\n", block, binary, "123456789"}), "9 of 10 bytes"}}) {
        const TempFolder folder, journals;
        const std::string path = folder.write("x.cbf", row.content);
        HeaderReport report;
        EXPECT_TRUE(writeOne(path, journals, report).empty());
        EXPECT_THAT(report.failures(), testing::ElementsAre(testing::HasSubstr(row.reason)));
        EXPECT_EQ(read(path), row.content);
    }
}

TEST(HeaderBatch, FollowsALinkAndKeepsWhatBelongsToTheFile)
{
    const TempFolder folder, journals;
    const std::string path = folder.write("x.cbf", Head + "# Wavelength 1 A" + Tail);
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(::setxattr(path.c_str(), "user.sample", "insulin", 7, 0), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(path.c_str(), 12, 34), 0);
    }
    struct stat before = {}, after = {};
    ::stat(path.c_str(), &before);
    const std::string link = folder / "link.cbf";
    std::filesystem::create_symlink("x.cbf", link);
    HeaderReport report;
    EXPECT_EQ(writeOne(link, journals, report).size(), 1U);
    EXPECT_EQ(read(path), Head + "# Wavelength 2 A" + Tail);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    ::stat(path.c_str(), &after);
    EXPECT_EQ(std::tie(after.st_uid, after.st_gid, after.st_mode),
              std::tie(before.st_uid, before.st_gid, before.st_mode));
    char value[8] = {};
    EXPECT_EQ(::getxattr(path.c_str(), "user.sample", value, sizeof value), 7);
    EXPECT_STREQ(value, "insulin");
}

TEST(HeaderBatch, KeepsOthersOutOfTheFolder)
{
    const TempFolder folder, journals;
    const std::string path = folder.write("x.cbf", Head + "# Wavelength 1 A" + Tail);
    HeaderReport report;
    {
        HeaderBatch other(HeaderBatch::Mode::Write, journals.path());
        other.lock(folder.path());
        writeOne(path, journals, report);
        EXPECT_THAT(report.failures(),
                    testing::ElementsAre(testing::HasSubstr("by another batch")));
        EXPECT_EQ(read(path), Head + "# Wavelength 1 A" + Tail);
    }
    EXPECT_EQ(writeOne(path, journals, report).size(), 1U);
}

TEST(HeaderBatch, LeavesAFileToTheProgramThatWritesIt)
{
    const TempFolder folder, journals;
    const std::string path = folder.write("x.cbf", Head + "# Wavelength 1 A" + Tail);
    const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    HeaderReport report;
    EXPECT_TRUE(writeOne(path, journals, report).empty());
    EXPECT_THAT(report.failures(),
                testing::ElementsAre(testing::HasSubstr("Another program is writing")));
    ::close(file);
    EXPECT_EQ(writeOne(path, journals, report).size(), 1U);
}

TEST(HeaderBatch, LeavesAFileThatChangesOrVanishesMeanwhile)
{
    const TempFolder folder;
    const std::string path = folder.write("x.cbf", "old");
    const auto reasonOf = [&](const std::function<void()>& change) -> std::string {
        ReplacedFile file(path);
        change();
        try {
            file.replace("new");
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    };
    EXPECT_THAT(reasonOf([&] { std::ofstream(path, std::ios::app) << "er"; }),
                testing::HasSubstr("Another program changed this file"));
    EXPECT_EQ(read(path), "older");
    EXPECT_THAT(reasonOf([&] { std::filesystem::remove(path); }),
                testing::HasSubstr("The file vanished"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(HeaderBatch, SaysWhenThereIsNoRoom)
{
    const TempFolder folder, journals;
    const std::string content = Head + "# Wavelength 1 A" + Tail + std::string(100'000, 'x');
    const std::string path = folder.write("x.cbf", content);
    struct rlimit limit = {}, small = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    small = {50'000, limit.rlim_max};
    ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    HeaderReport report;
    writeOne(path, journals, report);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_THAT(report.failures(), testing::ElementsAre(testing::HasSubstr("tmp: File too large")));
    EXPECT_EQ(read(path), content);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    EXPECT_TRUE(std::filesystem::is_empty(journals.path())) << "nothing to undo";
}

TEST(HeaderUndo, PutsBackBatchByBatchAndRefusesWhatHasChanged)
{
    const TempFolder folder, journals;
    std::vector<std::string> paths;
    for (const char* name : {"a.cbf", "b.cbf", "c.cbf"})
        paths.push_back(folder.write(name, join({Head, "# Wavelength 1 A", Tail})));
    HeaderReport report;
    for (const std::string& path : paths)  // a batch each
        writeOne(path, journals, report);
    const auto undo = [&] {
        HeaderUndo last(HeaderBatch::Mode::Write, journals.path());
        try {
            last.putBack(0);
        } catch (const std::exception&) {
            EXPECT_EQ(last.report().failedFiles(), 1);
        }
        const auto failures = last.report().failures();
        return failures.empty() ? last.report().text("put back") : failures.front();
    };
    EXPECT_THAT(undo(), testing::HasSubstr("1 file put back: " + paths[2]));
    EXPECT_EQ(read(paths[2]), Head + "# Wavelength 1 A" + Tail);
    std::ofstream(paths[1], std::ios::app) << "more";
    EXPECT_THAT(undo(), testing::HasSubstr("has changed since the write: " + paths[1]));
    EXPECT_EQ(read(paths[1]), Head + "# Wavelength 2 A" + Tail + "more");
    std::filesystem::rename(paths[0], folder / "elsewhere");
    EXPECT_THAT(undo(), testing::HasSubstr("No such file"));
    std::filesystem::rename(folder / "elsewhere", paths[0]);
    EXPECT_THAT(undo(), testing::HasSubstr(paths[0])) << "a vanished file may come back";
    EXPECT_THROW(undo(), std::exception) << "no more";
}

class Batch : public testing::Test {
protected:
    Batch()
    {
        thread.setImageSeries(folder.path(), "x_", "cbf", 3);
        QObject::connect(
            &thread, &WriteHeaderToFilesThread::progress, &thread,
            [this](int done, int total) {
                steps.emplace_back(done, total);
                if (done == abortAt)
                    thread.abort();
            },
            Qt::DirectConnection);
    }
    static std::string name(int number)
    {
        return "x_" + std::to_string(1000 + number).substr(1) + ".cbf";
    }
    void write(int number)
    {
        folder.write(name(number), Head + "# Start_angle 0 deg\r\n# Wavelength 1 A" + Tail);
    }
    std::string line(int number) const
    {
        const std::string text = read(folder / name(number));
        return text.substr(Head.size(), text.find('\r', Head.size()) - Head.size());
    }
    void run()
    {
        thread.start();
        ASSERT_TRUE(thread.wait(Patience));
    }

    const TempFolder folder;
    std::vector<std::pair<int, int>> steps;
    int abortAt = -1;
    WriteHeaderToFilesThread thread;
};

TEST_F(Batch, EachFileAddsToTheAngleOfTheOneBefore)
{
    for (const int number : {1, 2, 3, 5})
        write(number);
    thread.setNeXuS(
        header({{&Header::set_rotation_angle, 10.F}, {&Header::set_rotation_angle_step, 0.5F}}), 3);
    testing::internal::CaptureStderr();
    run();
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::HasSubstr("x_004.cbf for reading"));
    EXPECT_EQ(steps,
              (std::vector<std::pair<int, int>>{{0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}, {5, 5}}));
    // Steps of -2, -1, 0, 1, 2 add up.
    for (const auto& [number, angle] : {std::pair(1, "9"), {2, "8.5"}, {3, "8.5"}, {5, "10"}})
        EXPECT_EQ(line(number), std::string("# Start_angle ") + angle + " deg");
}

TEST_F(Batch, IsShownBeforeAndUndoneAfter)
{
    for (const int number : {1, 2})
        write(number);
    thread.setNeXuS(
        header({{&Header::set_rotation_angle, 10.F}, {&Header::set_rotation_angle_step, 0.5F}}), 1);
    for (const auto mode : {HeaderBatch::Mode::Preview, HeaderBatch::Mode::Write}) {
        thread.setMode(mode);
        run();
        EXPECT_EQ(thread.report().text("would change"),
                  "2 files would change in " + folder.path() +
                      "/: x_001.cbf to x_002.cbf\n"
                      "  Start_angle in 2 files, the first and the last of which:\n"
                      "    -# Start_angle 0 deg\n    +# Start_angle 10 deg\n"
                      "    -# Start_angle 0 deg\n    +# Start_angle 10.5 deg\n"
                      "  Angle_increment in 2 files:\n    +# Angle_increment 0.5 deg\n");
        EXPECT_EQ(line(1), mode == HeaderBatch::Mode::Write ? "# Start_angle 10 deg"
                                                            : "# Start_angle 0 deg");
    }
    UndoHeadersThread undo;
    undo.start();
    ASSERT_TRUE(undo.wait(Patience));
    EXPECT_EQ(undo.report().changedFiles(), 2);
    EXPECT_EQ(read(folder / name(2)), Head + "# Start_angle 0 deg\r\n# Wavelength 1 A" + Tail);
}

TEST_F(Batch, EndsBehindTheFileOfAnAbort)
{
    for (int number = 1; number <= 10; ++number)
        write(number);
    thread.setNeXuS(header({{&Header::set_rotation_angle, 7.F}}), 1);
    abortAt = 2;
    run();
    EXPECT_EQ(steps.back(), std::pair(2, 10));
    EXPECT_EQ(line(2), "# Start_angle 7 deg");
    EXPECT_EQ(line(3), "# Start_angle 0 deg");
}

}  // namespace
