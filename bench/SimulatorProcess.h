// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The simulated control unit in a process of its own, with frames of 4 megapixels.
#pragma once

#include <cstdio>
#include <stdexcept>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvik::bench {

/// The simulator as a process, for as long as it lives.
class Simulator {
public:
    Simulator()
    {
        int out[2];
        if (::pipe(out) != 0 || (_child = ::fork()) < 0)
            throw std::runtime_error("no process for the simulator");
        if (_child == 0) {
            ::dup2(out[1], STDOUT_FILENO);
            ::execl(TARVIK_SIMULATOR, TARVIK_SIMULATOR, "--port", "0", "--frame-size", "2072x2168",
                    nullptr);
            ::_exit(127);
        }
        ::close(out[1]);
        std::FILE* const lines = ::fdopen(out[0], "r");
        if (std::fscanf(lines, "Listening on port %d", &_port) != 1)
            throw std::runtime_error("the simulator does not start");
        std::fclose(lines);
    }
    ~Simulator()
    {
        ::kill(_child, SIGTERM);
        ::waitpid(_child, nullptr, 0);
    }
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;
    int port() const { return _port; }

private:
    pid_t _child = -1;
    int _port = 0;
};

inline Simulator& simulator()
{
    static Simulator running;
    return running;
}

}  // namespace tarvik::bench
