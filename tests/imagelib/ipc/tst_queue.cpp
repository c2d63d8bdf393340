// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The named queue: who meets whom, what waits for whom, and what a peer's going means. Both ends
// stand in this process here, without the registry that would make them one.
#include "imagelib/ipc/MMessageQueue.h"
#include "imagelib/ipc/QueueAddress.h"
#include "imagelib/ipc/QueueEnd.h"
#include "tests/imagelib/ipc/Samples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <thread>

#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>

namespace {

using namespace tarvik::tests;
using namespace std::chrono_literals;
using morvend::MPeerGoneException;
using Peer = MMessageQueue::Peer;

constexpr Peer Any = MMessageQueue::NoPeer;
enum Kind : std::size_t { Text, Image, List };

std::string uniqueName(const char* what)
{
    static int count = 0;
    return what + std::string("_") + std::to_string(::getpid()) + "_" + std::to_string(++count);
}

std::unique_ptr<QueueEnd> openEnd(const std::string& name)
{
    return std::make_unique<QueueEnd>(name, SegmentPool::process());
}

std::string text(QueueEnd& end, Peer peer = Any)
{
    return std::get<std::string>(end.receive(Text, peer, 120s));
}

struct QueueTest : testing::Test {
    const std::string name = uniqueName("test");
    std::unique_ptr<QueueEnd> first = openEnd(name);
    std::unique_ptr<QueueEnd> second;
};

TEST_F(QueueTest, MessagesSentBeforeThePeerIsThereWaitInOrder)
{
    const Message messages[] = {std::string("one"), fullImage(), fullList(),
                                countingImage(2000, 500), std::string("two")};
    for (const Message& message : messages)
        first->send(message);
    EXPECT_EQ(first->waiting(), std::size(messages));
    second = openEnd(name);
    for (const Message& message : messages)
        EXPECT_TRUE(sameMessages(second->receive(message.index(), Any, 120s), message));
    for (const Message& message : messages)
        second->send(message);
    for (const Message& message : messages)
        EXPECT_TRUE(sameMessages(first->receive(message.index(), Any, 120s), message));
}

TEST_F(QueueTest, ReceiveTakesTheFirstOfItsKindAndLeavesTheOthers)
{
    second = openEnd(name);
    first->send(MImage(2, 2, 7));
    first->send(std::string("a"));
    first->send(fullList());
    first->send(std::string("b"));
    EXPECT_EQ(text(*second), "a");
    EXPECT_EQ(text(*second), "b");
    EXPECT_EQ(std::get<MImage>(second->receive(Image, Any, 120s)).pixel<int>(1, 1, 0), 7);
    EXPECT_EQ(std::get<MDrawingList<>>(second->receive(List, Any, 120s)).size(), 4u);
    EXPECT_THROW(second->receive(Text, Any, 10ms), morvend::MTimeoutException);
}

TEST_F(QueueTest, EitherSideMayGoAndComeBackWhileTheOtherWaitsInReceive)
{
    for (int turn = 0; turn < 6; ++turn) {
        // In turn the side that holds the name goes, and the other one.
        auto& goes = turn % 2 ? first : second;
        auto& stays = turn % 2 ? second : first;
        if (!stays)
            stays = openEnd(name);
        goes = openEnd(name);
        std::string got;
        std::thread waiting([&] { got = text(*stays); });
        goes->send("before " + std::to_string(turn));
        waiting.join();
        EXPECT_EQ(got, "before " + std::to_string(turn));
        std::thread stillWaiting([&] { got = text(*stays); });
        goes.reset();
        std::this_thread::sleep_for(5ms);
        goes = openEnd(name);
        goes->send("after " + std::to_string(turn));
        stillWaiting.join();
        EXPECT_EQ(got, "after " + std::to_string(turn));
        goes.reset();
    }
}

TEST_F(QueueTest, LastWordsOfAPeerAreReceivedAndWhatItLeftUnaskedIsDropped)
{
    second = openEnd(name);
    second->send(MImage(3, 3, 1));  // nobody asks for this one
    second->send(std::string("last words"));
    second.reset();
    EXPECT_EQ(text(*first), "last words");
    second = openEnd(name);
    second->send(std::string("new"));
    second->send(MImage(3, 3, 2));
    EXPECT_EQ(text(*first), "new");
    EXPECT_EQ(std::get<MImage>(first->receive(Image, Any, 120s)).pixel<int>(0, 0, 0), 2);
}

TEST_F(QueueTest, ThirdPeerWaitsUntilOneHasGone)
{
    second = openEnd(name);
    ASSERT_NE(second->waitForPeer(120s), Any);
    const auto third = openEnd(name);
    third->send(std::string("from the third"));
    EXPECT_EQ(third->waitForPeer(30ms), Any);
    second->send(std::string("from the second"));
    EXPECT_EQ(text(*first), "from the second");
    EXPECT_THROW(first->receive(Text, Any, 20ms), morvend::MTimeoutException);
    second.reset();
    EXPECT_EQ(text(*first), "from the third");
}

TEST_F(QueueTest, QuestionerLearnsThatThePeerHasGone)
{
    second = openEnd(name);
    const Peer peer = first->waitForPeer(120s);
    ASSERT_NE(peer, Any);
    EXPECT_EQ(first->generation(), peer);
    first->send(std::string("question"), peer);
    EXPECT_EQ(text(*second), "question");
    second->send(std::string("half an answer"));
    std::thread dies([&] {
        std::this_thread::sleep_for(10ms);
        second.reset();
    });
    EXPECT_EQ(text(*first, peer), "half an answer");
    EXPECT_THROW(text(*first, peer), MPeerGoneException);
    dies.join();
    EXPECT_THROW(first->send(std::string("another"), peer), MPeerGoneException);
    EXPECT_EQ(first->peer(), Any);
    // The next peer gets nothing that was meant for the former one.
    second = openEnd(name);
    const Peer next = first->waitForPeer(120s);
    EXPECT_GT(next, peer);
    second->send(std::string("hello"));
    EXPECT_EQ(text(*first, next), "hello");
    EXPECT_THROW(text(*first, peer), MPeerGoneException);
    EXPECT_THROW(second->receive(Text, Any, 20ms), morvend::MTimeoutException);
}

TEST_F(QueueTest, PeerThatDoesNotAnswerInTimeCanBeLeft)
{
    second = openEnd(name);
    const Peer peer = first->waitForPeer(120s);
    ASSERT_NE(second->waitForPeer(120s), Any);
    second->send(std::string("too late"));
    first->disconnect(peer);
    EXPECT_THROW(text(*first, peer), MPeerGoneException);
    const Peer next = first->waitForPeer(120s);  // it comes back by itself
    EXPECT_GT(next, peer);
    EXPECT_THROW(first->receive(Text, next, 20ms), morvend::MTimeoutException);
}

TEST_F(QueueTest, SenderNeverWaitsAndClosingHandsOverTheRest)
{
    second = openEnd(name);
    ASSERT_NE(first->waitForPeer(120s), Any);
    constexpr unsigned Messages = 2000;
    for (unsigned i = 0; i < Messages; ++i)  // far more than a socket holds
        first->send(std::string(1000 + i, 'x'));
    std::thread reader([&] {
        for (unsigned i = 0; i < Messages; ++i)
            EXPECT_EQ(text(*second).size(), 1000 + i);
    });
    first.reset();
    reader.join();
}

TEST_F(QueueTest, SeveralReceiversShareTheEnd)
{
    second = openEnd(name);
    constexpr int Messages = 2000;
    std::atomic<int> sum{0};
    std::vector<std::thread> receivers;
    for (int i = 0; i < 4; ++i)
        receivers.emplace_back([&, i] {
            for (int n = 0; n < Messages / 4; ++n)
                sum += i % 2 ? std::stoi(text(*second))
                             : std::get<MImage>(second->receive(Image, Any, 120s)).width();
        });
    for (int n = 1; n <= Messages / 2; ++n) {
        first->send(MImage(n, 1, char(0)));
        first->send(std::to_string(n));
    }
    for (std::thread& each : receivers)
        each.join();
    EXPECT_EQ(sum, 2 * (Messages / 2) * (Messages / 2 + 1) / 2);
}

TEST(MMessageQueue, ObjectsOfOneNameShareOneEndOfTheProcess)
{
    const std::string name = uniqueName("shared");
    const auto peer = openEnd(name);
    for (int turn = 0; turn < 3; ++turn) {  // the last one goes, and a new one comes
        MMessageQueue one(name.c_str());
        MMessageQueue other(name.c_str());
        one.send("from one");
        other.send("from the other");
        EXPECT_EQ(text(*peer), "from one");
        EXPECT_EQ(text(*peer), "from the other");
        peer->send("answer " + std::to_string(turn));
        EXPECT_EQ(other.receive(), "answer " + std::to_string(turn));
        EXPECT_EQ(one.peer(), other.peer());
        MImage image;
        peer->send(MImage(5, 6, 1.5F));
        one.receive(image);
        EXPECT_EQ(image.height(), 6);
    }
}

TEST(MMessageQueue, NamesOfAnyLengthWorkAndNoNameIsAnError)
{
    EXPECT_THROW(MMessageQueue(nullptr), morvend::MBadParameterException);
    EXPECT_THROW(MMessageQueue(""), morvend::MBadParameterException);
    const std::string longName(5000, 'n');
    EXPECT_LE(queueAddress(longName, 4294967295U).size(), 107u);
    EXPECT_NE(queueAddress(longName, 0), queueAddress(longName + "n", 0));
    EXPECT_NE(queueAddress("a", 0), queueAddress("a", 1));
    MMessageQueue queue((uniqueName("long") + longName).c_str());
    const std::string name = uniqueName("odd /%\xff ~");
    const auto left = openEnd(name);
    const auto right = openEnd(name);
    left->send(std::string("x"));
    EXPECT_EQ(text(*right), "x");
}

/// Another user at the address of a queue of this one, until the object goes.
class Stranger {
public:
    enum What { Listens, Connects };
    Stranger(const std::string& name, What what)
    {
        const std::string address = queueAddress(name, ::geteuid());
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        std::ranges::copy(address, place.sun_path + 1);
        const auto size =
            static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + address.size());
        int ready[2];
        if (::pipe(ready) != 0 || (_pid = ::fork()) < 0)
            std::abort();
        if (_pid == 0) {
            const auto* at = reinterpret_cast<const sockaddr*>(&place);
            const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
            char mark = 'x';
            if (::setresuid(65534, 65534, 65534) == 0 &&
                (what == Listens ? ::bind(socket, at, size) == 0 && ::listen(socket, 5) == 0
                                 : ::connect(socket, at, size) == 0) &&
                (what == Listens || ::read(socket, &mark, 1) <= 0))
                mark = 'y';
            if (::write(ready[1], &mark, 1) == 1)
                ::pause();
            ::_exit(0);
        }
        succeeded = ::read(ready[0], &_mark, 1) == 1 && _mark == 'y';
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~Stranger()
    {
        ::kill(_pid, SIGKILL);
        ::waitpid(_pid, nullptr, 0);
    }

    bool succeeded = false;

private:
    pid_t _pid = -1;
    char _mark = 0;
};

TEST(MMessageQueue, OtherUsersAreAnErrorOrTurnedAway)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can be somebody else";
    const std::string name = uniqueName("strange");
    {
        const Stranger holder(name, Stranger::Listens);
        ASSERT_TRUE(holder.succeeded);
        EXPECT_THAT([&] { MMessageQueue queue(name.c_str()); },
                    testing::ThrowsMessage<morvend::MRuntimeException>(
                        testing::HasSubstr("held by another user (65534)")));
    }
    MMessageQueue queue(name.c_str());
    queue.send("not for strangers");
    const Stranger visitor(name, Stranger::Connects);
    EXPECT_TRUE(visitor.succeeded);  // in being hung up on, without a byte
    EXPECT_FALSE(queue.connected());
    const auto peer = openEnd(name);
    EXPECT_EQ(text(*peer), "not for strangers");
}

TEST(MMessageQueue, ConversationsNeedAPeer)
{
    MMessageQueue queue(uniqueName("alone").c_str());
    EXPECT_FALSE(queue.connected());
    EXPECT_THROW(queue.sendTo(queue.peer(), "x"), MPeerGoneException);
    EXPECT_THROW(queue.receiveFrom(queue.peer()), MPeerGoneException);
    EXPECT_THROW(queue.receiveFrom(17), MPeerGoneException);
    EXPECT_EQ(queue.waitForPeer(10ms), Any);
}

}  // namespace
