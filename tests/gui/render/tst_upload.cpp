// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What is sent to the graphics card, and when: large images in tiles, nothing twice, and nothing at
// all while contrast is dragged.
#include "tests/gui/render/BareView.h"
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/ExpectedView.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

namespace {

using morvend::image::MBasicImage;
using morvend::image::PixelBuffer;
using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

template <class T>
MImage patterned(int width, int height, int step = 7)
{
    MImage image(width, height, T(0));
    auto* pixels = static_cast<T*>(image.data());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            *pixels++ = static_cast<T>((x * step + y * 13) % 101);
    return image;
}

MImage masked(MImage image, const MImage& mask)
{
    image.optionalData().set_pixel_mask(mask);
    return image;
}

class UploadTest : public testing::Test {
protected:
    UploadTest()
        : _view(QSize(200, 120))
    {}

    void SetUp() override { ASSERT_TRUE(drawer().usesGlsl()); }

    void open(const MImage& image)
    {
        ASSERT_TRUE(_view.open(image));
        _view.service->setContrastData({120, 3, MColorTable::grey(), false});
        drawer().grab();
    }
    BareView& drawer() { return *_view.drawer; }
    void show(double offsetX, double offsetY, int zoomPower)
    {
        _view.service->setViewportData({offsetX, offsetY, zoomPower, 0, 0});
    }
    std::string difference()
    {
        return differenceFromImage(drawer().grab(), *_view.service, 1,
                                   drawer().backgroundColor().rgb());
    }

    DrawnView<BareView> _view;
};

/// Pages of memory that can be made unreadable.
class GuardedPages {
public:
    explicit GuardedPages(const MImage& content)
        : _size((content.dataSize() + 64 + 4095) / 4096 * 4096)
        , _pages(mmap(nullptr, _size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
        std::memcpy(_pages, content.cdata(), content.dataSize());
    }
    ~GuardedPages() { munmap(_pages, _size); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    MImage image(const MImage& like) const
    {
        return {like.width(), like.height(),
                MBasicImage<>(PixelBuffer::lease(_pages, like.dataSize(), [] {}), like.type(),
                              like.typeBits(), like.size())};
    }
    void setReadable(bool readable)
    {
        ASSERT_EQ(mprotect(_pages, _size, readable ? PROT_READ : PROT_NONE), 0);
    }

private:
    std::size_t _size;
    void* _pages;
};

/// A pixel that is read here would end the test program.
TEST_F(UploadTest, AContrastDragReadsNoPixelAndSendsNone)
{
    const MImage image = patterned<int>(4000, 4000);
    const MImage mask(image, 0U);
    GuardedPages imagePages(image);
    GuardedPages maskPages(mask);
    {
        open(masked(imagePages.image(image), maskPages.image(mask)));
        const auto before = drawer().work();
        const QImage first = drawer().grab();
        imagePages.setReadable(false);
        maskPages.setReadable(false);
        for (int foreground = 100; foreground > 50; foreground -= 10) {
            _view.service->setContrastData({double(foreground), 1, MColorTable::grey(), true});
            drawer().repaint();
        }
        show(1000, 2000, -1);
        drawer().repaint();
        show(0, 0, 0);
        EXPECT_NE(drawer().grab(), first);
        imagePages.setReadable(true);
        maskPages.setReadable(true);
        EXPECT_EQ(drawer().work().imageUploads, before.imageUploads);
        EXPECT_EQ(drawer().work().maskUploads, before.maskUploads);
        EXPECT_EQ(drawer().work().tableUploads, before.tableUploads);
        EXPECT_EQ(drawer().work().colouredPixels, 0U);
        EXPECT_EQ(difference(), "");
        // The images go before their pages.
        ASSERT_TRUE(_view.open(masked(patterned<int>(8, 8), MImage(8, 8, 0U))));
    }
}

TEST_F(UploadTest, WhatTheCardHoldsIsNotSentAgain)
{
    const MImage mask(300, 200, 0U);
    open(masked(patterned<int>(300, 200), mask));
    const auto first = drawer().work();
    EXPECT_EQ(first.imageUploads, 1);
    EXPECT_EQ(first.maskUploads, 1);
    _view.service->toggleHighlightSaturated(false);
    _view.service->toggleHighlightDefective(false);
    EXPECT_EQ(drawer().work().imageUploads, 1) << "other highlights";

    open(masked(patterned<int>(300, 200, 3), mask));
    EXPECT_EQ(drawer().work().imageUploads, 2) << "the next image of a series";
    EXPECT_EQ(drawer().work().maskUploads, 1) << "and its mask, which stayed";
    EXPECT_EQ(difference(), "");

    MImage other = mask;
    static_cast<unsigned int*>(other.data())[5] = 1;
    open(masked(patterned<int>(300, 200, 3), other));
    EXPECT_EQ(drawer().work().maskUploads, 2) << "a mask that was changed";
    EXPECT_EQ(difference(), "");

    open(masked(patterned<unsigned short>(300, 200, 5), mask));
    EXPECT_EQ(difference(), "") << "pixels of another type";
    open(masked(patterned<double>(200, 300), MImage(200, 300, 0ULL)));
    EXPECT_EQ(difference(), "") << "an image of another shape";
}

TEST_F(UploadTest, ImagesBeyondTheLimitOfTexturesShowEachPixel)
{
    for (const int limit : {200, 64, 33}) {
        drawer().limitTextureSize(limit);
        for (const MImage& image :
             {masked(patterned<int>(310, 190), MImage(310, 190, 0U)),
              masked(patterned<unsigned char>(310, 190), MImage(310, 190, (unsigned char)(0))),
              masked(patterned<double>(310, 190), MImage(310, 190, 0ULL))}) {
            open(image);
            EXPECT_TRUE(drawer().usesGlsl());
            for (int zoomPower = -2; zoomPower <= 6; ++zoomPower) {
                for (const auto& [x, y] : {std::pair(0.0, 0.0),
                                           {-60.3, -20.2},
                                           {31.3, 31.8},
                                           {62.99, 31.01},
                                           {250.2, 150}}) {
                    show(x, y, zoomPower);
                    ASSERT_EQ(difference(), "") << limit << " " << x << " " << y;
                }
            }
        }
    }
}

TEST_F(UploadTest, AnImageThatTheCardCannotHoldIsDrawnByTheProcessor)
{
    drawer().limitTextureSize(1);
    testing::internal::CaptureStderr();
    open(masked(patterned<int>(310, 190), MImage(310, 190, 0U)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "WARNING: The graphics card can't hold an image of 310 x 190 pixels: the processor "
              "draws it\n");
    EXPECT_FALSE(drawer().usesGlsl());
    EXPECT_EQ(difference(), "");
    drawer().limitTextureSize(1000);
    open(masked(patterned<int>(300, 190), MImage(300, 190, 0U)));
    EXPECT_TRUE(drawer().usesGlsl());
    EXPECT_EQ(difference(), "");
}

}  // namespace
