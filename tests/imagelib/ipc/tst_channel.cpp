// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Messages over a pair of sockets: contents, shared memory and its return, ends of a peer.
#include "imagelib/ipc/MessageChannel.h"
#include "imagelib/ipc/SegmentPool.h"
#include "tests/imagelib/ipc/Samples.h"

#include <gtest/gtest.h>

#include <thread>

#include <sys/stat.h>

namespace {

using namespace tarvik::tests;
using namespace std::chrono_literals;
using morvend::image::PixelSource;

/// Two channels in one process, as those of a parent and its child.
struct ChannelPair {
    explicit ChannelPair(const SegmentPool::Limits& limits = {})
        : pool(SegmentPool::create(limits))
    {
        auto [a, b] = MessageChannel::socketPair();
        left = std::make_unique<MessageChannel>(std::move(a), pool);
        right = std::make_unique<MessageChannel>(std::move(b), pool);
    }
    Message pass(const Message& message)
    {
        left->enqueue(message);
        for (;;) {  // by turns, since a long message does not fit into the socket
            left->flush();
            if (auto arrived = right->poll())
                return std::move(*arrived);
        }
    }
    MImage pass(const MImage& image) { return std::get<MImage>(pass(Message(image))); }

    std::shared_ptr<SegmentPool> pool;
    std::unique_ptr<MessageChannel> left;
    std::unique_ptr<MessageChannel> right;
};

MImage inPool(SegmentPool& pool, int width, int height, int first = 0)
{
    const PixelSource::Scope scope(pool);
    return countingImage(width, height, first);
}

std::string bigEndian(char32_t number)
{
    return {char(number >> 16), char(number >> 8 & 255), char(number & 255)};
}

constexpr int Wide = 1024;  // an image of 1024 x 256 int pixels has a megabyte

TEST(MessageChannel, EveryKindArrivesAsItWas)
{
    MImage noPixels(0, 3, morvend::datatypes::UINT, 16);
    noPixels.optionalData().set_description("a header alone");
    MImage masked = countingImage(Wide, 256);
    masked.optionalData().set_pixel_mask(MImage(Wide, 256, 3U));
    const Message messages[] = {std::string(),
                                std::string("text with \0 and \n", 17),
                                std::string(300'000, 'x'),
                                MImage(),
                                noPixels,
                                fullImage(),
                                fullImage(Wide, 256),
                                masked,
                                MImage(3, 2, true),
                                MImage(3, 2, 'c'),
                                MImage(3, 2, 1e-300),
                                MImage(300, 2000, 5ULL),
                                MDrawingList<>(),
                                fullList()};
    for (const bool shared : {true, false}) {
        SegmentPool::Limits limits;
        limits.segments = shared ? 100 : 0;  // without, large images come in files of their own
        ChannelPair pair(limits);
        for (const Message& message : messages)
            EXPECT_TRUE(sameMessages(pair.pass(message), message)) << message.index();
        // All at once, and the other way.
        std::thread sender([&] {
            for (const Message& message : messages)
                pair.right->send(message);
        });
        for (const Message& message : messages)
            EXPECT_TRUE(sameMessages(pair.left->receive(120s), message)) << message.index();
        sender.join();
    }
}

TEST(MessageChannel, ImageMadeInASegmentIsNotCopied)
{
    ChannelPair pair;
    const MImage image = inPool(*pair.pool, Wide, 256);
    const auto segment = pair.pool->find(*image.imageData().buffer());
    ASSERT_TRUE(segment);
    const MImage received = pair.pass(image);
    // The same memory, though at another address: what is written here is seen there.
    EXPECT_NE(received.cdata(), image.cdata());
    reinterpret_cast<int*>(segment->data())[5] = 77;
    EXPECT_EQ(received.pixel<int>(5, 0, 0), 77);
    EXPECT_EQ(pair.pool->usage().segments, 1u);
}

TEST(MessageChannel, SentPixelsStayWhateverBothSidesDoWithTheirImages)
{
    ChannelPair pair;
    MImage image = inPool(*pair.pool, Wide, 256);
    MImage received = pair.pass(image);
    static_cast<int*>(image.data())[5] = -1;
    EXPECT_EQ(received.pixel<int>(5, 0, 0), 5);
    static_cast<int*>(received.data())[6] = -1;
    EXPECT_EQ(image.pixel<int>(6, 0, 0), 6);
}

TEST(MessageChannel, SegmentIsTakenAgainWhenItsLastImageHasGone)
{
    ChannelPair pair;
    const void* address = nullptr;
    for (int turn = 0; turn < 50; ++turn) {
        const MImage image = inPool(*pair.pool, Wide, 256, turn);
        address = address ? address : image.cdata();
        EXPECT_EQ(image.cdata(), address);
        const MImage received = pair.pass(image);
        EXPECT_EQ(received.pixel<int>(0, 0, -1), turn);
    }
    EXPECT_EQ(pair.pool->usage().segments, 1u);
    // As long as the receiver shows one, it is not overwritten.
    MImage shown = pair.pass(inPool(*pair.pool, Wide, 256, 1000));
    for (int turn = 0; turn < 3; ++turn)
        EXPECT_NE(inPool(*pair.pool, Wide, 256).cdata(), address);
    EXPECT_EQ(shown.pixel<int>(0, 0, -1), 1000);
    shown = MImage();
    EXPECT_EQ(pair.pool->usage().idle, pair.pool->usage().segments);
}

TEST(MessageChannel, MemoryThatNobodyShowsIsGivenBackAtOnce)
{
    ChannelPair pair;
    MImage image = inPool(*pair.pool, Wide, 256);
    const auto segment = pair.pool->find(*image.imageData().buffer());
    MImage shown = pair.pass(std::exchange(image, {}));
    const auto blocksAfterTrim = [&] {
        pair.pool->trim();
        struct stat file = {};
        ::fstat(segment->file().get(), &file);
        return file.st_blocks;
    };
    EXPECT_GT(blocksAfterTrim(), 0);
    EXPECT_EQ(shown.pixel<int>(5, 0, 0), 5);
    shown = MImage();
    EXPECT_EQ(blocksAfterTrim(), 0);
}

TEST(MessageChannel, ShownImageOutlivesConnectionAndSenderAndIsNeverOverwritten)
{
    ChannelPair pair;
    const MImage shown = pair.pass(inPool(*pair.pool, Wide, 256, 7));
    pair.right.reset();
    pair.left.reset();
    for (int turn = 0; turn < 3; ++turn)
        inPool(*pair.pool, Wide, 256, -1);
    EXPECT_TRUE(samePixels(shown, countingImage(Wide, 256, 7)));
    pair.pool.reset();
    EXPECT_TRUE(samePixels(shown, countingImage(Wide, 256, 7)));
}

TEST(MessageChannel, UnchangedMaskIsSentOnce)
{
    ChannelPair pair;
    MImage image = countingImage(4, 4);
    MImage mask(Wide, 300, 1U);
    image.optionalData().set_pixel_mask(mask);
    const auto identity = [](const MImage& received) {
        return received.optionalData().pixel_mask()->identity();
    };
    const auto first = identity(pair.pass(image));
    const auto before = pair.pool->usage().segments;
    EXPECT_EQ(identity(pair.pass(image)), first);
    EXPECT_EQ(identity(pair.pass(image)), first);
    EXPECT_EQ(pair.pool->usage().segments, before);
    static_cast<unsigned*>(mask.data())[0] = 2;
    image.optionalData().set_pixel_mask(mask);
    const MImage changed = pair.pass(image);
    EXPECT_NE(identity(changed), first);
    EXPECT_EQ(changed.optionalData().pixel_mask()->pixel<int>(0, 0, 0), 2);
    // More masks in turn than are kept.
    for (unsigned turn = 0; turn < 30; ++turn) {
        image.optionalData().set_pixel_mask(MImage(4, 4, turn));
        EXPECT_TRUE(sameHeaders(pair.pass(image), image));
    }
}

TEST(MessageChannel, WhatTheProtocolCannotCarryIsRefusedAtOnce)
{
    ChannelPair pair;
    EXPECT_THROW(pair.left->send(std::string((64U << 20) + 1, 'x')),
                 morvend::MBadParameterException);
    MImage mask(2, 2, 1U);
    mask.optionalData().set_pixel_mask(MImage(2, 2, 1U));
    MImage image(2, 2, 1);
    image.optionalData().set_pixel_mask(mask);
    EXPECT_THROW(pair.left->send(image), morvend::MBadParameterException);
    morvend::nexus::MBasicNeXusTree tree;
    auto& attributes = tree.node("/").attributes;
    for (char32_t name = 0; name <= 1 << 20; ++name)  // in the order of the map
        attributes.emplace_hint(attributes.end(), bigEndian(name), std::int64_t(name));
    image = MImage(2, 2, 1);
    image.optionalData().setNexusTree(std::move(tree));
    EXPECT_THROW(pair.left->send(image), morvend::MBadParameterException);
    EXPECT_EQ(std::get<std::string>(pair.pass(std::string("still there"))), "still there");
}

TEST(MessageChannel, EndOfThePeerIsLearntBehindItsMessages)
{
    ChannelPair pair;
    pair.left->send(std::string("last words"));
    pair.left.reset();
    EXPECT_EQ(std::get<std::string>(pair.right->receive()), "last words");
    EXPECT_THROW(pair.right->receive(), morvend::MPeerGoneException);
    EXPECT_THROW(pair.right->send(std::string("x")), morvend::MPeerGoneException);
}

TEST(MessageChannel, WaitsEndWithTheirTime)
{
    ChannelPair pair;
    EXPECT_THROW(pair.right->receive(20ms), morvend::MTimeoutException);
    EXPECT_THROW(pair.left->send(std::string(4'000'000, 'x'), 20ms), morvend::MTimeoutException);
    std::thread waiting([&] { EXPECT_THROW(pair.left->receive(), morvend::MPeerGoneException); });
    std::this_thread::sleep_for(5ms);
    pair.left->shutdown();
    waiting.join();
}

TEST(MessageChannel, UnreadBytesInSharedMemoryAreBounded)
{
    ChannelPair pair;
    const MImage image = inPool(*pair.pool, 4096, 4096);  // 64 MiB, each time counted
    int sent = 0;
    for (bool flushed = true; flushed && sent < 40; ++sent) {
        pair.left->enqueue(image);
        flushed = pair.left->flush();
    }
    EXPECT_GE(sent, 5);
    EXPECT_LE(sent, 10);
    for (int i = 0; i < sent; ++i) {
        pair.left->flush();
        EXPECT_EQ(std::get<MImage>(pair.right->receive(120s)).pixel<int>(9, 1, 0), 4105);
    }
}

}  // namespace
