// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// CBF files that are cut, lie about themselves or want to fill the memory.
#include "tests/imagelib/io/hostile/HostileFile.h"
#include "tests/support/Packed.h"
#include "tests/support/TempFolder.h"

#include <map>

namespace tarvik::tests {

namespace {

using Lines = std::map<std::string, std::string>;

/// A file of 4 x 3 pixels, all 1, with some of its lines replaced; an empty text drops the line.
std::string cbf(const Lines& other = {},
                const std::string& data = std::string("\1", 1) + std::string(11, '\0'))
{
    Lines lines = {
        {"Content-Type", "application/octet-stream;\r\n conversions=\"x-CBF_BYTE_OFFSET\""},
        {"Content-Transfer-Encoding", "BINARY"},
        {"X-Binary-Size", std::to_string(data.size())},
        {"X-Binary-Element-Type", "\"signed 32-bit integer\""},
        {"X-Binary-Element-Byte-Order", "LITTLE_ENDIAN"},
        {"X-Binary-Number-of-Elements", "12"},
        {"X-Binary-Size-Fastest-Dimension", "4"},
        {"X-Binary-Size-Second-Dimension", "3"}};
    for (const auto& [key, value] : other)
        lines[key] = value;
    std::string text =
        "###CBF: VERSION 1.5\r\n\r\ndata_x\r\n\r\n_array_data.header_contents\r\n;\r\n"
        "# Exposure_time 1.5 s\r\n;\r\n\r\n_array_data.data\r\n;\r\n"
        "--CIF-BINARY-FORMAT-SECTION--\r\n";
    for (const auto& [key, value] : lines)
        if (!value.empty())
            text += key + ": " + value + "\r\n";
    return text + "\r\n\x0c\x1a\x04\xd5" + data + "\r\n--CIF-BINARY-FORMAT-SECTION----\r\n;\r\n";
}

struct CbfCase {
    const char* name;
    Lines lines;
    const char* text;  // of the failure; null when the file is readable
};

const Lines Plain = {{"Content-Type", "application/octet-stream"}};

}  // namespace

TEST(HostileCbf, HeadsThatLie)
{
    const TempFolder folder;
    expectReadable(folder.write("good.cbf", cbf()));
    const std::string huge = "9223372036854775807";
    const CbfCase cases[] = {
        {"no width",
         {{"X-Binary-Size-Fastest-Dimension", ""}},
         "width and height of the image are missing"},
        {"width 0",
         {{"X-Binary-Size-Fastest-Dimension", "0"}},
         "width and height of the image are missing"},
        {"negative width",
         {{"X-Binary-Size-Fastest-Dimension", "-4"}},
         "X-Binary-Size-Fastest-Dimension is no count but \"-4\""},
        {"width that is no number",
         {{"X-Binary-Size-Fastest-Dimension", "four"}},
         "is no count but \"four\""},
        {"huge width",
         {{"X-Binary-Size-Fastest-Dimension", huge}},
         "an image of 9223372036854775807 x 3 x 1 pixels is not possible"},
        {"width beyond 64 bits",
         {{"X-Binary-Size-Fastest-Dimension", huge + huge}},
         "is no count but"},
        {"height 0", {{"X-Binary-Size-Second-Dimension", "0"}}, nullptr},
        {"product beyond 32 bits",
         {{"X-Binary-Size-Fastest-Dimension", "65536"},
          {"X-Binary-Size-Second-Dimension", "65536"},
          {"X-Binary-Number-of-Elements", "0"}},
         "pixel data ends after 12 of 4294967296 pixels"},
        {"product that wraps to the true size",
         {{"X-Binary-Size-Fastest-Dimension", "65537"},
          {"X-Binary-Size-Second-Dimension", "65535"},
          {"X-Binary-Number-of-Elements", "4294967295"}},
         "pixel data ends after 12 of 4294967295 pixels"},
        {"product beyond 64 bits",
         {{"X-Binary-Size-Fastest-Dimension", "2147483647"},
          {"X-Binary-Size-Second-Dimension", "2147483647"},
          {"X-Binary-Number-of-Elements", ""}},
         "pixel data ends after 12 of 4611686014132420609 pixels"},
        {"30000 x 30000",
         {{"X-Binary-Size-Fastest-Dimension", "30000"},
          {"X-Binary-Size-Second-Dimension", "30000"},
          {"X-Binary-Number-of-Elements", "900000000"}},
         "pixel data ends after 12 of 900000000 pixels"},
        {"more elements than pixels", {{"X-Binary-Number-of-Elements", "13"}}, nullptr},
        {"bytes 0", {{"X-Binary-Size", "0"}}, nullptr},
        {"one byte short", {{"X-Binary-Size", "11"}}, "pixel data ends after 11 of 12 pixels"},
        {"negative bytes", {{"X-Binary-Size", "-1"}}, "X-Binary-Size is no count but \"-1\""},
        {"bytes beyond the file", {{"X-Binary-Size", "4000000000"}}, nullptr},
        {"bytes beyond 64 bits", {{"X-Binary-Size", huge + huge}}, "X-Binary-Size is no count"},
        {"unknown type",
         {{"X-Binary-Element-Type", "\"unsigned 24-bit integer\""}},
         "pixels of type \"unsigned 24-bit integer\" are not known"},
        {"unknown packing",
         {{"Content-Type", "application/octet-stream; conversions=\"x-CBF_WHATEVER\""}},
         "conversion"},
        {"unknown encoding", {{"Content-Transfer-Encoding", "X-WHATEVER"}}, "transfer encoding"},
        {"base64 of bytes that are none",
         {{"Content-Transfer-Encoding", "BASE64"}},
         "character 1 does not belong to BASE64 text"},
        {"plain pixels of packed size", Plain, "pixel data ends after 3 of 12 pixels"},
    };
    for (const CbfCase& each : cases) {
        SCOPED_TRACE(each.name);
        const std::string path = folder.write("lie.cbf", cbf(each.lines));
        if (each.text)
            expectFailure(path, each.text);
        else
            expectReadable(path);
    }
}

TEST(HostileCbf, EveryCutIsAFailure)
{
    const TempFolder folder;
    const std::string whole = cbf();
    const std::size_t pixelsEnd = whole.find("\r\n--CIF-BINARY-FORMAT-SECTION----");
    for (std::size_t size = 0; size < pixelsEnd; ++size) {
        SCOPED_TRACE(size);
        expectFailure(folder.write("cut.cbf", whole.substr(0, size)), "");
    }
    // Behind the last pixel nothing is needed.
    expectReadable(folder.write("cut.cbf", whole.substr(0, pixelsEnd)));
}

TEST(HostileCbf, StreamsThatEndEarlyOrHoldTooMuch)
{
    const TempFolder folder;
    const std::string rows(11, '\1');
    const std::pair<const char*, std::string> streams[] = {
        {"after 11 of 12 pixels", rows},               // one is missing
        {"after 11 of 12 pixels", rows + "\x80"},      // an escape alone
        {"after 11 of 12 pixels", rows + "\x80\x01"},  // half a value
        {"after 10 of 12 pixels",
         rows.substr(1) + std::string("\x80\x00\x80\1", 4)}  // an escape in it
    };
    for (const auto& [text, stream] : streams) {
        const std::string path = folder.write("stream.cbf", cbf({}, stream));
        expectFailure(path, text);
    }
    // What follows the last pixel is padding.
    expectReadable(folder.write("long.cbf", cbf({}, std::string(5000, '\1'))));
}

TEST(HostileCbf, FilesThatUnpackToMoreThanTheMachineHas)
{
    const TempFolder folder;
    // Two megabytes that stand for gigabytes.
    for (const bool gzip : {true, false}) {
        std::string bomb;
        const std::string member = gzip ? gzipPacked(std::string(16 << 20, '\0'))
                                        : bzip2Packed(std::string(64 << 20, '\0'));
        while (bomb.size() < std::size_t(2) << 20)
            bomb += member;
        const std::string path = folder.write("bomb.cbf.packed", bomb);
        expectFailure(path, "unpack to more than");
    }
}

}  // namespace tarvik::tests
