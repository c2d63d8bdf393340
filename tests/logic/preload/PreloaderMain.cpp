// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A preloader process for tests: PROGRAM --preloader QUEUE --parent-pid PID.
#include "logic/PreloaderService.h"

#include <csignal>

int main(int argc, char** argv)
{
    if (argc != 5)
        return 1;
    std::signal(SIGPIPE, SIG_IGN);
    PreloaderService service(argv[2]);
    std::thread watch([&, parent = std::atoi(argv[4])] {
        while (kill(parent, 0) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        service.stop();
    });
    service.run();
    watch.join();
}
