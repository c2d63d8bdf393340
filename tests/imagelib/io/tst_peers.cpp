// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixels of every type in every format, written here, read here and by fabio; EDF and TIFF files of
// others; what MHdf5Writer writes, MImageSeries reads.
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/cbf/CbfWriter.h"
#include "imagelib/io/formats/edf/EdfReader.h"
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "imagelib/io/formats/tiff/TiffWriter.h"
#include "tests/imagelib/io/FileCases.h"

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

MImage frameOf(unsigned seed)
{
    MImage image(301, 203, 0U);
    auto* const pixels = static_cast<unsigned*>(image.data());
    for (std::size_t i = 0; i < image.size(); ++i)
        pixels[i] = i % 97 == 0 ? 0xffffffffU : static_cast<unsigned>(i * 40503U + seed) >> 7 & 15U;
    return image;
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
    runPython("peers.py", "'" + folder.path() + "' >'" + (folder / "compared") + "'");
    EXPECT_EQ(contentOf(folder / "compared"), "15\n");

    int frames = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        const std::string path = entry.path();
        if (!std::filesystem::exists(path + ".0.pixels"))
            continue;
        SCOPED_TRACE(path);
        const bool edf = path.ends_with(".edf");
        const auto file = open(path);
        ASSERT_EQ(file->frameCount(), edf ? 3u : 1u);
        for (std::size_t i = 0; i < file->frameCount(); ++i, ++frames) {
            const MImage image = file->frame(i);
            EXPECT_EQ(image.width(), 67);
            EXPECT_TRUE(pixelBytes(image) == contentOf(path + '.' + std::to_string(i) + ".pixels"));
            EXPECT_EQ(image.optionalData().beam_center_x().value_or(0), edf ? 31.5f : 0);
        }
    }
    EXPECT_EQ(frames, 3 * 10 + 7);
}

TEST(Hdf5Writer, SeriesComeBackFromEveryFilter)
{
    for (const int bits : {-1, 0, 1, 2, 4, 7}) {
        SCOPED_TRACE(bits);
        const TempFolder folder;
        const std::string path = folder / "a_master.h5";
        {
            MHdf5Writer writer(path, 0, {}, static_cast<MCompression::FILTER>(bits));
            for (unsigned i = 1; i <= 4; ++i)
                writer.write(frameOf(i));
            writer.flush();
        }
        const auto stored = std::filesystem::file_size(folder / "a_data_000001.h5");
        EXPECT_EQ(stored > frameOf(1).dataSize() * 4, bits == 0);
        MImageSeries series(0);
        EXPECT_EQ(series.open(path), 1);
        EXPECT_EQ(series.first(), 1);
        EXPECT_EQ(series.last(), 4);
        for (int i = 1; i <= 4; ++i)
            EXPECT_TRUE(samePixels(series.at(i), frameOf(static_cast<unsigned>(i)))) << i;
        // One image of it as a file of its own.
        const MImage second = series.at(2);
        MHdf5Writer(folder / "b.h5", 1, second.optionalData().nexusTree(), MCompression::ALL)
            .write(second);
        MImageSeries saved(0);
        EXPECT_EQ(saved.open(folder / "b.h5"), 1);
        EXPECT_EQ(saved.last(), 1);
        EXPECT_TRUE(samePixels(saved.at(1), frameOf(2)));
    }
}

}  // namespace tarvik::tests
