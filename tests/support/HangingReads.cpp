// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A pread() that can be made to wait.
#include "tests/support/HangingReads.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <system_error>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::mutex mutex;
std::condition_variable change;
std::string hanging;  // empty: none
int waiting = 0;

bool hangs(int file)
{
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), error);
    return !hanging.empty() && path.string().starts_with(hanging);
}

}  // namespace

extern "C" ssize_t pread(int file, void* target, size_t count, off_t offset)
{
    {
        std::unique_lock lock(mutex);
        if (hangs(file)) {
            ++waiting;
            change.notify_all();
            change.wait(lock, [] { return hanging.empty(); });
            --waiting;
            change.notify_all();
        }
    }
    return ::syscall(SYS_pread64, file, target, count, offset);
}

namespace tarvik::tests {

HangingReads::HangingReads(std::string path)
{
    const std::lock_guard lock(mutex);
    hanging = std::move(path);
}

HangingReads::~HangingReads()
{
    std::unique_lock lock(mutex);
    hanging.clear();
    change.notify_all();
    change.wait(lock, [] { return waiting == 0; });
}

int HangingReads::count()
{
    const std::lock_guard lock(mutex);
    return waiting;
}

bool HangingReads::waitFor(int count)
{
    std::unique_lock lock(mutex);
    return change.wait_for(lock, std::chrono::minutes(1), [=] { return waiting == count; });
}

}  // namespace tarvik::tests
