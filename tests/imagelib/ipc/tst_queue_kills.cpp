// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Two processes with two threads each send seeded messages of all kinds both ways while either is
// killed at any moment and started again. TARVIK_KILLS: how many kills, 40 by default. A thousand
// under the address sanitizer want ASAN_OPTIONS=quarantine_size_mb=8: it holds freed memory back.
#include "imagelib/ipc/QueueAddress.h"
#include "imagelib/ipc/UniqueFd.h"
#include "tests/imagelib/ipc/KillWorker.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>

extern char** environ;

namespace {

using namespace tarvik::tests;
using namespace std::chrono_literals;

constexpr std::uint64_t Seed = 20261123;

class KillTest : public testing::Test {
protected:
    KillTest()
    {
        if (::ftruncate(_file.get(), sizeof(KillReport)) != 0)
            std::abort();
        report = static_cast<KillReport*>(::mmap(
            nullptr, sizeof(KillReport), PROT_READ | PROT_WRITE, MAP_SHARED, _file.get(), 0));
        start(0);
        start(1);
    }
    ~KillTest() override
    {
        kill(0);
        kill(1);
        ::munmap(report, sizeof(KillReport));
    }

    void start(unsigned side)
    {
        const std::string sideText = std::to_string(side);
        const std::string life = std::to_string(++_lives[side]);
        const std::string file = std::to_string(_file.get());
        const char* arguments[] = {"/proc/self/exe", "--worker",   name.c_str(), sideText.c_str(),
                                   life.c_str(),     file.c_str(), nullptr};
        std::array<char*, 7> argv;
        for (std::size_t i = 0; i < argv.size(); ++i)
            argv[i] = const_cast<char*>(arguments[i]);
        ASSERT_EQ(
            ::posix_spawn(&pids[side], "/proc/self/exe", nullptr, nullptr, argv.data(), environ),
            0);
    }

    void kill(unsigned side)
    {
        int status = 0;
        ASSERT_EQ(::waitpid(pids[side], &status, WNOHANG), 0) << "a worker ended by itself";
        ::kill(pids[side], SIGKILL);
        ::waitpid(pids[side], &status, 0);
    }

    /// Waits until the workers have verified more messages, or some time is over.
    void waitForTraffic(unsigned side)
    {
        const auto until = std::chrono::steady_clock::now() + 120s;
        const std::uint64_t before = report->sides[side].verified;
        while (report->sides[side].verified < before + 3) {
            ASSERT_LT(std::chrono::steady_clock::now(), until) << "nothing moves any more";
            std::this_thread::sleep_for(1ms);
        }
    }

    void killAndRestart(unsigned side)
    {
        waitForTraffic(1 - side);
        waitForTraffic(side);
        std::this_thread::sleep_for(std::chrono::microseconds(_random() % 5000));
        kill(side);
        start(side);
        for (const auto& each : report->sides)
            ASSERT_EQ(each.faults, 0u) << each.fault;
    }

    std::size_t openFiles(unsigned side) const
    {
        const std::filesystem::directory_iterator all("/proc/" + std::to_string(pids[side]) +
                                                      "/fd");
        return std::size_t(std::distance(begin(all), end(all)));
    }

    /// Memory of the process, shared and private, in MiB.
    std::size_t memory(unsigned side) const
    {
        std::ifstream in("/proc/" + std::to_string(pids[side]) + "/statm");
        std::size_t total = 0;
        std::size_t resident = 0;
        in >> total >> resident;
        return resident * std::size_t(::sysconf(_SC_PAGESIZE)) >> 20;
    }

    const std::string name = "kills_" + std::to_string(::getpid());
    KillReport* report = nullptr;
    pid_t pids[2] = {};

private:
    const morvend::imglib::UniqueFd _file{::memfd_create("report", 0)};
    std::uint64_t _lives[2] = {};
    std::mt19937 _random{std::uint32_t(Seed)};
};

int kills()
{
    const char* wanted = std::getenv("TARVIK_KILLS");
    return wanted ? std::atoi(wanted) : 40;
}

TEST_F(KillTest, EverythingArrivesWholeAndInOrderAndTheSurvivorDoesNotGrow)
{
    // A third each: one side survives, the other one does, either may go.
    for (const unsigned survivor : {0U, 1U}) {
        for (int i = 0; i < 5; ++i)
            killAndRestart(1 - survivor);
        waitForTraffic(survivor);
        const std::size_t files = openFiles(survivor);
        const std::size_t megabytes = memory(survivor);
        for (int i = 0; i < kills() / 3 - 5; ++i) {
            killAndRestart(1 - survivor);
            if (HasFatalFailure())
                return;
        }
        waitForTraffic(survivor);
        // Segments are taken as traffic wants them, within bounds that no number of kills moves.
        EXPECT_LE(openFiles(survivor), files + 60);
        EXPECT_LE(memory(survivor), megabytes + 80);
        std::printf("survivor %u: %zu -> %zu files, %zu -> %zu MiB\n", survivor, files,
                    openFiles(survivor), megabytes, memory(survivor));
    }
    std::mt19937 random(7);
    for (int i = 0; i < kills() - kills() / 3 * 2; ++i) {
        killAndRestart(random() % 2);
        if (HasFatalFailure())
            return;
    }
    for (const auto& side : report->sides)
        std::printf("verified %llu messages, %llu of them large images, %llu peers\n",
                    static_cast<unsigned long long>(side.verified),
                    static_cast<unsigned long long>(side.images),
                    static_cast<unsigned long long>(side.peers));
    for (const auto& side : report->sides)
        EXPECT_GT(side.peers, unsigned(kills()) / 3);
}

TEST_F(KillTest, NothingIsLeftBehind)
{
    waitForTraffic(0);
    waitForTraffic(1);
    for (const unsigned side : {0U, 1U})
        kill(side);
    std::ifstream in("/proc/net/unix");
    const std::string sockets{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(sockets.find("@" + morvend::imglib::queueAddress(name, ::geteuid())),
              std::string::npos);
    start(0);
    start(1);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 6 && std::string_view(argv[1]) == "--worker")
        runKillWorker(argv[2], unsigned(std::atoi(argv[3])), Seed,
                      std::strtoull(argv[4], nullptr, 10), std::atoi(argv[5]));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
