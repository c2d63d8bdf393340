// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the system knows of processes.
#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <unistd.h>

namespace tarvik::tests {

/// State and parent of a process; state 0 when there is none.
struct ProcessStatus {
    char state = 0;
    pid_t parent = -1;
    explicit ProcessStatus(const std::string& pid)
    {
        std::ifstream file("/proc/" + pid + "/stat");
        std::string text;
        std::getline(file, text);
        // The name, in brackets, may hold anything.
        const std::size_t end = text.rfind(')');
        if (end != std::string::npos)
            std::istringstream(text.substr(end + 1)) >> state >> parent;
    }
};

inline char processState(pid_t pid) { return ProcessStatus(std::to_string(pid)).state; }

/// Gone, or dead and not collected by its parent yet.
inline bool hasEnded(pid_t pid)
{
    const char state = processState(pid);
    return state == 0 || state == 'Z' || state == 'X';
}

/// The children of this process, dead ones that were not collected included.
inline std::vector<pid_t> children()
{
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos &&
            ProcessStatus(name).parent == ::getpid())
            found.push_back(static_cast<pid_t>(std::atoi(name.c_str())));
    }
    return found;
}

/// False for a child that has been made but has not become the program it is to be yet. Its maker
/// waits for that, so a signal that stops such a child stops the maker too.
inline bool runsOtherProgram(pid_t pid)
{
    std::error_code failed;
    const auto program = [&failed](pid_t of) {
        return std::filesystem::read_symlink("/proc/" + std::to_string(of) + "/exe", failed);
    };
    const std::filesystem::path other = program(pid);
    return !failed && other != program(::getpid());
}

inline std::size_t openDescriptors()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& each : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

/// Is there a local socket whose address has this in it?
inline bool socketIsOpen(const std::string& address)
{
    std::ifstream list("/proc/net/unix");
    const std::string text(std::istreambuf_iterator<char>(list), {});
    return text.find(address) != std::string::npos;
}

/// Makes signals end the programs that are started from now on, also where a sanitizer would catch
/// them and turn them into an exit code.
inline void letSignalsEndPrograms()
{
    for (const char* name : {"ASAN_OPTIONS", "TSAN_OPTIONS"}) {
        const std::string added = ":handle_segv=0:handle_sigbus=0";
        const char* const given = std::getenv(name);
        const std::string options = given ? given : "";
        if (!options.ends_with(added))
            ::setenv(name, (options + added).c_str(), 1);
    }
}

/// Tells whether a condition comes true, however busy the machine is.
template <class Condition>
bool waitFor(Condition&& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace tarvik::tests
