// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header lines that change in place, in one file and in a series.
#include "logic/headerfiles/WriteHeaderToFilesThread.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using tarvik::tests::TempFolder;
using Header = CbfHeaderWriter::Header;

const std::string head = "###CBF: VERSION 1.5\r\n_array_data.header_contents\r\n;\r\n";
const std::string tail =
    std::string("\r\n;\r\n# Wavelength 9 A\r\nbinary \x0c\x1a\x04\xd5\0;\n#", 38);

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
             {header({{&H::set_wavelength, 2.F}}),  // a line of binary data
              "#\x01# Wavelength 1 A\r\n# Wavelength 1 A",
              "#\x01# Wavelength 1 A\r\n# Wavelength 2 A"}}) {
        const TempFolder folder;
        const std::string path = folder.write("x.cbf", head + row.before + tail);
        CbfHeaderWriter writer;
        writer.setNeXuS(row.header);
        writer.write(path);
        EXPECT_EQ(read(path), head + row.after + tail);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1)
            << "no temporary file stays";
    }
}

TEST(CbfHeader, OneMissingLineIsAddedAtTheEnd)
{
    const TempFolder folder;
    const std::string path = folder.write("x.cbf", head + "# Other" + tail);
    CbfHeaderWriter writer;
    writer.setNeXuS(
        header({{&Header::set_rotation_angle_step, 0.1F}, {&Header::set_rotation_angle, 1.F}}));
    writer.write(path);
    EXPECT_EQ(read(path), head + "# Other\r\n# Start_angle 1 deg\r\n" + tail.substr(2));
    writer.write(path);
    EXPECT_EQ(read(path), head + "# Other\r\n# Start_angle 1 deg\r\n# Angle_increment 0.1 deg\r\n" +
                              tail.substr(2));
}

TEST(CbfHeader, FailuresAreToldAndChangeNothing)
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
        folder.write(name(number), head + "# Start_angle 0 deg\r\n# Wavelength 1 A" + tail);
    }
    std::string line(int number) const
    {
        const std::string text = read(folder / name(number));
        return text.substr(head.size(), text.find('\r', head.size()) - head.size());
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
