// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// EDF files that are cut, lie about themselves or lead elsewhere.
#include "tests/imagelib/io/hostile/HostileFile.h"
#include "tests/support/Packed.h"
#include "tests/support/TempFolder.h"

#include <filesystem>
#include <sys/stat.h>

namespace tarvik::tests {

namespace {

/// A header of 512 bytes with some lines, and data.
std::string edf(const std::string& lines, const std::string& data = std::string(24, '\1'))
{
    std::string text =
        "{\nHeaderID = EH:000001:000000:000000 ;\nByteOrder = LowByteFirst ;\n" + lines;
    text.resize(510, ' ');
    return text + "}\n" + data;
}

struct EdfCase {
    const char* name;
    std::string lines;
    const char* text;  // of the failure; null when the file is readable
};

}  // namespace

TEST(HostileEdf, HeadsThatLie)
{
    const TempFolder folder;
    const std::string good = "DataType = UnsignedShort ;\nDim_1 = 4 ;\nDim_2 = 3 ;\n";
    expectReadable(folder.write("good.edf", edf(good)));
    folder.write("short.bin", "abc");
    std::filesystem::create_directory(folder / "folder");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const std::string type = "DataType = UnsignedShort ;\n";
    const EdfCase cases[] = {
        {"no size", type, "the header has no Dim_1"},
        {"width 0", type + "Dim_1 = 0 ;\nDim_2 = 3 ;\n", "Dim_1 can't be \"0\""},
        {"negative height", type + "Dim_1 = 4 ;\nDim_2 = -3 ;\n", "Dim_2 can't be \"-3\""},
        {"sizes that are no numbers", type + "Dim_1 = four ;\nDim_2 = three ;\n", "Dim_1 can't be"},
        {"product beyond 32 bits", type + "Dim_1 = 65536 ;\nDim_2 = 65536 ;\n",
         "ends after 24 of 8589934592 bytes"},
        {"product that wraps to the true size", type + "Dim_1 = 4294967300 ;\nDim_2 = 3 ;\n",
         "Dim_1 can't be"},
        {"product beyond 64 bits",
         type + "Dim_1 = 9223372036854775807 ;\nDim_2 = 9223372036854775807 ;\n", "Dim_1 can't be"},
        {"30000 x 30000", type + "Dim_1 = 30000 ;\nDim_2 = 30000 ;\n",
         "ends after 24 of 1800000000 bytes"},
        {"a third dimension beyond all", type + "Dim_1 = 4 ;\nDim_2 = 3 ;\nDim_3 = 4294967296 ;\n",
         "Dim_3 can't be"},
        {"unknown type", "DataType = Quaternion ;\nDim_1 = 4 ;\nDim_2 = 3 ;\n", "is not read"},
        {"bytes beyond the file", good + "EDF_BinarySize = 18446744073709551615 ;\n", nullptr},
        {"header beyond the file", good + "EDF_HeaderSize = 4294967296 ;\n", nullptr},
        {"data in a file that is missing", good + "EDF_BinaryFileName = none.bin ;\n",
         "No such file"},
        {"data in a file that is too short", good + "EDF_BinaryFileName = short.bin ;\n",
         "ends after 3 of 24 bytes"},
        {"data in a folder", good + "EDF_BinaryFileName = folder ;\n", "it is a directory"},
        {"data in a pipe", good + "EDF_BinaryFileName = pipe ;\n", "it is no regular file"},
        {"data in another folder", good + "EDF_BinaryFileName = ../../etc/passwd ;\n",
         "No such file"},
        {"data far beyond the end",
         good + "EDF_BinaryFileName = lie.edf ;\nEDF_BinaryFilePosition = 9223372036854775807 ;\n",
         "ends after 0 of 24 bytes"},
        {"packed data that are none", good + "Compression = GZIP ;\n",
         "Compressed data are damaged"},
        {"unknown packing", good + "Compression = Whatever ;\n", "is not read"},
    };
    for (const EdfCase& each : cases) {
        SCOPED_TRACE(each.name);
        const std::string path = folder.write("lie.edf", edf(each.lines));
        if (each.text)
            expectFailure(path, each.text);
        else
            expectReadable(path);
    }
}

TEST(HostileEdf, EveryCutIsAFailure)
{
    const TempFolder folder;
    const std::string whole = edf("DataType = UnsignedShort ;\nDim_1 = 4 ;\nDim_2 = 3 ;\n");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        expectFailure(folder.write("cut.edf", whole.substr(0, size)), "");
    }
}

TEST(HostileEdf, PackedDataThatAreCutOrUnpackToMore)
{
    const TempFolder folder;
    const std::string packed = gzipPacked(std::string(1 << 26, '\0'));
    const std::string head = "DataType = UnsignedShort ;\nDim_1 = 4 ;\nDim_2 = 3 ;\n"
                             "Compression = GZIP ;\nEDF_BinarySize = ";
    const std::string size = std::to_string(packed.size()) + " ;\n";
    expectFailure(folder.write("more.edf", edf(head + size, packed)), "unpack to more than 24");
    expectFailure(folder.write("cut.edf", edf(head + size, packed.substr(0, 20))), "");
}

TEST(HostileEdf, HeadersWithoutEnd)
{
    const TempFolder folder;
    expectFailure(folder.write("open.edf", "{\n" + std::string(32 << 20, ' ')), "");
    std::string keys = "{\n";
    while (keys.size() < std::size_t(8) << 20)
        keys += "key" + std::to_string(keys.size()) + " = value ;\n";
    expectFailure(folder.write("keys.edf", keys), "");
    // A million headers and not one image.
    std::string headers;
    while (headers.size() < std::size_t(4) << 20)
        headers += "{\n}\n";
    expectFailure(folder.write("headers.edf", headers), "");
}

}  // namespace tarvik::tests
