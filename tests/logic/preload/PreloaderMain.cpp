// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A preloader process for tests: PROGRAM --preloader QUEUE --parent-pid PID. A willing one, as
// TARVIK_TEST_PRELOADER asks for, has an image for each request.
#include "logic/preload/PreloaderService.h"

#include <csignal>
#include <cstdlib>
#include <string_view>

using morvend::imglib::MImage;
using morvend::imglib::MMessageQueue;

namespace {

void serveWillingly(const char* name, int parent)
{
    MMessageQueue queue(name);
    while (kill(parent, 0) == 0) {
        const MMessageQueue::Peer peer = queue.waitForPeer(std::chrono::milliseconds(100));
        if (peer == MMessageQueue::NoPeer)
            continue;
        try {
            const std::string request = queue.receiveFrom(peer);
            if (request.front() != preloader::GET)
                continue;
            queue.sendTo(peer, preloader::pack(true));
            queue.sendTo(peer, MImage(2, 1, -77));
        } catch (const morvend::MPeerGoneException&) {
            // It may come again.
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 5)
        return 1;
    std::signal(SIGPIPE, SIG_IGN);
    const char* kind = std::getenv("TARVIK_TEST_PRELOADER");
    if (kind && std::string_view(kind) == "willing") {
        serveWillingly(argv[2], std::atoi(argv[4]));
        return 0;
    }
    PreloaderService service(argv[2]);
    std::thread watch([&, parent = std::atoi(argv[4])] {
        while (kill(parent, 0) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        service.stop();
    });
    service.run();
    watch.join();
}
