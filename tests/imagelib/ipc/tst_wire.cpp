// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The frames of tests/data/wire, and Python at the other end of a queue.
#include "imagelib/ipc/QueueEnd.h"
#include "imagelib/ipc/WireFormat.h"
#include "tests/imagelib/ipc/Samples.h"
#include "tests/support/Processes.h"
#include "tests/support/SourcePath.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <thread>

namespace {

using namespace tarvik::tests;
using namespace std::chrono_literals;

struct NoArrays : wire::ArraySource {
    morvend::image::PixelBufferPtr outside(const wire::ArrayPlace&, std::size_t) override
    {
        throw morvend::MRuntimeException("outside");
    }
    morvend::image::MBasicImage<> kept(std::uint32_t) override
    {
        throw morvend::MRuntimeException("kept");
    }
    void keep(std::uint32_t, const morvend::image::MBasicImage<>&) override {}
};

std::string bytesOf(std::span<const std::byte> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A whole frame with its pixels inline.
std::string frameOf(wire::Parcel parcel, std::uint64_t number)
{
    std::string bulk = parcel.text;
    for (const auto& array : parcel.arrays) {
        wire::ArrayPlace place;
        place.place = wire::Place::Inline;
        place.offset = bulk.size();
        wire::setPlace(parcel, array, place);
        bulk.append(static_cast<const char*>(array.pixels.cdata()),
                    array.pixels.size() * (array.pixels.typeBits() / 8));
    }
    wire::Head head;
    head.kind = parcel.kind;
    head.metaBytes = static_cast<std::uint32_t>(parcel.meta.size());
    head.bulkBytes = bulk.size();
    head.number = number;
    return bytesOf(wire::encodeHead(head)) + bytesOf(parcel.meta) + bulk;
}

std::string kept(const std::string& name)
{
    std::ifstream in(sourcePath("/tests/data/wire/") + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Compares with the kept file, or writes it when TARVIK_UPDATE_WIRE is set.
void expectKept(const std::string& name, const std::string& bytes)
{
    if (std::getenv("TARVIK_UPDATE_WIRE"))
        std::ofstream(sourcePath("/tests/data/wire/") + name, std::ios::binary) << bytes;
    EXPECT_EQ(kept(name), bytes) << name;
}

TEST(WireData, KeptFramesAreWhatIsSentAndDecodeToTheirMessages)
{
    const std::pair<const char*, Message> messages[] = {
        {"text.frame", std::string("text \xc3\xa4 \0 end", 13)},
        {"empty_text.frame", std::string()},
        {"image.frame", fullImage()},
        {"empty_image.frame", MImage()},
        {"list.frame", fullList()}};
    NoArrays none;
    std::uint64_t number = 1;
    for (const auto& [name, message] : messages) {
        expectKept(name, frameOf(wire::pack(message), number++));
        const std::string bytes = kept(name);
        const auto frame = wire::decodeFrame(std::as_bytes(std::span(bytes)), none);
        ASSERT_TRUE(std::holds_alternative<Message>(frame)) << name;
        EXPECT_TRUE(sameMessages(std::get<Message>(frame), message)) << name;
    }
    expectKept("hello.frame", frameOf(wire::packHello({"a queue \xc3\xa4", 4711, false}), 0));
    expectKept("forget.frame", frameOf(wire::packForget({{0, 5, 1023}}), 9));
    const std::string hello = kept("hello.frame");
    EXPECT_EQ(std::get<wire::Hello>(wire::decodeFrame(std::as_bytes(std::span(hello)), none)).name,
              "a queue \xc3\xa4");
}

TEST(WireData, FrameCutAnywhereIsAnError)
{
    NoArrays none;
    for (const char* name : {"text.frame", "image.frame", "list.frame", "hello.frame"}) {
        const std::string whole = kept(name);
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_THROW(wire::decodeFrame(std::as_bytes(std::span(whole.data(), size)), none),
                         morvend::MRuntimeException);
    }
}

int python(const std::string& arguments)
{
    const std::string command =
        "PYTHONPATH=" + sourcePath("/python/src ") + TARVIK_PYTHON " -B " + arguments;
    return std::system(command.c_str());
}

TEST(PythonPeer, SendsBackWhatItReceives)
{
    std::vector<Message> messages = {std::string("text"), fullImage(), fullList(),
                                     std::string(1'000'000, 'x'), MImage()};
    const MImage mask(1024, 256, 3U);
    for (int i = 0; i < 6; ++i) {  // in segments that are used again, with one mask
        MImage large = countingImage(1024, 256, i);
        large.optionalData().set_pixel_mask(mask);
        messages.push_back(large);
    }
    for (const bool pythonFirst : {false, true}) {
        const std::string name = "echo_" + std::to_string(::getpid());
        std::thread peer([&] {
            EXPECT_EQ(python(sourcePath("/python/tests/echo.py ") + name + " " +
                             std::to_string(messages.size())),
                      0);
        });
        EXPECT_TRUE(!pythonFirst || waitFor([&] { return socketIsOpen(name); }));
        const auto pool = SegmentPool::create({});
        QueueEnd end(name, pool);
        for (const Message& message : messages) {
            end.send(message);
            EXPECT_TRUE(sameMessages(end.receive(message.index(), 0, 120s), message));
        }
        end.send(std::string("the last word"));
        peer.join();
        EXPECT_LE(pool->usage().segments, 4u);  // leases came back from Python
    }
}

}  // namespace
