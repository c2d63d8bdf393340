// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every compression of libtiff, in strips and tiles, as libtiff writes it.
#include "tests/imagelib/io/formats/tiff/TiffCases.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <random>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;

constexpr int Width = 131;
constexpr int Height = 77;

template <class T>
std::vector<T> picture()
{
    std::mt19937 random(11);
    std::vector<T> pixels(Width * Height);
    for (T& pixel : pixels)  // mostly low counts, as in real frames
        pixel = static_cast<T>(random() % 16 ? random() % 7 : random() % 120);
    return pixels;
}

struct Storage {
    int compression;
    int predictor;
    bool tiled;
    const char* mode;  // of libtiff: "wl" and "wb" choose the byte order, '8' a BigTIFF
};

template <class T>
void write(const std::string& path, const std::vector<T>& pixels, const Storage& how)
{
    TIFF* tiff = TIFFOpen(path.c_str(), how.mode);
    ASSERT_TRUE(tiff);
    const int format = std::is_floating_point_v<T> ? 3 : std::is_signed_v<T> ? 2 : 1;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, Width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, Height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * sizeof(T)));
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, how.compression);
    if (how.predictor != PREDICTOR_NONE)
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, how.predictor);
    constexpr int Part = 32;
    if (how.tiled) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, Part);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, Part);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, Part);
    }
    if (how.tiled) {
        for (int top = 0; top < Height; top += Part)
            for (int left = 0; left < Width; left += Part) {
                std::vector<T> tile(Part * Part);
                for (int y = top; y < std::min(Height, top + Part); ++y)
                    for (int x = left; x < std::min(Width, left + Part); ++x)
                        tile[static_cast<std::size_t>((y - top) * Part + x - left)] =
                            pixels[static_cast<std::size_t>(y * Width + x)];
                ASSERT_GE(TIFFWriteTile(tiff, tile.data(), static_cast<std::uint32_t>(left),
                                        static_cast<std::uint32_t>(top), 0, 0),
                          0);
            }
    } else {
        std::vector<T> row(Width);
        for (int y = 0; y < Height; ++y) {
            std::copy_n(pixels.begin() + y * Width, Width, row.begin());
            ASSERT_EQ(TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0), 1);
        }
    }
    TIFFClose(tiff);
}

template <class T>
void check(const std::vector<int>& predictors)
{
    TIFFSetWarningHandler(nullptr);  // the writer's, about an old number for Deflate
    const TempFolder folder;
    const std::vector<T> pixels = picture<T>();
    std::vector<int> compressions = {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW,
                                     COMPRESSION_DEFLATE, COMPRESSION_ADOBE_DEFLATE};
    for (const int more : {COMPRESSION_ZSTD, COMPRESSION_LZMA})
        if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(more)))
            compressions.push_back(more);
    for (const int compression : compressions)
        for (const int predictor : predictors)
            for (const bool tiled : {false, true})
                for (const char* mode : {"wl", "wb", "wb8"}) {
                    const bool plain =
                        compression == COMPRESSION_NONE || compression == COMPRESSION_PACKBITS;
                    // libtiff itself packs foreign bytes under the floating-point predictor
                    // wrongly.
                    const bool wrong = predictor == PREDICTOR_FLOATINGPOINT && mode[1] == 'b';
                    if ((plain && predictor != PREDICTOR_NONE) || wrong)
                        continue;
                    SCOPED_TRACE(testing::Message()
                                 << "compression " << compression << " predictor " << predictor
                                 << " tiled " << tiled << ' ' << mode);
                    const std::string path = folder / "x.tif";
                    write(path, pixels, {compression, predictor, tiled, mode});
                    const MImage image = openTiff(ByteSource::open(path))->frame(0);
                    ASSERT_EQ(image.type(), datatypes::typeOf<T>);
                    ASSERT_EQ(image.dataSize(), pixels.size() * sizeof(T));
                    ASSERT_EQ(std::memcmp(image.cdata(), pixels.data(), image.dataSize()), 0);
                }
}

TEST(TiffCompression, EveryIntegerComesBack)
{
    check<std::uint8_t>({PREDICTOR_NONE, PREDICTOR_HORIZONTAL});
    check<std::int16_t>({PREDICTOR_NONE, PREDICTOR_HORIZONTAL});
    check<std::uint32_t>({PREDICTOR_NONE, PREDICTOR_HORIZONTAL});
    check<long long>({PREDICTOR_NONE, PREDICTOR_HORIZONTAL});
}

TEST(TiffCompression, EveryFloatComesBack)
{
    check<float>({PREDICTOR_NONE, PREDICTOR_FLOATINGPOINT});
    check<double>({PREDICTOR_NONE, PREDICTOR_FLOATINGPOINT});
}

}  // namespace
