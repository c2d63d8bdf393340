// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixels of every type in every format, written here, read here and by fabio, and the other way.
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/cbf/CbfWriter.h"
#include "imagelib/io/formats/edf/EdfReader.h"
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "imagelib/io/formats/tiff/TiffWriter.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/Packed.h"

#include <limits>
#include <random>

namespace tarvik::tests {
namespace {

std::unique_ptr<ImageFile> open(const std::string& path)
{
    CbfOptions options;
    options.checkMd5 = true;
    const auto source = ByteSource::open(path);
    return path.ends_with(".cbf")   ? openCbf(source, options)
           : path.ends_with(".tif") ? openTiff(source)
                                    : openEdf(source);
}

/// Any value of a type, its ends among them, but values divided by `part`.
template <class T>
MImage anyPixels(T part)
{
    MImage image(37, 19, datatypes::typeOf<T>, datatypes::bitsOf<T>);
    auto* pixels = static_cast<T*>(image.data());
    std::mt19937_64 random(3);
    for (std::size_t i = 0; i < image.size(); ++i) {
        const auto bits = random();
        if constexpr (std::is_floating_point_v<T>)
            pixels[i] = static_cast<T>(static_cast<double>(bits) * (bits & 1 ? 1e-9 : -1e9));
        else if constexpr (std::is_same_v<T, bool>)
            pixels[i] = (bits & 1) != 0;
        else
            pixels[i] = static_cast<T>((bits & 4   ? static_cast<T>(bits >> 8 & 7)
                                        : bits & 8 ? static_cast<T>(bits >> 8)
                                        : bits & 1 ? std::numeric_limits<T>::max()
                                                   : std::numeric_limits<T>::min()) /
                                       part);
    }
    return image;
}

/// Writes an image, and its pixels for fabio when it can read the type.
template <class T>
void expectWritten(void (*write)(const MImage&, const std::string&), const std::string& path,
                   const std::string& dtype, T part)
{
    SCOPED_TRACE(path);
    const MImage image = anyPixels<T>(part);
    write(image, path);
    const MImage back = open(path)->frame(0);
    EXPECT_EQ(back.width(), 37);
    EXPECT_EQ(back.typeBits(), image.typeBits());
    const bool small = std::is_same_v<T, bool> || std::is_same_v<T, char>;
    EXPECT_EQ(back.type(), !small                              ? image.type()
                           : std::numeric_limits<T>::is_signed ? datatypes::INT
                                                               : datatypes::UINT);
    EXPECT_TRUE(pixelBytes(back) == pixelBytes(image));
    if (!dtype.empty())
        std::ofstream(path + '.' + dtype + ".37.raw", std::ios::binary) << pixelBytes(image);
}

template <class T>
void expectWrittenInAll(const TempFolder& folder, const std::string& dtype, bool cbf, bool tiff)
{
    const std::string stem = folder / dtype;
    expectWritten<T>(writeCbf, stem + ".cbf", "", T(1));
    expectWritten<T>(writeTiff, stem + ".tif", tiff ? dtype : "", T(1));
    // fabio does not know the escape to 8 bytes, which a step of exactly 2^31 needs.
    if (cbf)
        expectWritten<T>(writeCbf, stem + "_part.cbf", dtype, T(sizeof(T) >= 4 ? 4 : 1));
}

/// What fabio reads but does not write: the other byte order and compressed blocks.
void writeEdfs(const TempFolder& folder)
{
    const std::string big("\0\0\0\1\xff\xff\xff\xfe\x7f\xff\xff\xff\0\0\0\4\0\0\0\5\x80\0\0\1", 24);
    std::string little = big;
    for (std::size_t i = 0; i < 24; i += 4)
        std::reverse(little.begin() + std::ptrdiff_t(i), little.begin() + std::ptrdiff_t(i) + 4);
    for (const auto& [key, data] :
         {std::pair("ByteOrder = HighByteFirst", big),
          {"ByteOrder = LowByteFirst ;\nCompression = gzip", gzipPacked(little)},
          {"ByteOrder = LowByteFirst ;\nCompression = zlib", zlibPacked(little)}}) {
        std::string header = "{\nDataType = SignedInteger ;\nDim_1 = 3 ;\nDim_2 = 2 ;\nSize = " +
                             std::to_string(data.size()) + " ;\n" + key + " ;\n";
        header.resize(510, ' ');
        const std::string name = "e" + std::to_string(data.size()) + ".edf";
        const std::string path = folder.write(name, header + "}\n" + data);
        folder.write(name + ".int32.3.raw", little);
        EXPECT_EQ(shown(open(path)->frame(0)), "INT32 3x2: 1 -2 2147483647 4 5 -2147483647");
    }
}

}  // namespace

TEST(Peers, ReadWhatIsWrittenHereAndAreRead)
{
    const TempFolder folder;
    expectWrittenInAll<bool>(folder, "bool", false, false);
    expectWrittenInAll<char>(folder, "char", false, false);
    expectWrittenInAll<signed char>(folder, "int8", true, true);
    expectWrittenInAll<short>(folder, "int16", true, true);
    expectWrittenInAll<int>(folder, "int32", true, true);
    expectWrittenInAll<long long>(folder, "int64", true, false);
    expectWrittenInAll<unsigned char>(folder, "uint8", true, true);
    expectWrittenInAll<unsigned short>(folder, "uint16", true, true);
    expectWrittenInAll<unsigned int>(folder, "uint32", true, true);
    expectWrittenInAll<unsigned long long>(folder, "uint64", false, false);
    expectWrittenInAll<float>(folder, "float32", false, true);
    expectWrittenInAll<double>(folder, "float64", false, true);
    writeEdfs(folder);
    runPython("peers.py", "'" + folder.path() + "' >'" + (folder / "compared") + "'");
    EXPECT_EQ(contentOf(folder / "compared"), "18\n");

    int frames = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        const std::string path = entry.path();
        if (!entry.path().filename().string().starts_with("fabio_") || path.ends_with(".pixels"))
            continue;
        SCOPED_TRACE(path);
        const auto file = open(path);
        ASSERT_EQ(file->frameCount(), path.ends_with(".edf") ? 3u : 1u);
        for (std::size_t i = 0; i < file->frameCount(); ++i, ++frames) {
            const MImage image = file->frame(i);
            EXPECT_EQ(image.width(), path.ends_with(".cbf") ? 21 : 67);
            EXPECT_TRUE(pixelBytes(image) == contentOf(path + '.' + std::to_string(i) + ".pixels"));
            if (path.ends_with(".edf")) {
                EXPECT_EQ(*image.optionalData().beam_center_x(), 31.5f);
            }
        }
    }
    EXPECT_EQ(frames, 44);
}

}  // namespace tarvik::tests
