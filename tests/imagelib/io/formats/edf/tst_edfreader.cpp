// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// EDF blocks of every kind: types, headers, compression, several frames, pixels elsewhere.
#include "tests/imagelib/io/formats/edf/EdfCases.h"
#include "tests/support/Packed.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <chrono>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

struct TypeCase {
    const char* names;
    const char* shown;
};

class EdfType : public testing::TestWithParam<TypeCase> {};

TEST_P(EdfType, HasManyNamesAndTwoByteOrders)
{
    // Eight bytes that differ, cut to the width of the type.
    const std::string type(GetParam().shown, std::strcspn(GetParam().shown, " "));
    const std::size_t width = std::stoul(type.substr(type.find_first_of("0123456789"))) / 8;
    const std::string low = std::string("\xf0\xe1\xd2\xc3\xb4\xa5\x96\x40").substr(8 - width);
    const std::string high(low.rbegin(), low.rend());
    std::istringstream names(GetParam().names);
    for (std::string name; names >> name;)
        for (const auto& [order, bytes] : {std::pair("LowByteFirst", low), {"HighByteFirst", high}})
            EXPECT_EQ(shown(openBytes(headerOf("DataType = " + name + " ;\nByteOrder = " + order +
                                               " ;\nDim_1 = 1 ;\nDim_2 = 1 ;\n") +
                                      bytes)
                                ->frame(0)),
                      GetParam().shown)
                << name << ' ' << order;
}

INSTANTIATE_TEST_SUITE_P(
    Names, EdfType,
    testing::Values(
        TypeCase{"SignedByte Signed8 signedbyte", "INT8 1x1: 64"},
        TypeCase{"UnsignedByte Unsigned8", "UINT8 1x1: 64"},
        TypeCase{"SignedShort Signed16", "INT16 1x1: 16534"},
        TypeCase{"UnsignedShort Unsigned16 UNSIGNEDSHORT", "UINT16 1x1: 16534"},
        TypeCase{"SignedInteger SignedLong Signed32", "INT32 1x1: 1083614644"},
        TypeCase{"UnsignedInteger UnsignedLong Unsigned32", "UINT32 1x1: 1083614644"},
        TypeCase{"Signed64", "INT64 1x1: 4654089460732060144"},
        TypeCase{"Unsigned64", "UINT64 1x1: 4654089460732060144"},
        TypeCase{"FloatValue FLOATVALUE Float FLOAT Float32 FloatIEEE32", "FLOAT32 1x1: 4.70773"},
        TypeCase{"DoubleValue Double FloatIEEE64 DoubleIEEE64 Float64", "FLOAT64 1x1: 1449.43"}));

TEST(EdfType, IsUnsignedShortLowByteFirstUnlessSaid)
{
    EXPECT_EQ(shown(openBytes(headerOf("Dim_1 = 2 ;\n") + "\x01\x02\x03\x04")->frame(0)),
              "UINT16 2x1: 513 1027");
}

struct HeaderCase {
    const char* name;
    std::string bytes;
};

class EdfHeaderForm : public testing::TestWithParam<HeaderCase> {};

TEST_P(EdfHeaderForm, GivesTheSamePixels)
{
    EXPECT_EQ(failureOf(GetParam().bytes), "no failure");
    const auto file = openBytes(GetParam().bytes);
    EXPECT_EQ(file->frameCount(), 1u);
    EXPECT_EQ(shown(file->frame(0)), "UINT16 2x2: 1 2 3 32125");
}

using namespace std::string_literals;
const std::string Keys = "DataType=UnsignedShort;Dim_1=2;Dim_2=2;Size=8;";
// The last pixel is "}}": no end of a header is to be looked for in pixels.
const std::string Pixels = "\1\0\2\0\3\0}}"s;

INSTANTIATE_TEST_SUITE_P(
    Form, EdfHeaderForm,
    testing::Values(
        HeaderCase{"Shortest", "{" + Keys + "}\n" + Pixels},
        HeaderCase{"NewLineFirst", "\n{\n" + Keys + "}\n" + Pixels},
        HeaderCase{"CrLfAndEdf",
                   "{\r\nEDF_DataBlockID = 1.Image.Psd ;\r\n" + Keys + "}\r\n" + Pixels},
        HeaderCase{"CrLfFirst", "\r\n{\r\nEDF_HeaderSize = word ;\r\n" + Keys + "}\r\n" + Pixels},
        HeaderCase{"BraceAndCrInAValue", "{title = a}\rb ;" + Keys + "}\n" + Pixels},
        HeaderCase{"KeysWithoutCase",
                   "{datatype=unsignedshort;DIM_1=2;dim_2=2;SIZE=8;}\n" + Pixels},
        HeaderCase{"LastDuplicateWins", "{Dim_1=7;DataType=Float;" + Keys + "}\n" + Pixels},
        HeaderCase{"NonAscii", "{t\xc3\xa9 = \xb5\xff ;" + Keys + "}\n" + Pixels},
        HeaderCase{"ValueWithEquals", "{title = a = b = c ;" + Keys + "}\n" + Pixels},
        HeaderCase{"EmptyStatements", "{a=;;;  ;\n=3;b;" + Keys + "}\n" + Pixels},
        HeaderCase{"Padded", headerOf(Keys) + Pixels},
        HeaderCase{"SizeMissing", "{Dim_1=2;Dim_2=2;}\n" + Pixels},
        HeaderCase{"SizeHalf", "{" + Keys + "Size=4;}\n" + Pixels},
        HeaderCase{"SizeDouble", "{" + Keys + "Size=16;}\n" + Pixels},
        HeaderCase{"SizeAbsurd", "{" + Keys + "Size=99999999999999999999;}\n" + Pixels},
        HeaderCase{"SizeLargest", "{" + Keys + "Size=18446744073709551615;}\n" + Pixels},
        HeaderCase{"BinarySizeHolds", "{" + Keys + "EDF_BinarySize=8;Size=1;}\n" + Pixels},
        HeaderCase{"ShortTail", "{" + Keys + "}\n" + Pixels + "\n \0"s},
        HeaderCase{"NoCompression", "{" + Keys + "Compression = NO_SPECIFIC ;}\n" + Pixels},
        HeaderCase{"PlaneOfOne", "{" + Keys + "Dim_3 = 1; Dim_4 = 1;}\n" + Pixels}),
    [](const auto& row) { return row.param.name; });

TEST(EdfHeaderForm, LeavesLineEndsToThePixels)
{
    EXPECT_EQ(shown(openBytes("{DataType=UnsignedByte;Dim_1=2;}\n\r\n")->frame(0)),
              "UINT8 2x1: 13 10");
    EXPECT_EQ(shown(openBytes("{DataType=UnsignedByte;Dim_1=3;}\r\n\n}\n")->frame(0)),
              "UINT8 3x1: 10 125 10");
}

TEST(EdfHeaderForm, EndsAnywhere)
{
    // The end mark straddles the limits of the pieces in which a header is read.
    for (const std::size_t size :
         {511u, 512u, 513u, 4095u, 4096u, 4097u, 8194u, 16383u, 16384u, 16385u, 300000u})
        for (const std::string end : {"}\n", "}\r\n"}) {
            std::string header = "{" + Keys + "comment = ";
            header.append(size - header.size() - end.size() - 1, 'x');
            EXPECT_EQ(shown(openBytes(header + ";" + end + Pixels)->frame(0)),
                      "UINT16 2x2: 1 2 3 32125")
                << size << end.size();
        }
}

struct PackedCase {
    const char* name;
    std::string (*pack)(const std::string&);
};

class EdfPacked : public testing::TestWithParam<PackedCase> {};

TEST_P(EdfPacked, BlocksAreUnpacked)
{
    const std::vector<std::uint16_t> pixels = {1, 2, 3, 4, 5, 65535};
    for (const bool bigEndian : {false, true}) {
        const std::string packed = GetParam().pack(valueBytes(pixels, bigEndian));
        const std::string header =
            "Dim_1 = 3 ; Dim_2 = 2 ; Compression = "s + GetParam().name +
            " ; ByteOrder = " + (bigEndian ? "HighByteFirst" : "LowByteFirst") + " ;";
        const std::string block =
            headerOf(header + "Size = " + std::to_string(packed.size()) + " ;") + packed;
        const auto file = openBytes(block + block + headerOf(header) + packed);
        ASSERT_EQ(file->frameCount(), 3u);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_EQ(shown(file->frame(i)), "UINT16 3x2: 1 2 3 4 5 65535");
    }
}

TEST_P(EdfPacked, DamageIsToldWithFrameAndFile)
{
    const std::string packed = GetParam().pack(valueBytes<std::uint16_t>({1, 2, 3}));
    const std::string keys = "Dim_1 = 3 ; Compression = "s + GetParam().name + " ;";
    EXPECT_THAT(failureOf(headerOf(keys + "Dim_2 = 2 ;") + packed),
                HasSubstr("EDF: pixel data of frame 0 ends after 6 of 12 bytes: /data/x.edf"));
    EXPECT_THAT(failureOf(headerOf("Dim_2 = 1 ;" + keys + "Dim_1 = 2 ;") + packed),
                HasSubstr("unpack to more than 4 bytes: /data/x.edf"));
    EXPECT_THAT(failureOf(headerOf(keys + "Dim_2 = 1000000000 ;") + packed),
                HasSubstr("compressed bytes can't hold the 6000000000 bytes of frame 0: /data"));
    for (std::size_t size = 0; size < packed.size(); ++size)
        EXPECT_NE(failureOf(headerOf(keys) + packed.substr(0, size)), "no failure") << size;
}

INSTANTIATE_TEST_SUITE_P(Kind, EdfPacked,
                         testing::Values(PackedCase{"gzip", gzipPacked},
                                         PackedCase{"ZLIB", zlibPacked},
                                         PackedCase{"bzip2", bzip2Packed}),
                         [](const auto& row) { return row.param.name; });

TEST(EdfFrames, FollowEachOther)
{
    // Frames may differ in all but the format; a block larger than its pixels has padding.
    const std::string bytes = blockOf(2, {1, 2}) + blockOf(1, {3}, "Size = 512 ;\n") +
                              std::string(510, '\0') + "\n" + blockOf(3, {4, 5, 6}) + "\r\n" +
                              blockOf(1, {7});
    const auto file = openBytes(bytes);
    EXPECT_EQ(shown(file->frame(2)), "UINT16 3x1: 4 5 6");
    EXPECT_EQ(file->frameCount(), 4u);
    EXPECT_EQ(shown(file->frame(0)), "UINT16 2x1: 1 2");
    EXPECT_EQ(shown(file->frame(1)), "UINT16 1x1: 3");
    EXPECT_EQ(shown(file->frame(3)), "UINT16 1x1: 7");
    EXPECT_THROW(file->frame(4), MOutOfRangeException);
}

TEST(EdfFrames, TakeDefaultsFromAGeneralHeader)
{
    const std::string general =
        headerOf("EDF_DataFormatVersion = 2.40 ;\nDataType = SignedByte ;\nSampleDistance = 0.5 ;\n"
                 "WaveLength = 1e-10 ;\n");
    const std::string bytes = general + headerOf("Dim_1 = 2 ;\nWaveLength = 2e-10 ;\n") + "\1\2" +
                              headerOf("Dim_1 = 1 ;\n") + "\3";
    const auto file = openBytes(bytes);
    ASSERT_EQ(file->frameCount(), 2u);
    const MImage first = file->frame(0);
    EXPECT_EQ(shown(first), "INT8 2x1: 1 2");
    EXPECT_FLOAT_EQ(*first.optionalData().detector_distance(), 0.5f);
    EXPECT_FLOAT_EQ(*first.optionalData().wavelength(), 2.0f);
    EXPECT_EQ(*first.optionalData().rawHeader(),
              "{\nEDF_DataFormatVersion = 2.40 ;\nDataType = SignedByte ;\nSampleDistance = 0.5 ;\n"
              "WaveLength = 1e-10 ;\n}\n{\nDim_1 = 2 ;\nWaveLength = 2e-10 ;\n}\n");
    EXPECT_FLOAT_EQ(*file->frame(1).optionalData().wavelength(), 1.0f);
}

TEST(EdfFrames, OfAStackAreItsPlanes)
{
    const std::string stack =
        blockOf(2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, "Dim_2 = 2 ;\nDim_3 = 3 ;\n");
    const auto file = openBytes(stack + blockOf(1, {99}) + stack);
    EXPECT_EQ(file->frameCount(), 7u);
    EXPECT_EQ(shown(file->frame(1)), "UINT16 2x2: 5 6 7 8");
    EXPECT_EQ(shown(file->frame(3)), "UINT16 1x1: 99");
    EXPECT_EQ(shown(file->frame(6)), "UINT16 2x2: 9 10 11 12");
    const std::string packed = gzipPacked(valueBytes<std::uint16_t>({1, 2, 3, 4}));
    EXPECT_EQ(
        shown(openBytes(headerOf("Dim_1=1;Dim_2=2;Dim_3=2;Compression=gzip;") + packed)->frame(1)),
        "UINT16 1x2: 3 4");
}

TEST(EdfFrames, OfAStackBeyondAllMemoryAreAFailure)
{
    // A compressed block of this size could hold the terabyte that its header announces.
    const std::string header = headerOf("Dim_1=512;Dim_2=1;Dim_3=1073741824;Compression=bzip2;");
    EXPECT_THAT(failureOf(header + std::string(std::size_t(600) << 10, 'x')),
                HasSubstr("Not enough memory"));
}

TEST(EdfFrames, AppearWhenAWriterAddsThem)
{
    const TempFolder folder;
    const std::string block = blockOf(2, {1, 2});
    const std::string path = folder.write("x.edf", block + block.substr(0, 40));
    const auto file = openEdf(ByteSource::open(path));
    EXPECT_EQ(file->frameCount(), 2u);  // one of them is not complete
    EXPECT_THROW(file->frame(1), MRuntimeException);
    folder.write("x.edf", block + block.substr(0, block.size() - 1));
    file->update();
    EXPECT_EQ(file->frameCount(), 2u);
    EXPECT_THROW(file->frame(1), MRuntimeException);
    folder.write("x.edf", block + block + block);
    file->update();
    EXPECT_EQ(file->frameCount(), 3u);
    EXPECT_EQ(shown(file->frame(1)), "UINT16 2x1: 1 2");
    EXPECT_EQ(file->framePath(2), path);
}

TEST(EdfFrames, TwentyThousandAreIndexedQuickly)
{
    const TempFolder folder;
    std::string bytes;
    for (int i = 0; i < 20000; ++i)
        bytes += blockOf(2, {std::uint16_t(i), 1});
    const auto file = openEdf(ByteSource::open(folder.write("x.edf", bytes)));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(file->frameCount(), 20000u);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(shown(file->frame(19999)), "UINT16 2x1: 19999 1");
    RecordProperty("index_seconds", std::to_string(time.count()));
    EXPECT_LT(time.count(), 3.0);  // 0.1 s where nothing else runs
}

TEST(EdfExternal, PixelsMayLieBeside)
{
    const TempFolder folder;
    folder.write("pixels.bin", "head" + valueBytes<std::uint16_t>({1, 2, 3, 4}));
    const std::string keys = "Dim_1 = 2 ;\nEDF_BinaryFileName = /elsewhere/pixels.bin ;\n";
    const std::string path = folder.write(
        "x.edf", headerOf(keys + "EDF_BinaryFilePosition = 4 ;\nEDF_BinaryFileSize = 4 ;\n") +
                     headerOf(keys + "EDF_BinaryFilePosition = 8 ;\n") +
                     headerOf(keys + "EDF_BinaryFilePosition = 10 ;\n") +
                     headerOf("Dim_1 = 1 ;\nEDF_BinaryFileName = none.bin ;\n"));
    const auto file = openEdf(ByteSource::open(path));
    ASSERT_EQ(file->frameCount(), 4u);
    EXPECT_EQ(shown(file->frame(0)), "UINT16 2x1: 1 2");
    EXPECT_EQ(shown(file->frame(1)), "UINT16 2x1: 3 4");
    const auto failure = [&](std::size_t frame) -> std::string {
        try {
            file->frame(frame);
        } catch (const MException& exception) {
            return exception.what();
        }
        return "no failure";
    };
    EXPECT_EQ(failure(2),
              "EDF: pixel data of frame 2 ends after 2 of 4 bytes: " + (folder / "pixels.bin"));
    EXPECT_THAT(failure(3), HasSubstr(folder / "none.bin"));
    EXPECT_EQ(file->framePath(1), path);
}

void runPeer(const char* action, const TempFolder& folder)
{
    const std::string command = std::string(TARVIK_PYTHON) + " " + TARVIK_SOURCE_DIR +
                                "/tests/imagelib/io/formats/edf/peer_edf.py " + action + " " +
                                folder.path() + " 2>" + (folder / "log");
    ASSERT_EQ(std::system(command.c_str()), 0) << std::ifstream(folder / "log").rdbuf();
}

TEST(EdfPeers, FilesOfOthersAreReadExactly)
{
    const TempFolder folder;
    runPeer("write", folder);
    std::size_t frames = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        if (entry.path().extension() != ".edf")
            continue;
        const auto file = openEdf(ByteSource::open(entry.path()));
        const bool many = entry.path().stem().string().starts_with("many");
        ASSERT_EQ(file->frameCount(), many ? 3u : 1u) << entry.path();
        for (std::size_t i = 0; i < file->frameCount(); ++i, ++frames) {
            const MImage image = file->frame(i);
            std::filesystem::path raw = entry.path();
            raw.replace_extension("." + std::to_string(i) + ".raw");
            std::ifstream stream(raw, std::ios::binary);
            const std::string expected(std::istreambuf_iterator<char>(stream), {});
            ASSERT_EQ(image.dataSize(), expected.size()) << raw;
            EXPECT_EQ(std::memcmp(image.cdata(), expected.data(), expected.size()), 0) << raw;
            EXPECT_FLOAT_EQ(*image.optionalData().beam_center_x(), 31.5f);
        }
    }
    EXPECT_EQ(frames, 40u);
}

TEST(EdfPeers, AgreeOnHandMadeFiles)
{
    // What fabio reads but does not write: the other byte order and compressed blocks.
    const TempFolder folder;
    const std::vector<std::int32_t> pixels = {1, -2, 2147483647, 4, 5, -2147483647};
    const std::string keys = "DataType = SignedInteger ;\nDim_1 = 3 ;\nDim_2 = 2 ;\n";
    const auto add = [&](const std::string& name, const std::string& more,
                         const std::string& data) {
        const std::string path = folder.write(
            name + ".edf",
            headerOf(keys + more + "Size = " + std::to_string(data.size()) + " ;\n") + data);
        folder.write(name + ".int32.3.raw", valueBytes(pixels));
        EXPECT_EQ(shown(openEdf(ByteSource::open(path))->frame(0)),
                  "INT32 3x2: 1 -2 2147483647 4 5 -2147483647");
    };
    add("big", "ByteOrder = HighByteFirst ;\n", valueBytes(pixels, true));
    add("gzip", "ByteOrder = LowByteFirst ;\nCompression = gzip ;\n",
        gzipPacked(valueBytes(pixels)));
    add("zlib", "ByteOrder = LowByteFirst ;\nCompression = zlib ;\n",
        zlibPacked(valueBytes(pixels)));
    runPeer("check", folder);
}

}  // namespace
