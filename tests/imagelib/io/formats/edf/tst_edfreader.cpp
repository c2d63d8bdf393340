// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// EDF blocks of every kind: types, headers, compression, several frames, pixels elsewhere, damage.
#include "imagelib/io/formats/edf/EdfReader.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/EdfText.h"
#include "tests/support/Packed.h"

#include <sys/stat.h>

#include <chrono>

namespace tarvik::tests {

using namespace std::string_literals;

namespace {

std::string failureOfBytes(const std::string& bytes) { return readingFailure(openEdf, bytes); }

std::string shownFrame(const std::string& bytes, std::size_t frame = 0)
{
    return shown(openBytes(openEdf, bytes)->frame(frame));
}

/// Bytes of 16-bit values, low byte first or high byte first.
std::string valueBytes(const std::vector<std::uint16_t>& values, bool bigEndian = false)
{
    std::string bytes;
    for (const auto value : values)
        for (const int shift : {bigEndian ? 8 : 0, bigEndian ? 0 : 8})
            bytes += static_cast<char>(value >> shift & 255);
    return bytes;
}

/// A block of 16-bit pixels, `width` in a row.
std::string blockOf(std::size_t width, const std::vector<std::uint16_t>& pixels,
                    const std::string& more = {})
{
    return edfFrame(pixels, width, more);
}

}  // namespace

TEST(EdfFields, AreRead)
{
    for (const auto& row : rowsOf(R"(
                                                   |
Center_1 = 12.5 ; Center_2 = -7 ;                  | beam_center_x=12.5;beam_center_y=-7;
SampleDistance = 0.25 ;                            | detector_distance=0.25;
SampleDistance = 909.99mm ;                        | detector_distance=0.90999;
SampleDistance = +25 cm ;                          | detector_distance=0.25;
WaveLength = 1.5e-10 ;                             | wavelength=1.5;
WaveLength = 1.5A ;                                | wavelength=1.5;
wavelength = 0.15 nm ;                             | wavelength=1.5;
Energy = 12.39842keV ;                             | wavelength=1;
Energy = 7.0keV ; WaveLength = 1e-10 ;             | wavelength=1;
Energy = 7 ;                                       |
Energy = 0 keV ;                                   |
PSize_1 = 1.72e-4 ; PSize_2 = 50 um ;              | x_pixel_size=0.000172;y_pixel_size=5e-05;
count_time = 2 ;                                   | count_time=2;
ExposureTime = 20 ms ; count_time = 2 ;            | count_time=0.02;
ExposureTime = Na ; count_time = 2 ;               | count_time=2;
count_time = Na ; Center_1 = nan ; Center_2 = inf ; |
Center_1 = 12.5mm ;                                |
SampleDistance = 1e300 ;                           |
count_time = ; Date = ;                            |
Date = Mon Mar  5 2024 ; time_of_day = 1.5 ;       | data_collection_date=Mon Mar  5 2024;
time_of_day = 1709618828.912 ;                     | data_collection_date=1709618828.912;
count_time = 2 ; COUNT_TIME = 3 ;                  | count_time=3;
Center_1 = 17.2mm ; PSize_1 = 172e-6 ;             | beam_center_x=100;x_pixel_size=0.000172;
Exposure time (ms) = 500 ; WaveLength = 1.5 ;      | wavelength=1.5;count_time=0.5;
SampleDistance = 2 fathoms ; SampleDistance = 909 ; |
title = # Pixel_size 172e-6 m x 172e-6 m ;         | x_pixel_size=0.000172;y_pixel_size=0.000172;
c0 = # Exposure_time 2 s\n# Flux 3 ; ExposureTime = 1 ; \
    | count_time=1;beam_flux=3;
HMStartTime = 2014-01-10 ; time_of_day = 1.5 ; Detector = A, S/N 5 ; \
    | data_collection_date=2014-01-10;description=A;detector_number=5;
)")) {
        const auto file = openBytes(openEdf, blockOf(1, {1}, row.at(0)));
        EXPECT_EQ(shown(file->frame(0).optionalData()), row.at(1)) << row[0];
    }
}

TEST(EdfFields, RawHeaderIsTheTextWithoutPadding)
{
    const auto file = openBytes(openEdf, "{\r\nDim_1 = 1 ;\r\nt\xe9 = 5 ;\r\n      }\r\n\1\2");
    EXPECT_EQ(*file->frame(0).optionalData().rawHeader(), "{\r\nDim_1 = 1 ;\r\nt\xe9 = 5 ;\n}\n");
}

TEST(EdfType, HasManyNamesAndTwoByteOrders)
{
    for (const auto& row : rowsOf(R"(
SignedByte Signed8 signedbyte                       | INT8 1x1: 64
UnsignedByte Unsigned8                              | UINT8 1x1: 64
SignedShort Signed16                                | INT16 1x1: 16534
UnsignedShort Unsigned16 UNSIGNEDSHORT              | UINT16 1x1: 16534
SignedInteger SignedLong Signed32                   | INT32 1x1: 1083614644
UnsignedInteger UnsignedLong Unsigned32             | UINT32 1x1: 1083614644
Signed64                                            | INT64 1x1: 4654089460732060144
Unsigned64                                          | UINT64 1x1: 4654089460732060144
FloatValue FLOATVALUE Float Float32 FloatIEEE32     | FLOAT32 1x1: 4.70773
DoubleValue Double FloatIEEE64 DoubleIEEE64 Float64 | FLOAT64 1x1: 1449.43
)")) {
        // Eight bytes that differ, cut to the width of the type.
        const std::string& shown = row.at(1);
        const std::size_t width = std::stoul(shown.substr(shown.find_first_of("0123456789"))) / 8;
        const std::string low = "\xf0\xe1\xd2\xc3\xb4\xa5\x96\x40"s.substr(8 - width);
        const std::string high(low.rbegin(), low.rend());
        std::istringstream names(row[0]);
        for (std::string name; names >> name;) {
            const std::string keys = "Dim_1 = 1 ;\nDataType = " + name + " ;\nByteOrder = ";
            EXPECT_EQ(shownFrame(edfHeader(keys + "LowByteFirst ;\n") + low), shown) << name;
            EXPECT_EQ(shownFrame(edfHeader(keys + "HighByteFirst ;\n") + high), shown) << name;
        }
    }
    EXPECT_EQ(shownFrame(edfHeader("Dim_1 = 2 ;\n") + "\x01\x02\x03\x04"), "UINT16 2x1: 513 1027");
}

TEST(EdfHeader, OfEveryFormGivesTheSamePixels)
{
    const std::string keys = "DataType=UnsignedShort;Dim_1=2;Dim_2=2;Size=8;";
    // The last pixel is "}}": no end of a header is to be looked for in pixels.
    const std::string pixels = "\1\0\2\0\3\0}}"s;
    std::vector<std::string> headers = {edfHeader(keys)};
    for (const auto& row : rowsOf(R"(
{KEYS}\n
\n{\nKEYS}\n
{\r\nEDF_DataBlockID = 1.Image.Psd ;\r\nKEYS}\r\n
\r\n{\r\nEDF_HeaderSize = word ;\r\nKEYS}\r\n
{title = a}\rb ;KEYS}\n
{datatype=unsignedshort;DIM_1=2;dim_2=2;SIZE=8;}\n
{Dim_1=7;DataType=Float;KEYS}\n
{tä = µ ;KEYS}\n
{title = a = b = c ;KEYS}\n
{a=;;;  ;\n=3;b;KEYS}\n
{Dim_1=2;Dim_2=2;}\n
{KEYSSize=4;}\n
{KEYSSize=16;}\n
{KEYSSize=99999999999999999999;}\n
{KEYSSize=18446744073709551615;}\n
{KEYSEDF_HeaderSize = 4294967296 ;}\n
{KEYSEDF_BinarySize=8;Size=1;}\n
{KEYSEDF_BinarySize = 18446744073709551615 ;}\n
{KEYSCompression = NO_SPECIFIC ;}\n
{KEYSDim_3 = 1; Dim_4 = 1;}\n
)")) {
        std::string header = row.at(0);
        if (const auto at = header.find("KEYS"); at != header.npos)
            header.replace(at, 4, keys);
        headers.push_back(header);
    }
    // The end mark straddles the limits of the pieces in which a header is read.
    for (const std::size_t size :
         {511u, 512u, 513u, 4095u, 4096u, 4097u, 8194u, 16383u, 16384u, 16385u, 300000u})
        for (const std::string end : {";}\n", ";}\r\n"}) {
            const std::string start = "{" + keys + "comment = ";
            headers.push_back(start + std::string(size - start.size() - end.size(), 'x') + end);
        }
    for (const std::string& header : headers) {
        const auto file = openBytes(openEdf, header + pixels);
        EXPECT_EQ(file->frameCount(), 1u) << header;
        EXPECT_EQ(shown(file->frame(0)), "UINT16 2x2: 1 2 3 32125") << header;
    }
    EXPECT_EQ(openBytes(openEdf, headers[0] + pixels + "\n \0"s)->frameCount(), 1u);
}

TEST(EdfHeader, LeavesLineEndsToThePixels)
{
    EXPECT_EQ(shownFrame("{DataType=UnsignedByte;Dim_1=2;}\n\r\n"), "UINT8 2x1: 13 10");
    EXPECT_EQ(shownFrame("{DataType=UnsignedByte;Dim_1=3;}\r\n\n}\n"), "UINT8 3x1: 10 125 10");
}

TEST(EdfPacked, BlocksAreUnpackedAndDamageIsTold)
{
    const std::vector<std::uint16_t> pixels = {1, 2, 3, 4, 5, 65535};
    for (const auto& [name, pack] :
         {std::pair("gzip"s, &gzipPacked), std::pair("ZLIB"s, &zlibPacked),
          std::pair("bzip2"s, &bzip2Packed)}) {
        SCOPED_TRACE(name);
        const std::string keys = "Dim_1 = 3 ; Compression = " + name + " ;";
        for (const bool bigEndian : {false, true}) {
            const std::string packed = pack(valueBytes(pixels, bigEndian));
            const std::string header = keys + "Dim_2 = 2 ; ByteOrder = " +
                                       (bigEndian ? "HighByteFirst ;" : "LowByteFirst ;");
            const std::string block =
                edfHeader(header + "Size = " + std::to_string(packed.size()) + " ;") + packed;
            const std::string bytes = block + block + edfHeader(header) + packed;
            for (const std::size_t frame : {0u, 1u, 2u})
                EXPECT_EQ(shownFrame(bytes, frame), "UINT16 3x2: 1 2 3 4 5 65535");
        }
        const std::string packed = pack(valueBytes({1, 2, 3}));
        EXPECT_EQ(failureOfBytes(edfHeader(keys + "Dim_2 = 2 ;") + packed),
                  "EDF: pixel data of frame 0 ends after 6 of 12 bytes: /data/x");
        EXPECT_THAT(failureOfBytes(edfHeader("Dim_2 = 1 ;" + keys + "Dim_1 = 2 ;") + packed),
                    HasSubstr("unpack to more than 4 bytes: /data/x"));
        EXPECT_THAT(failureOfBytes(edfHeader(keys + "Dim_2 = 1000000000 ;") + packed),
                    HasSubstr("compressed bytes can't hold the 6000000000 bytes of frame 0: /da"));
        for (std::size_t size = 0; size < packed.size(); ++size)
            EXPECT_NE(failureOfBytes(edfHeader(keys) + packed.substr(0, size)), "no failure");
    }
}

TEST(EdfFrames, FollowEachOther)
{
    // Frames may differ in all but the format; a block larger than its pixels has padding.
    const auto file = openBytes(openEdf, blockOf(2, {1, 2}) + blockOf(1, {3}, "Size = 512 ;\n") +
                                             std::string(510, '\0') + "\n" + blockOf(3, {4, 5, 6}) +
                                             "\r\n" + blockOf(1, {7}));
    EXPECT_EQ(shown(file->frame(2)), "UINT16 3x1: 4 5 6");
    EXPECT_EQ(file->frameCount(), 4u);
    EXPECT_EQ(shown(file->frame(0)), "UINT16 2x1: 1 2");
    EXPECT_EQ(shown(file->frame(1)), "UINT16 1x1: 3");
    EXPECT_EQ(shown(file->frame(3)), "UINT16 1x1: 7");
    EXPECT_THROW(file->frame(4), MOutOfRangeException);
}

TEST(EdfFrames, TakeDefaultsFromAGeneralHeader)
{
    const std::string general = "EDF_DataFormatVersion = 2.40 ;\nDataType = SignedByte ;\n"
                                "SampleDistance = 0.5 ;\nWaveLength = 1e-10 ;\n";
    const std::string own = "Dim_1 = 2 ;\nWaveLength = 2e-10 ;\n";
    const auto file = openBytes(openEdf, edfHeader(general) + edfHeader(own) + "\1\2" +
                                             edfHeader("Dim_1 = 1 ;\n") + "\3");
    ASSERT_EQ(file->frameCount(), 2u);
    const MImage first = file->frame(0);
    EXPECT_EQ(shown(first), "INT8 2x1: 1 2");
    EXPECT_EQ(shown(first.optionalData()), "detector_distance=0.5;wavelength=2;");
    EXPECT_EQ(*first.optionalData().rawHeader(), "{\n" + general + "}\n{\n" + own + "}\n");
    EXPECT_EQ(shown(file->frame(1).optionalData()), "detector_distance=0.5;wavelength=1;");
}

TEST(EdfFrames, OfAStackAreItsPlanes)
{
    const std::string stack =
        blockOf(2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, "Dim_2 = 2 ;\nDim_3 = 3 ;\n");
    const auto file = openBytes(openEdf, stack + blockOf(1, {99}) + stack);
    EXPECT_EQ(file->frameCount(), 7u);
    EXPECT_EQ(shown(file->frame(1)), "UINT16 2x2: 5 6 7 8");
    EXPECT_EQ(shown(file->frame(3)), "UINT16 1x1: 99");
    EXPECT_EQ(shown(file->frame(6)), "UINT16 2x2: 9 10 11 12");
    const std::string packed = gzipPacked(valueBytes({1, 2, 3, 4}));
    EXPECT_EQ(shownFrame(edfHeader("Dim_1=1;Dim_2=2;Dim_3=2;Compression=gzip;") + packed, 1),
              "UINT16 1x2: 3 4");
    // A compressed block of this size could hold the terabyte that its header announces.
    const std::string header = edfHeader("Dim_1=512;Dim_2=1;Dim_3=1073741824;Compression=bzip2;");
    EXPECT_THAT(failureOfBytes(header + std::string(std::size_t(600) << 10, 'x')),
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

/// Counts what is read of a file.
class CountingSource : public ByteSource {
public:
    explicit CountingSource(std::shared_ptr<const ByteSource> file)
        : ByteSource(file->path())
        , _file(std::move(file))
    {}
    std::uint64_t size() const override { return _file->size(); }
    std::size_t readSome(std::uint64_t offset, void* target, std::size_t count) const override
    {
        ++reads;
        const std::size_t got = _file->readSome(offset, target, count);
        bytes += got;
        return got;
    }

    mutable std::uint64_t reads = 0;
    mutable std::uint64_t bytes = 0;

private:
    std::shared_ptr<const ByteSource> _file;
};

TEST(EdfFrames, TwentyThousandAreIndexedByOneLookAtEachHeader)
{
    std::string bytes;
    for (int i = 0; i < 20000; ++i)
        bytes += blockOf(2, {std::uint16_t(i), 1});
    const TempFolder folder;
    const auto source =
        std::make_shared<CountingSource>(ByteSource::open(folder.write("x.edf", bytes)));
    const auto file = openEdf(source);
    EXPECT_EQ(file->frameCount(), 20000u);
    EXPECT_LT(source->reads, 3 * 20000u);
    EXPECT_LT(source->bytes, 3 * bytes.size());
    EXPECT_EQ(shown(file->frame(19999)), "UINT16 2x1: 19999 1");
}

TEST(EdfExternal, PixelsMayLieBeside)
{
    const TempFolder folder;
    const std::string beside = folder.write("pixels.bin", "head" + valueBytes({1, 2, 3, 4}));
    std::filesystem::create_directory(folder / "folder");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const auto& row : rowsOf(R"(
/elsewhere/pixels.bin ; EDF_BinaryFilePosition = 4 ; EDF_BinaryFileSize = 4 | UINT16 2x1: 1 2
pixels.bin ; EDF_BinaryFilePosition = 8                   | UINT16 2x1: 3 4
pixels.bin ; EDF_BinaryFilePosition = 10 | ends after 2 of 4 bytes: FOLDER/pixels.bin
pixels.bin ; EDF_BinaryFilePosition = 9223372036854775807 \
    | ends after 0 of 4 bytes: FOLDER/pixels.bin
none.bin | No such file or directory: FOLDER/none.bin
../../etc/passwd | No such file or directory: FOLDER/passwd
folder | it is a directory: FOLDER/folder
pipe | it is no regular file: FOLDER/pipe
)")) {
        const std::string path = folder.write(
            "x.edf", edfHeader("Dim_1 = 2 ;\nEDF_BinaryFileName = " + row.at(0) + " ;\n"));
        const auto file = openEdf(ByteSource::open(path));
        EXPECT_EQ(file->framePath(0), path);
        std::string expected = row.at(1);
        if (const auto at = expected.find("FOLDER"); at != expected.npos)
            expected.replace(at, 6, folder.path());
        std::string got;
        const std::string failure = failureOf([&] { got = shown(file->frame(0)); });
        EXPECT_THAT(got.empty() ? failure : got, EndsWith(expected));
    }
}

TEST(EdfDamage, IsToldWithReasonAndFile)
{
    for (const auto& row : rowsOf(R"(
DataType = Complex ;          | DataType "Complex" is not read
ByteOrder = Odd ;             | ByteOrder "Odd" is not read
Compression = lzma ;          | Compression "lzma" is not read
Dim_4 = 2 ;                   | Dim_4 "2" is not read
Dim_1 = 0 ;                   | Dim_1 can't be "0"
Dim_2 = -5 ;                  | Dim_2 can't be "-5"
Dim_1 = many ;                | Dim_1 can't be "many"
Dim_1 = 2147483648 ;          | Dim_1 can't be "2147483648"
Dim_1 = 99999999999999999999 ; | Dim_1 can't be
Dim_3 = 4294967296 ;          | Dim_3 can't be
Dim_1 = 65536 ; Dim_2 = 65536 ; | pixel data of frame 0 ends after 4 of 8589934592 bytes
Dim_1 = 30000 ; Dim_2 = 30000 ; | pixel data of frame 0 ends after 4 of 1800000000 bytes
Dim_1 = 2147483647 ; Dim_2 = 2147483647 ; Dim_3 = 2147483647 ; \
    | no file can hold 2147483647 x 2147483647 x 2147483647 pixels
Dim_3 = 2 ;                   | frame 1 ends after 0 of 4 bytes
EDF_BinaryFileName = a/.. ;   | EDF_BinaryFileName can't be "a/.."
)")) {
        const Bounds bounds(640);
        const std::string text = failureOfBytes(blockOf(2, {1, 2}, row.at(0)));
        EXPECT_THAT(text, StartsWith("EDF: "));
        EXPECT_THAT(text, HasSubstr(row.at(1)));
        EXPECT_THAT(text, EndsWith(": /data/x"));
    }
    EXPECT_THAT(failureOfBytes(edfHeader("DataType = UnsignedShort ;\n") + "ab"),
                HasSubstr("the header has no Dim_1"));
}

TEST(EdfDamage, OtherFilesAreNotMine)
{
    for (const char* bytes : {"", "{", "{}\n", "{\"a\": 1}\n", "###CBF", "{ int x; y = 3; }\n"})
        EXPECT_EQ(failureOfBytes(bytes), "not mine") << bytes;
    for (const char* bytes : {"{}", "\n", "\n\n{a=1;}\n", "{ [1, 2] = 3 }", "{ int x; y = 3; }"})
        EXPECT_NE(failureOfBytes(bytes), "no failure") << bytes;
}

TEST(EdfDamage, OfOneFrameLeavesTheOthers)
{
    // The first frame lacks a pixel and says so: the second one begins where Size has it.
    const std::string block = blockOf(2, {3, 4});
    const std::string cut = blockOf(2, {1}, "Dim_1 = 2 ;\nDim_2 = 1 ;\nSize = 2 ;\n");
    EXPECT_EQ(shownFrame(cut + block, 1), "UINT16 2x1: 3 4");
    EXPECT_THAT(failureOfBytes(cut + block),
                HasSubstr("pixel data of frame 0 ends after 2 of 4 bytes"));
    // What is no header is one more frame that says why.
    const std::string noise = block + std::string(block.size(), 'x') + block;
    EXPECT_EQ(openBytes(openEdf, noise)->frameCount(), 2u);
    EXPECT_EQ(shownFrame(noise), "UINT16 2x1: 3 4");
    EXPECT_THAT(failureOfBytes(noise),
                HasSubstr("EDF: frame 1 can't be found: there is no header at byte 516: /data"));
    EXPECT_THAT(failureOfBytes(block + blockOf(2, {1, 2}, "Dim_1 = none ;")), HasSubstr("Dim_1"));
}

TEST(EdfDamage, EveryCutIsAFailure)
{
    const std::string first = blockOf(2, {1, 2});
    const std::string whole = first + blockOf(2, {3, 4});
    for (std::size_t size = 0; size < whole.size(); ++size)
        // A piece of a header that is shorter than a frame is taken for padding at most while it
        // holds no key.
        if (size < first.size() || size > first.size() + 12) {
            ASSERT_NE(failureOfBytes(whole.substr(0, size)), "no failure") << size;
        }
}

}  // namespace tarvik::tests
