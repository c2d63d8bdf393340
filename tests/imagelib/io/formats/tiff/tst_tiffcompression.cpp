// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every pixel type in every compression of libtiff, in strips and tiles, as libtiff writes it.
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "tests/imagelib/io/FileCases.h"

#include <tiffio.h>

#include <limits>
#include <random>

namespace tarvik::tests {
namespace {

constexpr int Width = 67;
constexpr int Height = 41;
constexpr int Part = 32;  // rows of a strip, side of a tile

/// Mostly low counts, as in real frames, and the ends of the type.
template <class T>
std::vector<T> picture()
{
    using Limits = std::numeric_limits<T>;
    std::mt19937 random(11);
    std::vector<T> pixels = {Limits::min(), Limits::max(), Limits::lowest()};
    while (pixels.size() < Width * Height)
        pixels.push_back(static_cast<T>(random() % 16 ? random() % 7 : random() % 120));
    return pixels;
}

/// `mode` is that of libtiff: "wl" and "wb" choose the byte order, '8' a BigTIFF.
template <class T>
void write(const std::string& path, std::vector<T> pixels, int compression, int predictor,
           bool tiled, const char* mode)
{
    TIFF* tiff = TIFFOpen(path.c_str(), mode);
    ASSERT_TRUE(tiff);
    const int format = std::is_floating_point_v<T> ? 3 : std::is_signed_v<T> ? 2 : 1;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, Width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, Height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * sizeof(T)));
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    if (predictor != PREDICTOR_NONE)
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, predictor);
    TIFFSetField(tiff, tiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, Part);
    if (tiled)
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, Part);
    for (int top = 0; tiled && top < Height; top += Part)
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
    for (std::uint32_t y = 0; !tiled && y < Height; ++y)
        ASSERT_EQ(TIFFWriteScanline(tiff, pixels.data() + y * Width, y, 0), 1);
    TIFFClose(tiff);
}

template <class T>
class TiffOfType : public testing::Test {};

using FileTypes =
    testing::Types<std::uint8_t, std::int8_t, std::uint16_t, std::int16_t, std::uint32_t,
                   std::int32_t, unsigned long long, long long, float, double>;
TYPED_TEST_SUITE(TiffOfType, FileTypes);

}  // namespace

TYPED_TEST(TiffOfType, ComesBackFromEveryCompression)
{
    using T = TypeParam;
    TIFFSetWarningHandler(nullptr);  // the writer's, about an old number for Deflate
    const TempFolder folder;
    const std::vector<T> pixels = picture<T>();
    std::vector<int> compressions = {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW,
                                     COMPRESSION_DEFLATE, COMPRESSION_ADOBE_DEFLATE};
    for (const int more : {COMPRESSION_ZSTD, COMPRESSION_LZMA})
        if (std::is_same_v<T, std::uint32_t> &&
            TIFFIsCODECConfigured(static_cast<std::uint16_t>(more)))
            compressions.push_back(more);
    constexpr int Predictor =
        std::is_floating_point_v<T> ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL;
    for (const int compression : compressions)
        for (const int predictor : {PREDICTOR_NONE, Predictor})
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
                    write(path, pixels, compression, predictor, tiled, mode);
                    const auto file = openTiff(ByteSource::open(path));
                    ASSERT_EQ(file->frameCount(), 1u);
                    const MImage image = file->frame(0);
                    ASSERT_EQ(image.type(), datatypes::typeOf<T>);
                    ASSERT_EQ(image.width(), Width);
                    ASSERT_EQ(image.dataSize(), pixels.size() * sizeof(T));
                    ASSERT_EQ(std::memcmp(image.cdata(), pixels.data(), image.dataSize()), 0);
                }
}

}  // namespace tarvik::tests
