// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixel memory: alignment, reuse, leases, identity, and sharing between threads.
#include "imagelib/image/MImage.h"
#include "imagelib/image/PixelBuffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

using morvend::image::PixelBuffer;
using morvend::image::PixelBufferPtr;
using morvend::imglib::MImage;

TEST(PixelBuffer, IsAlignedAndHasRoomBehindItsEnd)
{
    for (const std::size_t bytes : {0u, 1u, 63u, 64u, 65u, 300'000u, 5'000'000u}) {
        const PixelBufferPtr buffer = PixelBuffer::allocate(bytes);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer->cdata()) % 64, 0u) << bytes;
        std::memset(buffer->data(), 7, bytes + 64);  // the address sanitizer watches this
        EXPECT_EQ(buffer->size(), bytes);
    }
}

TEST(PixelBuffer, TooLargeARequestIsAnErrorAndNoCrash)
{
    for (const std::size_t bytes : {~std::size_t(0), ~std::size_t(0) / 2, ~std::size_t(0) - 64})
        EXPECT_THROW(PixelBuffer::allocate(bytes), morvend::MRuntimeException) << bytes;
}

#if !defined(__SANITIZE_ADDRESS__)
TEST(PixelBuffer, LargeBlocksAreReused)
{
    constexpr std::size_t Bytes = 4'000'000;
    PixelBuffer::trimPool();
    const void* first = PixelBuffer::allocate(Bytes)->cdata();
    EXPECT_GE(PixelBuffer::pooledBytes(), Bytes);
    const PixelBufferPtr second = PixelBuffer::allocate(Bytes - 1000);
    EXPECT_EQ(second->cdata(), first);
    EXPECT_EQ(PixelBuffer::pooledBytes(), 0u);
    // A block much larger than the request stays for those who need it.
    PixelBuffer::allocate(64'000'000);
    const PixelBufferPtr third = PixelBuffer::allocate(Bytes);
    EXPECT_GE(PixelBuffer::pooledBytes(), 64'000'000u);
    for (int i = 0; i < 100; ++i)
        PixelBuffer::allocate(Bytes);
    EXPECT_LT(PixelBuffer::pooledBytes(), 64'000'000u) << "but not if nobody does";
    PixelBuffer::trimPool();
    EXPECT_EQ(PixelBuffer::pooledBytes(), 0u);
}
#endif

TEST(PixelBuffer, EachContentHasAnIdentityOfItsOwn)
{
    MImage image(4, 4, 1);
    const MImage copy = image;
    EXPECT_EQ(copy.identity(), image.identity());
    const auto before = copy.identity();
    static_cast<int*>(image.data())[0] = 5;
    EXPECT_NE(image.identity(), before);
    EXPECT_EQ(copy.identity(), before);
    const auto written = image.identity();
    static_cast<int*>(image.data())[0] = 6;  // sole owner, same memory, new content
    EXPECT_NE(image.identity(), written);
    EXPECT_EQ(MImage().identity(), 0u);
}

TEST(PixelBuffer, LeaseIsGivenBackOnceWithItsLastReference)
{
    alignas(64) static const int foreign[32] = {1, 2, 3, 4};
    int released = 0;
    {
        const PixelBufferPtr lease =
            PixelBuffer::lease(foreign, 4 * sizeof(int), [&] { ++released; });
        MImage image(2, 2, MImage::BasicImage(lease, morvend::datatypes::INT, 32, 4));
        EXPECT_EQ(image.cdata(), foreign);
        MImage other = image;
        EXPECT_EQ(released, 0);
        // A writer gets pixels of its own: the lease is read-only.
        static_cast<int*>(other.data())[0] = 9;
        EXPECT_EQ(foreign[0], 1);
        EXPECT_EQ(other.pixel<int>(0, 0, 0), 9);
        EXPECT_EQ(other.pixel<int>(1, 1, 0), 4);
    }
    EXPECT_EQ(released, 1);
}

TEST(PixelBuffer, CopiesOnManyThreadsShareAndDetachSafely)
{
    const MImage original(256, 256, 3);
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int id = 0; id < 4; ++id)
        threads.emplace_back([&, id, mine = original]() mutable {
            for (int turn = 0; turn < 200; ++turn) {
                MImage copy = mine;
                static_cast<int*>(copy.data())[turn] = id;
                copy.optionalData().set_wavelength(float(id));
                if (copy.pixel<int>(turn, 0, -1) != id || mine.pixel<int>(turn, 0, -1) != 3)
                    ++wrong;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_FALSE(original.optionalData().wavelength());
}
