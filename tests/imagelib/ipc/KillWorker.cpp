// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Seeded messages, their sender and their judge.
#include "tests/imagelib/ipc/KillWorker.h"

#include "imagelib/ipc/MMessageQueue.h"
#include "imagelib/ipc/SegmentPool.h"
#include "tests/imagelib/ipc/Samples.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <random>
#include <sstream>
#include <thread>

#include <sys/mman.h>

namespace tarvik::tests {

namespace {

using namespace std::chrono_literals;

/// Message `index` of a life of a side, the same in both processes; its description begins with
/// both numbers.
MImage planned(std::uint64_t seed, unsigned side, std::uint64_t life, std::uint64_t index)
{
    std::mt19937 random(
        static_cast<std::uint32_t>((seed * 1000003 + side) * 1000003 + life * 7919 + index));
    const bool large = random() % 4 == 0;  // in shared memory, with a mask
    // Some are made there, as a decoder does, and others are copied to it.
    std::optional<morvend::image::PixelSource::Scope> scope;
    if (random() % 2)
        scope.emplace(*SegmentPool::process());
    MImage result(large ? 512 : 17, large ? int(128 + random() % 200) : 9, morvend::datatypes::UINT,
                  32);
    scope.reset();
    auto* pixels = static_cast<std::uint32_t*>(result.data());
    std::uint32_t value = static_cast<std::uint32_t>(random());
    for (std::size_t i = 0; i < result.size(); ++i)
        pixels[i] = value += 2654435761U;
    const bool lengthy = random() % 30 == 0;  // more than a socket holds
    result.optionalData().set_imageDescription(
        std::to_string(life) + ' ' + std::to_string(index) + ' ' +
        std::string(random() % (lengthy ? 400'000 : 300), char('a' + random() % 26)));
    if (large) {
        static const MImage mask(512, 300, 7U);
        result.optionalData().set_pixel_mask(mask);
    }
    return result;
}

class Worker {
public:
    Worker(const char* queue, unsigned side, std::uint64_t seed, std::uint64_t life,
           KillReport& report)
        : _queue(queue)
        , _side(side)
        , _seed(seed)
        , _life(life)
        , _mine(report.sides[side])
        , _theirs(report.sides[1 - side])
    {}

    [[noreturn]] void send()
    {
        for (std::uint64_t index = 0;; ++index) {
            keepPace(index);
            _queue.send(planned(_seed, _side, _life, index));
        }
    }

    [[noreturn]] void receive()
    {
        for (;; ++_conversations) {
            const auto peer = _queue.waitForPeer();
            ++_mine.peers;
            _expected = -1;
            try {
                for (;;)
                    judge(peer);
            } catch (const morvend::MPeerGoneException&) {
            }
        }
    }

private:
    /// Runs ahead of a peer that is slow or dead only by what memory bears.
    void keepPace(std::uint64_t index)
    {
        while (_queue.waiting() > 10)
            std::this_thread::sleep_for(1ms);
        if (const auto peer = _queue.generation(); peer != _pacedPeer) {
            _pacedPeer = peer;
            _pacedFrom = index;
            _verifiedBefore = _theirs.verified;
        }
        while (_queue.peer() == _pacedPeer &&
               index - _pacedFrom > _theirs.verified - _verifiedBefore + 100)
            std::this_thread::sleep_for(200us);
    }

    void fault(const std::string& what, const std::string& tag = {})
    {
        if (_mine.faults++ == 0)
            std::snprintf(_mine.fault, sizeof _mine.fault, "life %llu: %s%s",
                          static_cast<unsigned long long>(_life), what.c_str(),
                          tag.substr(0, 20).c_str());
    }

    /// Receives one message and compares it with what the other side must have sent.
    void judge(MMessageQueue::Peer peer)
    {
        MImage image;
        _queue.receiveFrom(peer, image);
        const std::string tag = image.optionalData().imageDescription().value_or("");
        std::uint64_t life = 0, index = 0;
        std::istringstream(tag.substr(0, 40)) >> life >> index;
        if (_expected < 0) {
            // Who was here before the other side began has missed nothing of it.
            if (_conversations > 0 && life == _peerLife)
                fault("one peer, two connections");
            if (_conversations > 0 && life > _peerLife && index != 0)
                fault("messages lost at the beginning: ", tag);
            if (life < _peerLife)
                fault("a message of a dead peer: ", tag);
        } else if (life != _peerLife || std::int64_t(index) != _expected) {
            fault("expected " + std::to_string(_peerLife) + ' ' + std::to_string(_expected) +
                      ", not ",
                  tag);
        }
        _peerLife = life;
        _expected = std::int64_t(index) + 1;
        const MImage wanted = planned(_seed, 1 - _side, life, index);
        if (!sameMessages(image, wanted))
            fault("another image: ", tag);
        // A few stay shown for a while, also beyond the death of their sender.
        if (index % 5 == 0)
            _shown[index / 5 % 4] = {image, wanted};
        for (const auto& [shown, before] : _shown)
            if (!shown.empty() && !samePixels(shown, before))
                fault("a shown image was overwritten");
        ++_mine.verified;
    }

    MMessageQueue _queue;
    const unsigned _side;
    const std::uint64_t _seed;
    const std::uint64_t _life;
    KillReport::Side& _mine;
    const KillReport::Side& _theirs;
    MMessageQueue::Peer _pacedPeer = 0;
    std::uint64_t _pacedFrom = 0;
    std::uint64_t _verifiedBefore = 0;
    std::int64_t _expected = -1;
    std::uint64_t _peerLife = 0;
    std::uint64_t _conversations = 0;
    std::pair<MImage, MImage> _shown[4];
};

}  // namespace

void runKillWorker(const char* queue, unsigned side, std::uint64_t seed, std::uint64_t life,
                   int reportFd)
{
    void* memory =
        ::mmap(nullptr, sizeof(KillReport), PROT_READ | PROT_WRITE, MAP_SHARED, reportFd, 0);
    if (memory == MAP_FAILED)
        std::abort();
    try {
        Worker worker(queue, side, seed, life, *static_cast<KillReport*>(memory));
        std::thread sender([&worker] { worker.send(); });
        worker.receive();
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "worker: %s\n", exception.what());
        std::abort();
    }
}

}  // namespace tarvik::tests
