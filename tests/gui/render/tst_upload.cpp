// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What is sent to the graphics card, and when: large images in tiles, nothing twice, and nothing at
// all while contrast is dragged.
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/ExpectedView.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

namespace {

using images::patterned;
using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

MImage masked(MImage image, const MImage& mask)
{
    image.optionalData().set_pixel_mask(mask);
    return image;
}

class UploadTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(drawer().usesGlsl()); }

    void open(const MImage& image)
    {
        ASSERT_TRUE(_view.open(image));
        _view.service->setContrastData({120, 3, MColorTable::grey(), false});
        drawer().grab();
    }
    BareView& drawer() { return *_view.drawer; }
    void look(double offsetX, double offsetY, int zoomPower)
    {
        _view.service->setViewportData({offsetX, offsetY, zoomPower, 0, 0});
    }
    std::string difference()
    {
        return differenceFromImage(drawer().grab(), *_view.service, 1,
                                   drawer().backgroundColor().rgb());
    }

    DrawnView<BareView> _view{QSize(200, 120)};
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
        using namespace morvend::image;
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
    const MImage image = patterned(1500, 1000);
    const MImage mask(image, 0U);
    GuardedPages imagePages(image), maskPages(mask);
    open(masked(imagePages.image(image), maskPages.image(mask)));
    const auto before = drawer().work();
    const QImage first = drawer().grab();
    imagePages.setReadable(false);
    maskPages.setReadable(false);
    for (int foreground = 100; foreground > 50; foreground -= 10) {
        _view.service->setContrastData({double(foreground), 1, MColorTable::grey(), true});
        drawer().repaint();
    }
    look(500, 700, -1);
    drawer().repaint();
    look(0, 0, 0);
    EXPECT_NE(drawer().grab(), first);
    imagePages.setReadable(true);
    maskPages.setReadable(true);
    EXPECT_EQ(drawer().work().imageUploads, before.imageUploads);
    EXPECT_EQ(drawer().work().maskUploads, before.maskUploads);
    EXPECT_EQ(drawer().work().tableUploads, before.tableUploads);
    EXPECT_EQ(drawer().work().colouredPixels, 0U);
    EXPECT_EQ(difference(), "");
    ASSERT_TRUE(_view.open(patterned(8, 8))) << "the images go before their pages";
}

TEST_F(UploadTest, WhatTheCardHoldsIsNotSentAgain)
{
    const MImage mask(300, 200, 0U);
    MImage other = mask;
    static_cast<unsigned int*>(other.data())[5] = 1;
    const auto open = [&](const char* what, const MImage& image, int imageUploads,
                          int maskUploads) {
        UploadTest::open(image);
        EXPECT_EQ(drawer().work().imageUploads, imageUploads) << what;
        EXPECT_EQ(drawer().work().maskUploads, maskUploads) << what;
        EXPECT_EQ(difference(), "") << what;
    };
    open("a first image", masked(patterned(300, 200), mask), 1, 1);
    _view.service->toggleHighlightSaturated(false);
    _view.service->toggleHighlightDefective(false);
    EXPECT_EQ(drawer().work().imageUploads, 1) << "other highlights";
    open("the next one of a series, whose mask stays", masked(patterned(300, 200, 3), mask), 2, 1);
    open("a mask that was changed", masked(patterned(300, 200, 3), other), 3, 2);
    open("pixels of another type", masked(patterned<unsigned short>(300, 200, 5), mask), 4, 3);
    open("another shape", masked(patterned<double>(200, 300), MImage(200, 300, 0ULL)), 5, 4);
}

TEST_F(UploadTest, ImagesBeyondTheLimitOfTexturesShowEachPixel)
{
    const std::pair<double, double> offsets[] = {
        {0, 0}, {-60.3, -20.2}, {31.3, 31.8}, {62.99, 31.01}, {250.2, 150}};
    std::size_t turn = 0;
    for (const int limit : {200, 64, 33}) {
        drawer().limitTextureSize(limit);
        for (const MImage& image :
             {patterned(310, 190),
              masked(patterned<unsigned char>(310, 190), MImage(310, 190, (unsigned char)(0))),
              masked(patterned<double>(310, 190), MImage(310, 190, 0ULL))}) {
            open(image);
            EXPECT_TRUE(drawer().usesGlsl());
            for (int zoomPower = -2; zoomPower <= 6; ++zoomPower) {
                const auto& [x, y] = offsets[turn++ % std::size(offsets)];
                look(x, y, zoomPower);
                ASSERT_EQ(difference(), "") << limit << " " << x << " " << y;
            }
        }
    }
}

TEST_F(UploadTest, AnImageThatTheCardCannotHoldIsDrawnByTheProcessor)
{
    drawer().limitTextureSize(1);
    testing::internal::CaptureStderr();
    open(patterned(310, 190));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "WARNING: The graphics card can't hold an image of 310 x 190 pixels: the processor "
              "draws it\n");
    EXPECT_FALSE(drawer().usesGlsl());
    EXPECT_EQ(difference(), "");
    drawer().limitTextureSize(1000);
    open(patterned(300, 190));
    EXPECT_TRUE(drawer().usesGlsl());
    EXPECT_EQ(difference(), "");
}

}  // namespace
