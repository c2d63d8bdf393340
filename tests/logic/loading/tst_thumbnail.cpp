// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sizes, means and marks of thumbnails.
#include "logic/analysis/statistics/ImageStatistics.h"
#include "logic/loading/MaskFixup.h"
#include "logic/loading/MaskThumbnails.h"
#include "logic/loading/Thumbnail.h"
#include "tests/support/EveryTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace {

using morvend::imglib::MImage;

template <class T>
T* pixels(MImage& image)
{
    return static_cast<T*>(image.data());
}

TEST(Thumbnail, LongerSideHasTwoHundredPixelsAtMost)
{
    using S = std::pair<int, int>;
    for (const auto& [size, thumbSize] : {std::pair(S(200, 100), S(200, 100)),
                                          {S(1000, 10), S(200, 2)},
                                          {S(10, 1000), S(2, 200)},
                                          {S(3000, 3000), S(200, 200)},
                                          {S(1, 1), S(1, 1)},
                                          {S(201, 200), S(200, 199)},
                                          {S(1000, 4), S(200, 0)},
                                          {S(1037, 1092), S(189, 200)}}) {
        const MImage thumb = thumbnail::ofImage(MImage(size.first, size.second, short(7)), false);
        EXPECT_EQ(S(thumb.width(), thumb.height()), thumbSize);
        EXPECT_EQ(thumb.type(), morvend::datatypes::INT);
        EXPECT_EQ(thumb.typeBits(), 16U);
        EXPECT_EQ(thumb.pixel<int>(thumb.width() - 1, 0, 7), 7);
    }
}

/// The cells as the rule reads, pixel by pixel, in one plain loop.
template <class T, class Value>
std::vector<T> plainCells(const MImage& image, int width, int height, Value&& value)
{
    const double length = 1 / (double(width) / image.width());
    const auto edge = [&](int i, int limit) { return std::min(int(i * length + 0.5), limit); };
    std::vector<T> result;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::vector<T> cell;
            for (int v = edge(y, image.height()); v < edge(y + 1, image.height()); ++v)
                for (int u = edge(x, image.width()); u < edge(x + 1, image.width()); ++u)
                    cell.push_back(image.pixel<T>(u, v, T(0)));
            result.push_back(cell.empty() ? T(0) : value(cell));
        }
    return result;
}

template <class T>
T plainMean(const std::vector<T>& cell, bool hasNegatives)
{
    double sum = 0;
    for (const T pixel : cell) {
        if (std::is_signed_v<T> && !hasNegatives && pixel < T(0))
            return pixel;
        sum += double(pixel);
    }
    return morvend::datatypes::convertPixel<T>(sum / double(cell.size()));
}

template <class T>
T plainMark(const std::vector<T>& pixels)
{
    const auto mark = std::find_if(pixels.begin(), pixels.end(), [](T p) { return p != T(0); });
    return mark == pixels.end() ? T(0) : *mark;
}

/// Small numbers, some zeros in a row, some of the largest, and now and then a mark.
template <class T>
MImage mixedPixels(int width, int height)
{
    MImage image(width, height, T(0));
    std::minstd_rand random(unsigned(width) * 31 + unsigned(height));
    T* pixel = pixels<T>(image);
    for (std::size_t i = 0; i < image.size(); ++i) {
        const auto kind = random() % 400;
        pixel[i] = kind == 0                          ? std::numeric_limits<T>::max()
                   : kind == 1 && std::is_signed_v<T> ? T(-1.5)
                   : i / 700 % 3 == 0                 ? T(0)
                                                      : T(double(random() % 100) * 1.25);
    }
    return image;
}

template <class T>
void compareCells(int width, int height)
{
    const MImage image = mixedPixels<T>(width, height);
    for (const bool hasNegatives : {false, true}) {
        const MImage thumb = thumbnail::ofImage(image, hasNegatives);
        const auto plain =
            plainCells<T>(image, thumb.width(), thumb.height(), [&](const std::vector<T>& cell) {
                return plainMean(cell, hasNegatives);
            });
        ASSERT_TRUE(std::equal(plain.begin(), plain.end(), thumb.pixels<T>()))
            << typeid(T).name() << ' ' << width << " x " << height << ' ' << hasNegatives;
        thumbnail::Builder inSteps(image);
        for (std::size_t end = 0; end < image.size(); end += 4099)
            inSteps.upTo(end);
        EXPECT_TRUE(samePixels(inSteps.finish(hasNegatives), thumb));
    }
    const MImage thumb = thumbnail::ofMask(image);
    const auto plain = plainCells<T>(image, thumb.width(), thumb.height(), plainMark<T>);
    ASSERT_TRUE(std::equal(plain.begin(), plain.end(), thumb.pixels<T>()));
}

TEST(Thumbnail, CellsEqualThoseOfAPlainLoop)
{
    for (const auto& [width, height] :
         {std::pair(1031, 117), {117, 1031}, {201, 7}, {7, 999}, {199, 200}, {403, 402}, {1, 300}})
        std::apply([&, w = width,
                    h = height](auto... types) { (compareCells<decltype(types)>(w, h), ...); },
                   morvend::datatypes::PixelTypes());
    forEveryTarget([] { compareCells<int>(1031, 517); });
}

TEST(MaskThumbnails, AreMadeOnceForEachMask)
{
    MaskThumbnails known;
    MImage first(300, 300, 0U);
    const MImage second(300, 300, 1U);
    const auto identity = known.of(first).identity();
    EXPECT_EQ(known.of(second).pixel<int>(0, 0, -1), 1);
    EXPECT_EQ(known.of(MImage(first)).identity(), identity);
    EXPECT_EQ(known.of(MImage(150, 300, first.imageData())).width(), 100);
    pixels<unsigned>(first)[0] = 8;
    EXPECT_EQ(known.of(first).pixel<int>(0, 0, -1), 8) << "its pixels have changed";
}

TEST(MaskFixup, KeepsAMaskOfTheRightSizeAndReplacesOthers)
{
    MaskFixup fixup;
    const auto fixed = [&](int width, int height, const MImage& own, bool fits) {
        MImage image(width, height, 1);
        if (own.size())
            image.optionalData().set_pixel_mask(own);
        testing::internal::CaptureStderr();
        MImage mask = fixup(image);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  fits ? "" : "WARNING: Size of pixel mask does not match size of image\n");
        EXPECT_EQ(image.optionalData().pixel_mask()->identity(), mask.identity());
        return mask;
    };
    const MImage own(200, 200, (unsigned char)(2));
    EXPECT_EQ(fixed(200, 200, own, true).identity(), own.identity());
    const MImage first = fixed(200, 200, {}, true);
    EXPECT_TRUE(samePixels(first, MImage(200, 200, 0U)));
    EXPECT_EQ(fixed(200, 200, MImage(100, 100, 1U), false).identity(), first.identity())
        << "images of a series share one";
    EXPECT_TRUE(samePixels(fixed(200, 100, MImage(100, 200, 1U), false), MImage(200, 100, 0U)));
}

TEST(MaskFixup, SeveralShareTheirMasks)
{
    MaskFixup fixups[2];
    MImage images[2];
    ImageStatistics statistics;
    statistics.maximum = 2e19;  // so there are marks
    const auto identities = [&] {
        return std::pair(images[0].optionalData().pixel_mask()->identity(),
                         images[1].optionalData().pixel_mask()->identity());
    };
    for (int i : {0, 1}) {
        images[i] = MImage(20, 10, 1ULL);
        fixups[i](images[i]);
    }
    const auto [good, alsoGood] = identities();
    EXPECT_EQ(good, alsoGood);
    for (int i : {0, 1}) {
        pixels<unsigned long long>(images[i])[7] = std::numeric_limits<unsigned long long>::max();
        EXPECT_TRUE(fixups[i].replaces(images[i], statistics));
    }
    const auto [gaps, sameGaps] = identities();
    EXPECT_NE(gaps, good);
    EXPECT_EQ(gaps, sameGaps);
}

}  // namespace
