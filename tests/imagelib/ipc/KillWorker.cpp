// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Seeded messages, their sender and their judge.
#include "tests/imagelib/ipc/KillWorker.h"

#include "imagelib/ipc/MMessageQueue.h"
#include "imagelib/ipc/SegmentPool.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include <sys/mman.h>

namespace tarvik::tests {

namespace {

using namespace morvend::imglib;
using namespace std::chrono_literals;

enum class Kind { Text, SmallImage, LargeImage, List };

class Dice {
public:
    explicit Dice(std::uint64_t seed)
        : _engine(static_cast<std::uint32_t>(seed))
    {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(_engine()); }

private:
    std::mt19937 _engine;
};

/// Message `index` of a life of a side, the same in both processes.
struct Plan {
    Plan(std::uint64_t seed_, unsigned side, std::uint64_t life_, std::uint64_t index_)
        : life(life_)
        , index(index_)
        , random((seed_ * 1000003 + side) * 1000003 + life_ * 7919 + index_)
    {
        const unsigned dice = random() % 20;
        kind = dice < 11   ? Kind::Text
               : dice < 14 ? Kind::SmallImage
               : dice < 18 ? Kind::LargeImage
                           : Kind::List;
    }

    std::string tag() const { return std::to_string(life) + ' ' + std::to_string(index) + ' '; }

    std::string text()
    {
        const bool large = random() % 30 == 0;  // more than a socket holds
        return tag() +
               std::string(large ? random() % 400'000 : random() % 300, char('a' + random() % 26));
    }

    MImage image()
    {
        const bool large = kind == Kind::LargeImage;
        const int width = large ? 512 : 17;
        const int height = large ? int(128 + random() % 200) : 9;
        // Some are made in shared memory, as a decoder does, and others are copied to it.
        std::optional<morvend::image::PixelSource::Scope> scope;
        if (random() % 2)
            scope.emplace(*SegmentPool::process());
        MImage result(width, height, morvend::datatypes::UINT, 32);
        scope.reset();
        auto* pixels = static_cast<std::uint32_t*>(result.data());
        std::uint32_t value = random();
        for (std::size_t i = 0; i < result.size(); ++i)
            pixels[i] = value += 2654435761U;
        result.optionalData().set_imageDescription(tag());
        if (large) {
            static const MImage mask(512, 300, 7U);
            result.optionalData().set_pixel_mask(mask);
        }
        return result;
    }

    MDrawingList<> list()
    {
        MDrawingList<> result;
        for (unsigned n = random() % 50; n > 0; --n)
            result.pushBack(MDrawingLine(random() % 1000, 1, 2, n));
        result.pushBack(MDrawingString(1, 2, tag()));
        return result;
    }

    std::uint64_t life;
    std::uint64_t index;
    Dice random;
    Kind kind;
};

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
            Plan plan(_seed, _side, _life, index);
            switch (plan.kind) {
            case Kind::Text:
                _queue.send("T" + plan.text());
                break;
            case Kind::List:
                _queue.send("L" + plan.tag());
                _queue.send(plan.list());
                break;
            default:
                _queue.send("I" + plan.tag());
                _queue.send(plan.image());
            }
        }
    }

    [[noreturn]] void receive()
    {
        for (;;) {
            const auto peer = _queue.waitForPeer();
            ++_mine.peers;
            _expected = -1;
            _orphans = 0;
            try {
                for (;;)
                    judge(peer);
            } catch (const morvend::MPeerGoneException&) {
            }
            ++_conversations;
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

    void fault(const std::string& what)
    {
        if (_mine.faults++ == 0)
            std::snprintf(_mine.fault, sizeof _mine.fault, "life %llu: %s",
                          static_cast<unsigned long long>(_life), what.c_str());
    }

    /// Receives one message and compares it with what the other side must have sent.
    void judge(MMessageQueue::Peer peer)
    {
        const std::string text = _queue.receiveFrom(peer);
        char* end = nullptr;
        const std::uint64_t life = std::strtoull(text.c_str() + 1, &end, 10);
        const std::uint64_t index = std::strtoull(end, nullptr, 10);
        if (_expected < 0) {
            _first = index;
            // Who was here before the other side began has missed nothing of it.
            if (_conversations > 0 && life == _peerLife)
                fault("one peer, two connections");
            if (_conversations > 0 && life > _peerLife && index != 0)
                fault("messages lost at the beginning: " + text.substr(0, 20));
            if (life < _peerLife)
                fault("a message of a dead peer: " + text.substr(0, 20));
        } else if (life != _peerLife || std::int64_t(index) != _expected) {
            fault("expected " + std::to_string(_peerLife) + ' ' + std::to_string(_expected) +
                  ", not " + text.substr(0, 20));
        }
        _peerLife = life;
        _expected = std::int64_t(index) + 1;
        Plan plan(_seed, 1 - _side, life, index);
        compare(peer, text, plan);
        ++_mine.verified;
    }

    static std::string tagOf(const MDrawingList<>& list)
    {
        const auto* last = dynamic_cast<const MDrawingString*>(&list[list.size() - 1]);
        return last ? last->text() : "";
    }

    /// The text before it went to a peer that was killed, and it came first to this one.
    bool isOrphan(const std::string& tag)
    {
        char* end = nullptr;
        const std::uint64_t life = std::strtoull(tag.c_str(), &end, 10);
        return life == _peerLife && std::strtoull(end, nullptr, 10) + 1 == _first &&
               _orphans++ == 0;
    }

    void compare(MMessageQueue::Peer peer, const std::string& text, Plan& plan)
    {
        if (plan.kind == Kind::Text) {
            if (text != "T" + plan.text())
                fault("another text: " + text.substr(0, 20));
        } else if (plan.kind == Kind::List) {
            MDrawingList<> list;
            do {
                _queue.receiveFrom(peer, list);
            } while (isOrphan(tagOf(list)));
            const MDrawingList<> wanted = plan.list();
            if (list.size() != wanted.size() || tagOf(list) != plan.tag())
                fault("another list: " + text.substr(0, 20));
        } else {
            MImage image;
            do {
                _queue.receiveFrom(peer, image);
            } while (isOrphan(image.optionalData().imageDescription().value_or("")));
            const MImage wanted = plan.image();
            const auto& mask = image.optionalData().pixel_mask();
            if (!samePixels(image, wanted) ||
                image.optionalData().imageDescription() != plan.tag() ||
                (plan.kind == Kind::LargeImage && (!mask || mask->pixel<int>(511, 299, 0) != 7)))
                fault("another image: " + text.substr(0, 20));
            _mine.images += plan.kind == Kind::LargeImage ? 1 : 0;
            // A few stay shown for a while, also beyond the death of their sender.
            if (plan.index % 5 == 0)
                _shown[plan.index / 5 % 4] = {image, wanted};
            for (const auto& [shown, before] : _shown)
                if (!shown.empty() && !samePixels(shown, before))
                    fault("a shown image was overwritten");
        }
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
    std::uint64_t _first = 0;  // index of the first message of the conversation
    int _orphans = 0;
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
