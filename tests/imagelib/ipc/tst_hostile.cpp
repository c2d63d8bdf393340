// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A peer that follows no rule loses its connection, and nothing else happens.
#include "imagelib/ipc/LeasePage.h"
#include "imagelib/ipc/MessageChannel.h"
#include "imagelib/ipc/QueueAddress.h"
#include "imagelib/ipc/QueueEnd.h"
#include "tests/imagelib/ipc/RawPeer.h"
#include "tests/imagelib/ipc/Samples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

namespace {

using namespace tarvik::tests;
using namespace std::chrono_literals;
using wire::ArrayPlace;
using wire::Place;

struct HostileCase {
    const char* name;
    const char* complaint;
    std::function<void(RawPeer&)> act;
};

/// Sends an image frame whose first array is said to be at a place.
void sendPlace(RawPeer& peer, const ArrayPlace& place, const std::vector<int>& fds = {},
               const MImage& image = MImage(1024, 256, 1), std::string bulk = {})
{
    wire::Parcel parcel = wire::pack(image);
    wire::setPlace(parcel, parcel.arrays.at(0), place);
    peer.send(wire::Kind::Image, parcel.meta, bulk, fds);
}

ArrayPlace at(Place place, std::uint32_t number = 0, std::int32_t descriptor = -1,
              std::uint64_t offset = 0)
{
    ArrayPlace result;
    result.place = place;
    result.number = number;
    result.descriptor = descriptor;
    result.offset = offset;
    return result;
}

/// Changes bytes of the description of a good image.
std::function<void(RawPeer&)> patched(std::size_t offset, std::initializer_list<int> bytes)
{
    return [offset, values = std::vector<int>(bytes)](RawPeer& peer) {
        wire::Parcel parcel = wire::pack(MImage(4, 4, 1));
        wire::setPlace(parcel, parcel.arrays.at(0), at(Place::Inline));
        for (std::size_t i = 0; i < values.size(); ++i)
            parcel.meta.at(offset + i) = std::byte(values[i]);
        peer.send(wire::Kind::Image, parcel.meta, std::string(64, 'x'));
    };
}

std::function<void(RawPeer&)> listOf(std::initializer_list<int> bytes)
{
    return [values = std::vector<int>(bytes)](RawPeer& peer) {
        std::vector<std::byte> meta;
        for (const int value : values)
            meta.push_back(std::byte(value));
        meta.resize(std::max<std::size_t>(meta.size(), 25));
        peer.send(wire::Kind::DrawingList, meta);
    };
}

constexpr std::size_t Megabyte = 1024 * 256 * 4;

const HostileCase Cases[] = {
    {"NoFrame", "is no frame", [](RawPeer& p) { p.raw(std::string(64, 'G')); }},
    {"OtherVersion", "version 2 of the protocol",
     [](RawPeer& p) {
         p.hello();
         p.head[4] = 2;
         p.send(wire::Kind::Text, {}, "x");
     }},
    {"UnknownKind", "unknown kind 77",
     [](RawPeer& p) {
         p.hello();
         p.send(wire::Kind(77), {});
     }},
    {"NoHello", "hello must be the first", [](RawPeer& p) { p.send(wire::Kind::Text, {}, "x"); }},
    {"TwoMasks", "two masks",
     [](RawPeer& p) {
         p.hello();
         MImage image;
         image.optionalData().set_pixel_mask(MImage());
         std::vector<std::byte> meta = wire::pack(image).meta;
         // Behind size, place and number of fields stands the one field, before the empty tree.
         const std::vector<std::byte> field(meta.begin() + 40, meta.end() - 4);
         meta.at(36) = std::byte(2);
         meta.insert(meta.end() - 4, field.begin(), field.end());
         p.send(wire::Kind::Image, meta);
     }},
    {"TwoHellos", "hello must be the first",
     [](RawPeer& p) {
         p.hello();
         p.hello();
     }},
    {"OtherName", "asks for \"another\"", [](RawPeer& p) { p.hello("another"); }},
    {"WrongNumber", "the frame 5 comes where the frame 1 is due",
     [](RawPeer& p) {
         p.hello();
         p.number = 5;
         p.send(wire::Kind::Text, {}, "x");
     }},
    {"TextTooLong", "too large",
     [](RawPeer& p) {
         p.hello();
         p.sendHead(wire::Kind::Text, 0, (64U << 20) + 1);
     }},
    {"HugeText", "too large",
     [](RawPeer& p) {
         p.hello();
         p.sendHead(wire::Kind::Text, 0, ~std::uint64_t(0));
     }},
    {"HugeDescription", "too large",
     [](RawPeer& p) {
         p.hello();
         p.sendHead(wire::Kind::Image, 0xffffffff, 0);
     }},
    {"TextWithDescription", "parts that it can't have",
     [](RawPeer& p) {
         p.hello();
         p.sendHead(wire::Kind::Text, 4, 0);
     }},
    {"TextWithDescriptors", "has no use for them",
     [](RawPeer& p) {
         p.hello();
         p.sendHead(wire::Kind::Text, 0, 0, 1);
     }},
    {"ManyDescriptors", "a frame with 3 descriptors",
     [](RawPeer& p) {
         p.hello();
         p.sendHead(wire::Kind::Image, 0, 0, 3);
     }},
    {"DescriptorsNotBrought", "without the descriptors",
     [](RawPeer& p) {
         p.hello();
         wire::Parcel parcel = wire::pack(MImage(4, 4, 1));
         p.sendHead(wire::Kind::Image, std::uint32_t(parcel.meta.size()), 64, 1);
         p.raw({reinterpret_cast<const char*>(parcel.meta.data()), parcel.meta.size()});
         p.raw(std::string(64, 'x'));
     }},
    {"LeasePageIsAPipe", "no memory file", [](RawPeer& p) { p.hello("", Files().pipe()); }},
    {"LeasePageTooShort", "lease page of a wrong size",
     [](RawPeer& p) { p.hello("", Files().memory(4096, true)); }},
    {"LeasePageWithoutMark", "lease page that is none",
     [](RawPeer& p) { p.hello("", Files().memory(LeasePageBytes, true)); }},
    {"LeasePageNotSealed", "not sealed",
     [](RawPeer& p) { p.hello("", Files().memory(LeasePageBytes, false)); }},
    {"SegmentWithoutLeasePage", "which can't be",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::Segment, 0, 0), {Files().memory(2 * Megabyte, true)});
     }},
    {"SegmentNeverSent", "which was never sent",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 3));
     }},
    {"SegmentNumberTooLarge", "segment 5000",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 5000, 0), {Files().memory(2 * Megabyte, true)});
     }},
    {"SegmentNotSealed", "not sealed",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 0, 0), {Files().memory(2 * Megabyte, false)});
     }},
    {"SegmentIsAPipe", "no memory file",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 0, 0), {Files().pipe()});
     }},
    {"SegmentIsAFolder", "no memory file",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 0, 0), {Files().folder()});
     }},
    {"SegmentTooShort", "in a memory file of 1048576",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 0, 0), {Files().memory(Megabyte, true)});
     }},
    {"OffsetBeyondSegment", "in a memory file of",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 0, 0, 64ULL << 50), {Files().memory(2 * Megabyte, true)});
     }},
    {"OffsetNotAligned", "in a memory file of",
     [](RawPeer& p) {
         p.helloWithLeases();
         sendPlace(p, at(Place::Segment, 0, 0, 4), {Files().memory(2 * Megabyte, true)});
     }},
    {"OwnFileWithHoles", "with holes",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::OwnFile, 0, 0), {Files().memory(2 * Megabyte, true, true)});
     }},
    {"EmptyOwnFile", "memory file of 0 bytes",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::OwnFile, 0, 0), {Files().memory(0, true, true)});
     }},
    {"OwnFileWithoutDescriptor", "has not brought",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::OwnFile, 0, -1));
     }},
    {"DescriptorIndexTooLarge", "has not brought",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::OwnFile, 0, 1), {Files().memory(2 * Megabyte, true)});
     }},
    {"KeptArrayNeverSent", "was never sent",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::Kept, 2));
     }},
    {"KeptArrayNumberTooLarge", "was never sent",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::Kept, 200));
     }},
    {"KeptArrayOfAnotherSize", "is another one",
     [](RawPeer& p) {
         p.hello();
         ArrayPlace place = at(Place::Inline);
         place.keep = 1;
         sendPlace(p, place, {}, MImage(4, 4, 1), std::string(64, 'x'));
         sendPlace(p, at(Place::Kept, 1), {}, MImage(5, 4, 1));
     }},
    {"InlinePixelsMissing", "beyond the end",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::Inline), {}, MImage(4, 4, 1), std::string(63, 'x'));
     }},
    {"InlineOffsetWraps", "beyond the end",
     [](RawPeer& p) {
         p.hello();
         sendPlace(p, at(Place::Inline, 0, -1, ~std::uint64_t(0) - 32), {}, MImage(4, 4, 1),
                   std::string(64, 'x'));
     }},
    {"NegativeWidth", "of -1 x 4",
     [](RawPeer& p) {
         p.hello(), patched(0, {255, 255, 255, 255})(p);
     }},
    {"HugeImage", "an image of 4611686014132420609 pixels",
     [](RawPeer& p) {
         p.hello(), patched(0, {255, 255, 255, 127, 255, 255, 255, 127})(p);
     }},
    {"PixelTypeUnknown", "unknown kind 9", [](RawPeer& p) { p.hello(), patched(8, {9})(p); }},
    {"BitsUnknown", "no pixel type", [](RawPeer& p) { p.hello(), patched(9, {24})(p); }},
    {"PlaceUnknown", "unknown place", [](RawPeer& p) { p.hello(), patched(12, {5})(p); }},
    {"NoPlace", "without its pixels", [](RawPeer& p) { p.hello(), patched(12, {0})(p); }},
    {"KeepNumberUnknown", "to be kept as number 8",
     [](RawPeer& p) { p.hello(), patched(13, {8})(p); }},
    {"FieldsLie", "items are announced",
     [](RawPeer& p) {
         p.hello(), patched(36, {255, 255})(p);
     }},
    {"ListLies", "items are announced",
     [](RawPeer& p) {
         p.hello(), listOf({255, 255, 255, 255})(p);
     }},
    {"PrimitiveUnknown", "unknown type 9",
     [](RawPeer& p) {
         p.hello(), listOf({1, 0, 0, 0, 9})(p);
     }},
    {"ListTooLong", "bytes too many",
     [](RawPeer& p) {
         p.hello(), listOf({0, 0, 0, 0})(p);
     }},
    {"ForgottenNeverSent", "is forgotten",
     [](RawPeer& p) {
         p.hello();
         p.send(wire::Kind::Forget, wire::packForget({{7}}).meta);
     }},
    {"LooseDescriptors", "that no frame announces",
     [](RawPeer& p) {
         p.hello();
         p.sendHead(wire::Kind::Text, 0, 200);
         for (int i = 0; i < 70; ++i)
             p.raw("x", {p.fd()});
     }},
};

std::size_t openFiles()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::size_t(std::distance(begin(all), end(all)));
}

class Hostile : public testing::TestWithParam<HostileCase> {};

TEST_P(Hostile, LosesItsConnectionWithAReason)
{
    const std::size_t before = openFiles();
    {
        auto [mine, theirs] = MessageChannel::socketPair();
        MessageChannel channel(std::move(mine));
        RawPeer peer(std::move(theirs));
        GetParam().act(peer);
        try {
            for (;;)
                channel.receive(2s);
        } catch (const morvend::MRuntimeException& exception) {
            EXPECT_THAT(exception.what(), testing::HasSubstr(GetParam().complaint));
        } catch (const std::exception& exception) {
            ADD_FAILURE() << exception.what();
        }
        EXPECT_TRUE(peer.ended());
    }
    EXPECT_EQ(openFiles(), before);
}

INSTANTIATE_TEST_SUITE_P(Table, Hostile, testing::ValuesIn(Cases),
                         [](const auto& row) { return row.param.name; });

TEST(HostilePeer, OfAQueueIsReportedAndTheNextPeerIsServed)
{
    const std::string name = "hostile_" + std::to_string(::getpid());
    QueueEnd end(name, SegmentPool::process());
    testing::internal::CaptureStderr();
    std::string got;
    std::thread reader([&] { got = std::get<std::string>(end.receive(0, 0, 20s)); });
    for (const char* hostile : {"SegmentNotSealed", "OtherVersion", "HugeImage", "NoFrame"}) {
        RawPeer peer(QueueAddress(name).connect());
        peer.name = name;
        std::ranges::find(Cases, std::string_view(hostile), [](const auto& each) {
            return std::string_view(each.name);
        })->act(peer);
        EXPECT_TRUE(peer.ended()) << hostile;
    }
    QueueEnd good(name, SegmentPool::process());
    good.send(std::string("served"));
    reader.join();
    EXPECT_EQ(got, "served");
    const std::string complaints = testing::internal::GetCapturedStderr();
    for (const char* part : {"not sealed", "version 2", "4611686014132420609", "no frame"})
        EXPECT_THAT(complaints, testing::HasSubstr(part));
}

TEST(HostilePeer, LyingLeasePageHarmsNobodyElse)
{
    auto [mine, theirs] = MessageChannel::socketPair();
    const auto pool = SegmentPool::create({});
    MessageChannel channel(std::move(mine), pool);
    RawPeer peer(std::move(theirs));
    const Mapping page(peer.leasePage(), LeasePageBytes, Mapping::Access::Write);
    std::memset(page.data() + 8, 0xff, LeasePageBytes - 8);
    for (int turn = 0; turn < 20; ++turn) {
        const morvend::image::PixelSource::Scope scope(*pool);
        channel.send(countingImage(1024, 256), 1s);
    }
    EXPECT_LE(pool->usage().segments, 20u);
}

TEST(HostilePeer, TruthOfAnyValueOfABoolIsOne)
{
    auto [mine, theirs] = MessageChannel::socketPair();
    MessageChannel channel(std::move(mine));
    RawPeer peer(std::move(theirs));
    peer.hello();
    sendPlace(peer, at(Place::Inline), {}, MImage(4, 1, true), std::string("\0\1\2\xff", 4));
    const MImage image = std::get<MImage>(channel.receive(2s));
    const auto* bytes = static_cast<const unsigned char*>(image.cdata());
    EXPECT_EQ(std::vector<int>(bytes, bytes + 4), (std::vector<int>{0, 1, 1, 1}));
}

}  // namespace
