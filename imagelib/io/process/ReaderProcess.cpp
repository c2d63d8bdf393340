// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Starts, asks and ends a reader.
#include "imagelib/io/process/ReaderProcess.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace morvend::imglib {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A killed process goes at once, unless the system is in the middle of a read for it.
constexpr std::chrono::milliseconds KillPatience = 100ms;
/// A process that has closed its socket is about to end.
constexpr std::chrono::milliseconds GonePatience = 2s;

/// Processes that could not be collected in time, so that none remains as a zombie.
class Leftovers {
public:
    static Leftovers& instance()
    {
        static Leftovers& leftovers = *new Leftovers;  // outlives all readers
        return leftovers;
    }
    void add(pid_t pid)
    {
        const std::lock_guard lock(_mutex);
        _pids.push_back(pid);
    }
    void collect()
    {
        const std::lock_guard lock(_mutex);
        std::erase_if(_pids, [](pid_t pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });
    }

private:
    std::mutex _mutex;
    std::vector<pid_t> _pids;
};

/// The attributes of a new process: none of this one's files and signals but the socket.
class SpawnPlan {
public:
    explicit SpawnPlan(int socket)
    {
        ::posix_spawn_file_actions_init(&_actions);
        // First: where standard input was closed, the socket may have its number.
        ::posix_spawn_file_actions_adddup2(&_actions, socket, ReaderProcess::SocketNumber);
        ::posix_spawn_file_actions_addopen(&_actions, 0, "/dev/null", O_RDONLY, 0);
        // Standard output may be data for a program.
        ::posix_spawn_file_actions_adddup2(&_actions, 2, 1);
        ::posix_spawn_file_actions_addclosefrom_np(&_actions, ReaderProcess::SocketNumber + 1);
        ::posix_spawnattr_init(&_attributes);
        sigset_t none;
        ::sigemptyset(&none);
        sigset_t all;
        ::sigfillset(&all);
        ::posix_spawnattr_setsigmask(&_attributes, &none);
        ::posix_spawnattr_setsigdefault(&_attributes, &all);
        ::posix_spawnattr_setflags(&_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan()
    {
        ::posix_spawn_file_actions_destroy(&_actions);
        ::posix_spawnattr_destroy(&_attributes);
    }

    pid_t start(const std::string& program) const
    {
        pid_t pid = -1;
        char* const arguments[] = {const_cast<char*>(program.c_str()), nullptr};
        const int error =
            ::posix_spawn(&pid, program.c_str(), &_actions, &_attributes, arguments, environ);
        if (error != 0)
            throw MRuntimeException("cannot be started: " + std::generic_category().message(error));
        return pid;
    }

private:
    posix_spawn_file_actions_t _actions;
    posix_spawnattr_t _attributes;
};

std::string secondsOf(std::chrono::milliseconds time)
{
    const auto count = time.count();
    return count % 1000 == 0 ? std::to_string(count / 1000) + " s" : std::to_string(count) + " ms";
}

}  // namespace

const std::string& ReaderProcess::installedProgram()
{
    static const std::string program = [] {
        std::error_code error;
        const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
        if (!error)
            for (const char* place : {"tarvik-reader", "../libexec/tarvik/tarvik-reader"})
                if (const auto path = folder / place; ::access(path.c_str(), X_OK) == 0)
                    return path.string();
        return std::string();
    }();
    return program;
}

ReaderProcess::ReaderProcess(const Options& options)
    : _options(options)
{
    Leftovers::instance().collect();
    auto [mine, theirs] = MessageChannel::socketPair();
    _pid = SpawnPlan(theirs.get()).start(_options.program);
    // Images come from the reader's memory; this end lends none.
    _channel = std::make_unique<MessageChannel>(std::move(mine), SegmentPool::process(), Greeting);
}

ReaderProcess::~ReaderProcess() { _end(0ms); }

bool ReaderProcess::_reap()
{
    if (_pid < 0)
        return true;
    const pid_t got = ::waitpid(_pid, &_status, WNOHANG);
    if (got == 0 || (got < 0 && errno == EINTR))
        return false;
    if (got < 0)
        _status = 0;  // collected elsewhere: how it ended is unknown
    _pid = -1;
    return true;
}

bool ReaderProcess::alive() { return !_reap(); }

std::string ReaderProcess::_end(std::chrono::milliseconds patience)
{
    const auto wait = [this](std::chrono::milliseconds time) {
        const auto end = Clock::now() + time;
        while (!_reap()) {
            if (Clock::now() >= end)
                return false;
            std::this_thread::sleep_for(200us);
        }
        return true;
    };
    _channel.reset();
    if (!wait(patience)) {
        ::kill(_pid, SIGKILL);
        if (!wait(KillPatience)) {
            Leftovers::instance().add(_pid);
            _pid = -1;
        }
        return "went silent";
    }
    if (WIFSIGNALED(_status)) {
        const int signal = WTERMSIG(_status);
        const char* const text = ::sigdescr_np(signal);
        return "ended with signal " + std::to_string(signal) +
               (text ? " (" + std::string(text) + ")" : "");
    }
    return "ended with exit code " + std::to_string(WEXITSTATUS(_status));
}

Message ReaderProcess::_receive()
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(_deadline - Clock::now());
    return _channel->receive(std::max(left, 1ms));
}

ReaderAnswer ReaderProcess::ask(const ReaderRequest& request, MImage& image)
{
    try {
        const std::stop_callback wake(_options.stop, [this] { _channel->shutdown(); });
        _deadline = Clock::now() + _options.limit;
        _channel->send(request.toText(), _options.limit);
        Message message = _receive();
        auto* const text = std::get_if<std::string>(&message);
        ReaderAnswer answer = ReaderAnswer::fromText(text ? *text : std::string());
        if (request.kind == ReaderRequest::Kind::Frame && !answer.failed()) {
            message = _receive();
            auto* const received = std::get_if<MImage>(&message);
            if (!received || received->empty())
                throw MRuntimeException("the image is missing");
            image = std::move(*received);
        }
        return answer;
    } catch (const MPeerGoneException&) {
        const bool stopped = _options.stop.stop_requested();
        const std::string end = _end(stopped ? 0ms : GonePatience);
        if (stopped)
            throw MTerminateException("was stopped");
        throw MReaderGoneException(end);
    } catch (const MTimeoutException& error) {
        _end(0ms);
        throw MTimeoutException("has not answered within " + secondsOf(_options.limit),
                                error.elapsed());
    } catch (const std::exception& error) {
        _end(0ms);
        throw MReaderGoneException(std::string("gave an answer that can't be used (") +
                                   error.what() + ")");
    }
}

}  // namespace morvend::imglib
