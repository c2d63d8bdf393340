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
#include "tests/support/Processes.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace tarvik::tests;
using namespace std::chrono_literals;
using wire::ArrayPlace;
using wire::Place;

using Act = std::function<void(RawPeer&)>;
using Opens = std::function<int(Files&)>;

struct HostileCase {
    const char* name;
    const char* complaint;
    Act act;
};

constexpr std::size_t Megabyte = 1024 * 256 * 4;

Act hello(Act act)
{
    return [act](RawPeer& peer) {
        peer.hello();
        act(peer);
    };
}

/// A head alone, for parts that do not come.
Act head(wire::Kind kind, std::uint32_t meta, std::uint64_t bulk, std::uint32_t descriptors = 0)
{
    return hello([=](RawPeer& peer) { peer.sendHead(kind, meta, bulk, descriptors); });
}

/// A hello with a lease page that is none.
Act leases(const Opens& open)
{
    return [open](RawPeer& peer) {
        Files files;
        peer.hello("", {open(files)});
    };
}

Opens memory(std::size_t bytes, bool sealed = true, bool holes = false)
{
    return [=](Files& files) { return files.memory(bytes, sealed, holes); };
}
int pipe(Files& files) { return files.pipe(); }
int folder(Files& files) { return files.folder(); }

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

/// Sends an image frame whose first array is said to be at a place.
void sendPlace(RawPeer& peer, const ArrayPlace& place, const std::vector<int>& fds,
               const MImage& image, std::string_view bulk = {})
{
    wire::Parcel parcel = wire::pack(image);
    wire::setPlace(parcel, parcel.arrays.at(0), place);
    peer.send(wire::Kind::Image, parcel.meta, bulk, fds);
}

/// An image of a megabyte, with a descriptor when `open` makes one.
Act outside(const ArrayPlace& place, const Opens& open = {})
{
    return [=](RawPeer& peer) {
        Files files;
        place.place == Place::Segment ? peer.helloWithLeases() : peer.hello();
        sendPlace(peer, place, open ? std::vector{open(files)} : std::vector<int>(),
                  MImage(1024, 256, 1));
    };
}

/// An image of 64 bytes, of which some or too few come.
Act inlined(std::size_t bytes, std::uint64_t offset)
{
    return hello([=](RawPeer& peer) {
        sendPlace(peer, at(Place::Inline, 0, -1, offset), {}, MImage(4, 4, 1),
                  std::string(bytes, 'x'));
    });
}

/// Changes bytes of the description of a good image.
Act patched(std::size_t offset, std::string_view bytes)
{
    return hello([=](RawPeer& peer) {
        wire::Parcel parcel = wire::pack(MImage(4, 4, 1));
        wire::setPlace(parcel, parcel.arrays.at(0), at(Place::Inline));
        std::memcpy(parcel.meta.data() + offset, bytes.data(), bytes.size());
        peer.send(wire::Kind::Image, parcel.meta, std::string(64, 'x'));
    });
}

Act listOf(std::string_view bytes)
{
    return hello([=](RawPeer& peer) {
        std::vector<std::byte> meta(25);
        std::memcpy(meta.data(), bytes.data(), bytes.size());
        peer.send(wire::Kind::DrawingList, meta);
    });
}

void twoMasks(RawPeer& peer)
{
    MImage image;
    image.optionalData().set_pixel_mask(MImage());
    std::vector<std::byte> meta = wire::pack(image).meta;
    // After size, place and number of fields comes the one field, before the empty tree.
    const std::vector<std::byte> field(meta.begin() + 40, meta.end() - 4);
    meta.at(36) = std::byte(2);
    meta.insert(meta.end() - 4, field.begin(), field.end());
    peer.send(wire::Kind::Image, meta);
}

void withoutItsDescriptors(RawPeer& peer)
{
    const wire::Parcel parcel = wire::pack(MImage(4, 4, 1));
    peer.sendHead(wire::Kind::Image, std::uint32_t(parcel.meta.size()), 64, 1);
    peer.raw({reinterpret_cast<const char*>(parcel.meta.data()), parcel.meta.size()});
    peer.raw(std::string(64, 'x'));
}

void keptOfAnotherSize(RawPeer& peer)
{
    ArrayPlace place = at(Place::Inline);
    place.keep = 1;
    sendPlace(peer, place, {}, MImage(4, 4, 1), std::string(64, 'x'));
    sendPlace(peer, at(Place::Kept, 1), {}, MImage(5, 4, 1));
}

void looseDescriptors(RawPeer& peer)
{
    peer.sendHead(wire::Kind::Text, 0, 200);
    for (int i = 0; i < 70; ++i)
        peer.raw("x", {peer.fd()});
}

void text(RawPeer& peer) { peer.send(wire::Kind::Text, {}, "x"); }

using enum wire::Kind;
const auto otherVersion = [](RawPeer& p) { p.head[4] = 2, text(p); };
const auto wrongNumber = [](RawPeer& p) { p.number = 5, text(p); };
const auto unknownKind = [](RawPeer& p) { p.send(wire::Kind(77), {}); };
const auto forgets = [](RawPeer& p) { p.send(Forget, wire::packForget({{7}}).meta); };
const auto unknownPrimitive = std::string_view("\1\0\0\0\11", 5);
const auto segment = [](std::uint32_t number = 0, std::uint64_t offset = 0) {
    return at(Place::Segment, number, 0, offset);
};

const HostileCase Cases[] = {
    {"NoFrame", "is no frame", [](RawPeer& p) { p.raw(std::string(64, 'G')); }},
    {"OtherVersion", "version 2 of the protocol", hello(otherVersion)},
    {"UnknownKind", "unknown kind 77", hello(unknownKind)},
    {"NoHello", "hello must be the first", text},
    {"TwoMasks", "two masks", hello(twoMasks)},
    {"TwoHellos", "hello must be the first", hello([](RawPeer& p) { p.hello(); })},
    {"OtherName", "asks for \"another\"", [](RawPeer& p) { p.hello("another"); }},
    {"WrongNumber", "the frame 5 comes where the frame 1 is due", hello(wrongNumber)},
    {"TextTooLong", "too large", head(Text, 0, (64U << 20) + 1)},
    {"HugeText", "too large", head(Text, 0, ~std::uint64_t(0))},
    {"HugeDescription", "too large", head(Image, 0xffffffff, 0)},
    {"TextWithDescription", "parts that it can't have", head(Text, 4, 0)},
    {"TextWithDescriptors", "has no use for them", head(Text, 0, 0, 1)},
    {"ManyDescriptors", "a frame with 3 descriptors", head(Image, 0, 0, 3)},
    {"DescriptorsNotBrought", "without the descriptors", hello(withoutItsDescriptors)},
    {"LeasePageIsAPipe", "no memory file", leases(pipe)},
    {"LeasePageTooShort", "lease page of a wrong size", leases(memory(4096))},
    {"LeasePageWithoutMark", "lease page that is none", leases(memory(LeasePageBytes))},
    {"LeasePageNotSealed", "not sealed", leases(memory(LeasePageBytes, false))},
    {"SegmentWithoutLeasePage", "which can't be", hello([](RawPeer& p) {
         Files files;
         sendPlace(p, segment(), {files.memory(2 * Megabyte, true)}, MImage(1024, 256, 1));
     })},
    {"SegmentNeverSent", "which was never sent", outside(at(Place::Segment, 3))},
    {"SegmentNumberTooLarge", "segment 5000", outside(segment(5000), memory(2 * Megabyte))},
    {"SegmentNotSealed", "not sealed", outside(segment(), memory(2 * Megabyte, false))},
    {"SegmentIsAPipe", "no memory file", outside(segment(), pipe)},
    {"SegmentIsAFolder", "no memory file", outside(segment(), folder)},
    {"SegmentTooShort", "in a memory file of 1048576", outside(segment(), memory(Megabyte))},
    {"OffsetBeyondSegment", "in a memory file of",
     outside(segment(0, 64ULL << 50), memory(2 * Megabyte))},
    {"OffsetNotAligned", "in a memory file of", outside(segment(0, 4), memory(2 * Megabyte))},
    {"OwnFileWithHoles", "with holes",
     outside(at(Place::OwnFile, 0, 0), memory(2 * Megabyte, true, true))},
    {"EmptyOwnFile", "memory file of 0 bytes",
     outside(at(Place::OwnFile, 0, 0), memory(0, true, true))},
    {"OwnFileWithoutDescriptor", "has not brought", outside(at(Place::OwnFile, 0, -1))},
    {"DescriptorIndexTooLarge", "has not brought",
     outside(at(Place::OwnFile, 0, 1), memory(2 * Megabyte))},
    {"KeptArrayNeverSent", "was never sent", outside(at(Place::Kept, 2))},
    {"KeptArrayNumberTooLarge", "was never sent", outside(at(Place::Kept, 200))},
    {"KeptArrayOfAnotherSize", "is another one", hello(keptOfAnotherSize)},
    {"InlinePixelsMissing", "beyond the end", inlined(63, 0)},
    {"InlineOffsetWraps", "beyond the end", inlined(64, ~std::uint64_t(0) - 32)},
    {"NegativeWidth", "of -1 x 4", patched(0, "\xff\xff\xff\xff")},
    {"HugeImage", "an image of 4611686014132420609 pixels",
     patched(0, "\xff\xff\xff\x7f\xff\xff\xff\x7f")},
    {"PixelTypeUnknown", "unknown kind 9", patched(8, "\x9")},
    {"BitsUnknown", "no pixel type", patched(9, "\x18")},
    {"PlaceUnknown", "unknown place", patched(12, "\5")},
    {"NoPlace", "without its pixels", patched(12, std::string_view("", 1))},
    {"KeepNumberUnknown", "to be kept as number 8", patched(13, "\x8")},
    {"FieldsLie", "items are announced", patched(36, "\xff\xff")},
    {"ListLies", "items are announced", listOf("\xff\xff\xff\xff")},
    {"PrimitiveUnknown", "unknown type 9", listOf(unknownPrimitive)},
    {"ListTooLong", "bytes too many", listOf("")},
    {"ForgottenNeverSent", "is forgotten", hello(forgets)},
    {"LooseDescriptors", "that no frame announces", hello(looseDescriptors)}};

class Hostile : public testing::TestWithParam<HostileCase> {};

TEST_P(Hostile, LosesItsConnectionWithAReason)
{
    const std::size_t before = openDescriptors();
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
        }  // any other exception fails the test
        EXPECT_TRUE(peer.ended());
    }
    EXPECT_EQ(openDescriptors(), before);
}

INSTANTIATE_TEST_SUITE_P(Table, Hostile, testing::ValuesIn(Cases),
                         [](const auto& row) { return row.param.name; });

TEST(HostilePeer, OfAQueueIsReportedAndTheNextPeerIsServed)
{
    const std::string name = "hostile_" + std::to_string(::getpid());
    QueueEnd end(name, SegmentPool::process());
    testing::internal::CaptureStderr();
    std::string got;
    std::thread reader([&] { got = std::get<std::string>(end.receive(0, 0, 120s)); });
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
