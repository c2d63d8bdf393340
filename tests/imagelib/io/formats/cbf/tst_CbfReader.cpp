// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// CBF files of all shapes, of other writers, and damaged ones.
#include "imagelib/codec/Base64.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/ByteOffset.h"
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "tests/support/TempFolder.h"

#include <boost/optional/optional_io.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using testing::HasSubstr;

std::string content(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::unique_ptr<ImageFile> openText(const std::string& text, const CbfOptions& options = {})
{
    const auto* begin = reinterpret_cast<const std::byte*>(text.data());
    return openCbf(ByteSource::fromMemory("x.cbf", {begin, begin + text.size()}), options);
}

std::string pixelsOf(const ImageFile& file)
{
    std::string all;
    for (std::size_t i = 0; i < file.frameCount(); ++i) {
        const MImage image = file.frame(i);
        all.append(static_cast<const char*>(image.cdata()), image.dataSize());
    }
    return all;
}

/// The failure of reading all frames; empty when there is none.
std::string failureOf(const std::string& text, const CbfOptions& options = {})
{
    try {
        pixelsOf(*openText(text, options));
    } catch (const MException& error) {
        return error.what();
    }
    return {};
}

struct PeerCase {
    const char* name;
    const char* raw;
    std::size_t frames = 1;
};

class PeerFile : public testing::TestWithParam<PeerCase> {};

TEST_P(PeerFile, HasThePixelsThatWereWritten)
{
    const std::string folder = TARVIK_SOURCE_DIR "/tests/data/cbf/";
    CbfOptions options;
    options.checkMd5 = true;
    const auto file = openCbf(ByteSource::open(folder + GetParam().name + ".cbf"), options);
    EXPECT_EQ(file->frameCount(), GetParam().frames);
    EXPECT_EQ(pixelsOf(*file), content(folder + GetParam().raw + ".raw"));
}

#define TARVIK_SMALL(type)                                                                         \
    PeerCase{type "_small_pk", type "_small"}, PeerCase{type "_small_p2", type "_small"},          \
        PeerCase{type "_small_can", type "_small"}, PeerCase                                       \
    {                                                                                              \
        type "_small_pkflat", type "_small"                                                        \
    }

INSTANTIATE_TEST_SUITE_P(
    Table, PeerFile,
    testing::Values(TARVIK_SMALL("i1"), TARVIK_SMALL("u1"), TARVIK_SMALL("i2"), TARVIK_SMALL("u2"),
                    TARVIK_SMALL("i4"), TARVIK_SMALL("u4"), PeerCase{"i4_mid_pk_bin", "i4_mid"},
                    PeerCase{"i4_mid_pk_b64", "i4_mid"}, PeerCase{"i4_mid_pk_qp", "i4_mid"},
                    PeerCase{"i4_mid_p2_bin", "i4_mid"}, PeerCase{"i4_mid_can_bin", "i4_mid"},
                    PeerCase{"u4_mid_pk_bin", "u4_mid"}, PeerCase{"u4_mid_p2_bin", "u4_mid"},
                    PeerCase{"u4_mid_can_bin", "u4_mid"}, PeerCase{"stack_96_0", "stack", 4},
                    PeerCase{"stack_96_256", "stack", 4}, PeerCase{"stack_96_512", "stack", 4},
                    PeerCase{"stack_144_0", "stack", 4}, PeerCase{"stack_144_256", "stack", 4},
                    PeerCase{"stack_can", "stack", 4}, PeerCase{"i1_clipped_can", "i1_clipped"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Edges, PeerFile,
    testing::Values(PeerCase{"i1_edge_pk", "i1_edge", 4}, PeerCase{"i1_edge_p2", "i1_edge", 4},
                    PeerCase{"i1_edge_pkflat", "i1_edge", 4}, PeerCase{"u1_edge_pk", "u1_edge", 4},
                    PeerCase{"u1_edge_p2", "u1_edge", 4}, PeerCase{"u1_edge_can", "u1_edge", 4},
                    PeerCase{"i2_edge_pk", "i2_edge", 4}, PeerCase{"i2_edge_p2unc", "i2_edge", 4},
                    PeerCase{"i2_edge_pkflat", "i2_edge", 4}, PeerCase{"u2_edge_pk", "u2_edge", 4},
                    PeerCase{"u2_edge_p2", "u2_edge", 4}, PeerCase{"u2_edge_can", "u2_edge", 4},
                    PeerCase{"i4_edge_pk", "i4_edge", 4}, PeerCase{"i4_edge_p2", "i4_edge", 4},
                    PeerCase{"i4_edge_pkflat", "i4_edge", 4}, PeerCase{"i4_edge_can", "i4_edge", 4},
                    PeerCase{"u4_edge_pk", "u4_edge", 4}, PeerCase{"u4_edge_p2unc", "u4_edge", 4},
                    PeerCase{"i8_edge_can", "i8_edge", 4}, PeerCase{"u8_edge_can", "u8_edge", 4},
                    PeerCase{"f4_edge_pk", "f4_edge", 4}, PeerCase{"f4_edge_can", "f4_edge", 4},
                    PeerCase{"f8_edge_can", "f8_edge", 4}),
    [](const auto& row) { return row.param.name; });

/// A file around six pixels 1 to 6; `head` stands between the fixed lines of the MIME head.
struct Parts {
    std::string before = "###CBF: VERSION 1.5\r\ndata_x\r\n_array_data.header_contents\r\n;\r\n"
                         "# Wavelength 1.5 A\r\n;\r\n_array_data.data\r\n;\r\n";
    std::string conversion = "x-CBF_NONE";
    std::string head = "X-Binary-Size: 12\r\nX-Binary-Element-Type: \"signed 16-bit integer\"\r\n"
                       "X-Binary-Size-Fastest-Dimension: 3\r\n"
                       "X-Binary-Size-Second-Dimension: 2\r\n";
    std::string mark = "\x0c\x1a\x04\xd5";
    std::string data = std::string("\1\0\2\0\3\0\4\0\5\0\6\0", 12);
    std::string after = "\r\n--CIF-BINARY-FORMAT-SECTION----\r\n;\r\n";

    std::string section() const
    {
        return "--CIF-BINARY-FORMAT-SECTION--\r\nContent-Type: application/octet-stream;\r\n"
               "     conversions=\"" +
               conversion + "\"\r\n" + head + "\r\n" + mark + data + after;
    }
    std::string file() const { return before + section(); }
};

TEST(CbfReader, OtherFilesAreNotItsOwn)
{
    for (const char* text : {"", "###CB", "II*", "data_x\n###CBF"})
        EXPECT_EQ(openText(text), nullptr) << text;
}

TEST(CbfReader, AnyVersionLineWillDo)
{
    Parts parts;
    parts.before.replace(0, 19, "###CBF: Version July 2008 generated by X");
    const MImage image = openText(parts.file())->frame(0);
    EXPECT_EQ(image.width(), 3);
    EXPECT_EQ(image.height(), 2);
    EXPECT_EQ(image.pixel<int>(2, 1, 0), 6);
    EXPECT_EQ(image.optionalData().wavelength(), 1.5F);
    EXPECT_EQ(*image.optionalData().rawHeader(), "# Wavelength 1.5 A");
    EXPECT_FALSE(image.optionalData().imageDescription());
}

TEST(CbfReader, BigEndianPixels)
{
    Parts parts;
    parts.head += "X-Binary-Element-Byte-Order: BIG_ENDIAN\r\n";
    parts.data = std::string("\0\1\0\2\0\3\0\4\0\5\1\0", 12);
    EXPECT_EQ(openText(parts.file())->frame(0).pixel<int>(2, 1, 0), 256);
}

TEST(CbfReader, EveryElementType)
{
    for (const std::string type :
         {"signed 8", "unsigned 8", "signed 16", "unsigned 16", "signed 32", "unsigned 32",
          "signed 64", "unsigned 64", "signed 32-bit real IEEE", "signed 64-bit real IEEE"}) {
        const bool real = type.find("real") != type.npos;
        const auto bits = static_cast<std::size_t>(std::atoi(type.c_str() + type.find(' ')));
        Parts parts;
        parts.head = "X-Binary-Element-Type: \"" + type + (real ? "\"" : "-bit integer\"") +
                     "\r\nX-Binary-Size-Fastest-Dimension: 1\r\n"
                     "X-Binary-Size-Second-Dimension: 1\r\n";
        parts.data = std::string(bits / 8, '\0');
        const MImage image = openText(parts.file())->frame(0);
        EXPECT_EQ(image.typeBits(), bits) << type;
        EXPECT_EQ(image.type(), real                           ? datatypes::FLOAT
                                : type.starts_with("unsigned") ? datatypes::UINT
                                                               : datatypes::INT)
            << type;
    }
}

TEST(CbfReader, MissingKeysComeFromTheCategories)
{
    Parts parts;
    parts.before.insert(parts.before.find("_array_data.data"),
                        "loop_\n_array_structure_list.index\n_array_structure_list.dimension\n"
                        "_array_structure_list.precedence\n1 2 2\n2 3 1\n");
    parts.conversion = "x-CBF_BYTE_OFFSET";
    parts.head = "";
    parts.data = std::string("\1\1\1\1\1\1", 6);
    const MImage image = openText(parts.file())->frame(0);
    EXPECT_EQ(image.width(), 3);
    EXPECT_EQ(image.height(), 2);
    EXPECT_EQ(image.typeBits(), 32U);
    EXPECT_EQ(image.pixel<int>(2, 1, 0), 6);
}

TEST(CbfReader, SectionsAndThirdDimensionsAreFrames)
{
    Parts parts;
    parts.head += "X-Binary-Size-Third-Dimension: 1\r\n";
    Parts stack = parts;
    stack.head = "X-Binary-Size-Fastest-Dimension: 1\r\nX-Binary-Size-Second-Dimension: 2\r\n"
                 "X-Binary-Size-Third-Dimension: 3\r\n"
                 "X-Binary-Element-Type: \"unsigned 16-bit integer\"\r\n";
    const auto file = openText(parts.file() + stack.section() + parts.section());
    ASSERT_EQ(file->frameCount(), 5U);
    EXPECT_EQ(file->frame(4).pixel<int>(2, 1, 0), 6);
    EXPECT_EQ(file->frame(3).pixel<int>(0, 1, 0), 6);
    EXPECT_EQ(file->frame(1).pixel<int>(0, 1, 0), 2);
    EXPECT_EQ(file->frame(0).pixel<int>(0, 1, 0), 4);
    EXPECT_THROW(file->frame(5), MOutOfRangeException);
}

TEST(CbfReader, TextSectionBeforeABinaryOne)
{
    Parts binary;
    Parts text = binary;
    text.head += "Content-Transfer-Encoding: BASE64\r\n";
    text.mark = "";
    text.data = codec::base64Encode(std::as_bytes(std::span(text.data)));
    const auto file = openText(text.file() + binary.section());
    ASSERT_EQ(file->frameCount(), 2U);
    EXPECT_EQ(file->frame(0).pixel<int>(2, 1, 0), 6);
    EXPECT_EQ(file->frame(1).pixel<int>(2, 1, 0), 6);
}

TEST(CbfReader, LongHeadersAndBoundariesOnAnyByte)
{
    for (std::size_t size = 8000; size < 8300; ++size) {
        Parts parts;
        parts.before.insert(parts.before.find("# Wave"), "# " + std::string(size, 'x') + "\r\n");
        const MImage image = openText(parts.file())->frame(0);
        ASSERT_EQ(image.pixel<int>(2, 1, 0), 6) << size;
        ASSERT_EQ(image.optionalData().wavelength(), 1.5F) << size;
    }
}

TEST(CbfReader, HeaderLinesWithoutTheOpeningSemicolon)
{
    Parts parts;
    parts.before = "###CBF: VERSION 1.5\n_array_data.header_contents\n# Wavelength 1.5 A\n;\n;\n"
                   "_array_data.data\n;\n";
    EXPECT_EQ(openText(parts.file())->frame(0).optionalData().wavelength(), 1.5F);
    parts.before = "###CBF: VERSION 1.5\n_array_data.header_content\n;\n# Wavelength 2 A\n;\n";
    EXPECT_EQ(openText(parts.file())->frame(0).optionalData().wavelength(), 2.0F);
}

TEST(CbfReader, FullImgCifGivesGeometry)
{
    Parts parts;
    parts.before = R"(###CBF: VERSION 1.5
# a comment _diffrn_radiation_wavelength.wavelength 7
data_x
_diffrn_detector.type 'Large ''s 6M'
loop_
_diffrn_radiation_wavelength.id
_diffrn_radiation_wavelength.wavelength
W1 0.97
loop_
_axis.id _axis.type _axis.equipment _axis.depends_on
_axis.vector[1] _axis.vector[2] _axis.vector[3]
_axis.offset[1] _axis.offset[2] _axis.offset[3]
OMEGA rotation goniometer . 1 0 0 . . .
DETECTOR_Z translation detector . 0 0 -1 0 0 0
loop_
_diffrn_scan_axis.axis_id _diffrn_scan_axis.angle_start _diffrn_scan_axis.angle_increment
DETECTOR_Z 0 0
OMEGA 10 0.25
loop_
_diffrn_scan_frame_axis.axis_id _diffrn_scan_frame_axis.angle _diffrn_scan_frame_axis.displacement
OMEGA 12.5 0
DETECTOR_Z 0 240.5
loop_
_array_element_size.index _array_element_size.size
2 75e-6
1 172e-6
_diffrn_scan_frame.integration_time 0.1
_diffrn_detector_element.reference_center_fast 1.72
_diffrn_detector_element.reference_center_slow 0.75
_array_intensities.overload 65535
_array_data.data
;
)";
    const MImage image = openText(parts.file())->frame(0);
    const auto& header = image.optionalData();
    EXPECT_FLOAT_EQ(*header.wavelength(), 0.97F);
    EXPECT_FLOAT_EQ(*header.detector_distance(), 0.2405F);
    EXPECT_FLOAT_EQ(*header.rotation_angle(), 12.5F);
    EXPECT_FLOAT_EQ(*header.rotation_angle_step(), 0.25F);
    EXPECT_FLOAT_EQ(*header.x_pixel_size(), 172e-6F);
    EXPECT_FLOAT_EQ(*header.y_pixel_size(), 75e-6F);
    EXPECT_FLOAT_EQ(*header.beam_center_x(), 10.0F);
    EXPECT_FLOAT_EQ(*header.beam_center_y(), 10.0F);
    EXPECT_FLOAT_EQ(*header.count_time(), 0.1F);
    EXPECT_EQ(*header.saturation_value(), 65535);
    EXPECT_EQ(*header.description(), "Large ''s 6M");
    EXPECT_THAT(*header.rawHeader(), HasSubstr("_axis.depends_on"));
}

struct DamageCase {
    const char* name;
    void (*damage)(Parts& parts);
    const char* message;
};

class DamagedCbf : public testing::TestWithParam<DamageCase> {};

TEST_P(DamagedCbf, SaysWhatIsWrong)
{
    Parts parts;
    GetParam().damage(parts);
    EXPECT_EQ(failureOf(parts.file()), std::string("CBF: ") + GetParam().message + ": x.cbf");
}

void replaceIn(std::string& text, const std::string& from, const std::string& to)
{
    text.replace(text.find(from), from.size(), to);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DamagedCbf,
    testing::Values(
        DamageCase{"TooFewPlainPixels",
                   [](Parts& p) {
                       p.data.resize(7);
                       p.after = "";
                   },
                   "pixel data ends after 3 of 6 pixels"},
        DamageCase{"TooFewPackedPixels",
                   [](Parts& p) {
                       p.conversion = "x-CBF_BYTE_OFFSET";
                       p.data = "\1\1\1\1\x80";
                       p.after = "";
                   },
                   "pixel data ends after 4 of 6 pixels"},
        DamageCase{"NoData", [](Parts& p) { p.data = p.after = ""; },
                   "pixel data ends after 0 of 6 pixels"},
        DamageCase{"NoPackedData",
                   [](Parts& p) {
                       p.conversion = "x-CBF_PACKED";
                       p.data = p.after = "";
                   },
                   "pixel data ends after 0 of 6 pixels"},
        DamageCase{"NoCanonicalData", [](Parts& p) { p.conversion = "x-CBF_CANONICAL"; },
                   "pixel data ends after 0 of 6 pixels"},
        DamageCase{"HugeImage",
                   [](Parts& p) {
                       replaceIn(p.head, "Fastest-Dimension: 3", "Fastest-Dimension: 2000000000");
                       replaceIn(p.head, "Second-Dimension: 2", "Second-Dimension: 2000000000");
                   },
                   "pixel data ends after 6 of 4000000000000000000 pixels"},
        DamageCase{"ImpossibleImage",
                   [](Parts& p) {
                       replaceIn(p.head, "Fastest-Dimension: 3", "Fastest-Dimension: 3000000000");
                   },
                   "an image of 3000000000 x 2 x 1 pixels is not possible"},
        DamageCase{"NoSize", [](Parts& p) { p.head = "X-Binary-Size: 12\r\n"; },
                   "width and height of the image are missing"},
        DamageCase{"NoNumber", [](Parts& p) { replaceIn(p.head, "Size: 12", "Size: many"); },
                   "X-Binary-Size is no count but \"many\""},
        DamageCase{"Complex",
                   [](Parts& p) { replaceIn(p.head, "16-bit integer", "32-bit complex IEEE"); },
                   "pixels of type \"signed 32-bit complex ieee\" are not known"},
        DamageCase{"OddBits", [](Parts& p) { replaceIn(p.head, "16-bit", "1-bit"); },
                   "pixels of type \"signed 1-bit integer\" are not known"},
        DamageCase{"OtherConversion", [](Parts& p) { p.conversion = "x-CBF_PREDICTOR"; },
                   "conversion \"x-cbf_predictor\" of the pixel data is not known"},
        DamageCase{"PackedWidePixels",
                   [](Parts& p) {
                       p.conversion = "x-CBF_PACKED\"; \"flat";
                       replaceIn(p.head, "signed 16-bit", "unsigned 64-bit");
                   },
                   "packed pixels of 64 bits are not read, because writers of CBF lose a part of "
                   "them"},
        DamageCase{"PackedColumn",
                   [](Parts& p) {
                       p.conversion = "x-CBF_PACKED_V2";
                       replaceIn(p.head, "Fastest-Dimension: 3", "Fastest-Dimension: 1");
                   },
                   "packed pixels of a single column are not read, because writers of CBF lose a "
                   "part of them"},
        DamageCase{"OtherEncoding",
                   [](Parts& p) { p.head += "Content-Transfer-Encoding: X-BASE16\r\n"; },
                   "transfer encoding \"x-base16\" of the pixel data is not known"},
        DamageCase{"BadBase64",
                   [](Parts& p) {
                       p.head += "Content-Transfer-Encoding: BASE64\r\n";
                       p.data = "AA$A";
                   },
                   "pixel data are damaged: character 3 does not belong to BASE64 text"}),
    [](const auto& row) { return row.param.name; });

TEST(DamagedCbfFile, WithoutPixels)
{
    EXPECT_EQ(failureOf("###CBF: VERSION 1.5\r\ndata_x\r\n"),
              "CBF: the file has no binary section with pixels: x.cbf");
    EXPECT_EQ(failureOf("###CBF\r\n--CIF-BINARY-FORMAT-SECTION--\r\nContent-Type: x"),
              "CBF: the head of the pixel data does not end: x.cbf");
}

TEST(DamagedCbfFile, CutAnywhereFailsWithItsName)
{
    Parts parts;
    const std::string whole = parts.file();
    const std::size_t end = whole.size() - parts.after.size();
    for (std::size_t size = 6; size < end; ++size)
        ASSERT_THAT(failureOf(whole.substr(0, size)), HasSubstr(": x.cbf")) << size;
    EXPECT_EQ(failureOf(whole.substr(0, end)), "");
}

TEST(DamagedCbfFile, Md5IsCheckedOnRequest)
{
    Parts parts;
    parts.head += "Content-MD5: 1B2M2Y8AsgTpgAmY7PhCfg==\r\n";  // of no bytes at all
    EXPECT_EQ(failureOf(parts.file()), "");
    CbfOptions options;
    options.checkMd5 = true;
    EXPECT_THAT(failureOf(parts.file(), options), HasSubstr("MD5"));
}

TEST(DamagedCbfFile, ChangedBytesNeverDoHarm)
{
    const std::string folder = TARVIK_SOURCE_DIR "/tests/data/cbf/";
    for (const char* name : {"i4_mid_pk_bin", "i4_mid_p2_bin", "i4_mid_can_bin", "i4_mid_pk_qp",
                             "stack_96_0", "u2_small_can"}) {
        const std::string whole = content(folder + name + ".cbf");
        for (std::size_t i = 6; i < whole.size(); ++i) {
            std::string changed = whole;
            changed[i] = static_cast<char>(changed[i] ^ (1 << i % 8));
            failureOf(changed);  // the sanitizers see the harm
        }
    }
}

class FromFabio : public testing::TestWithParam<const char*> {};

TEST_P(FromFabio, HasTheSamePixels)
{
    const tarvik::tests::TempFolder folder;
    const std::string type = GetParam();
    const std::string script = folder.write(
        "write.py", "import fabio, numpy\n"
                    "random = numpy.random.default_rng(4)\n"
                    "a = random.integers(-1000000, 1000000, (13, 21))\n"
                    "a[random.random(a.shape) < 0.8] %= 5\n"
                    "a = a.astype('" +
                        type + "')\na.tofile('" + (folder / "raw") + "')\n" +
                        "fabio.cbfimage.CbfImage(data=a).write('" + (folder / "a.cbf") + "')\n");
    ASSERT_EQ(std::system((TARVIK_PYTHON " " + script).c_str()), 0);
    const auto file = openCbf(ByteSource::open(folder / "a.cbf"));
    EXPECT_EQ(file->frame(0).width(), 21);
    EXPECT_EQ(pixelsOf(*file), content(folder / "raw"));
}

INSTANTIATE_TEST_SUITE_P(Types, FromFabio,
                         testing::Values("int8", "uint8", "int16", "uint16", "int32", "uint32",
                                         "int64"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
