// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Forks, waits and reports.
#include "bin/image/CrashGuard.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvik::tool {

namespace {

/// Shared memory that outlives the child.
struct Note {
    char text[4096];
};
Note* sharedNote = nullptr;

volatile std::sig_atomic_t child = 0;

void forward(int signal) { ::kill(static_cast<pid_t>(child), signal); }

/// These end a program on purpose: the shell should see them as the cause.
constexpr int Deliberate[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

constexpr int Forwarded[] = {SIGTERM, SIGHUP};

/// A key press reaches the child too; a signal sent to this process does not.
void leaveSignalsTo(pid_t pid)
{
    child = pid;
    for (const int signal : {SIGINT, SIGQUIT, SIGPIPE})
        std::signal(signal, SIG_IGN);
    for (const int signal : Forwarded) {
        struct sigaction action = {};
        action.sa_handler = forward;
        action.sa_flags = SA_RESTART;
        ::sigaction(signal, &action, nullptr);
    }
}

[[noreturn]] void endAs(int signal)
{
    std::signal(signal, SIG_DFL);
    ::raise(signal);
    std::_Exit(128 + signal);
}

std::string reasonOf(int signal)
{
    const char* const text = ::sigdescr_np(signal);
    std::string reason = "the program ended with signal " + std::to_string(signal);
    if (text)
        reason += " (" + std::string(text) + ")";
    if (sharedNote) {
        const std::string doing(sharedNote->text, ::strnlen(sharedNote->text, sizeof(Note)));
        reason += doing.empty() ? "" : " while " + doing;
    }
    return reason;
}

}  // namespace

void CrashGuard::note(const std::string& doing)
{
    if (!sharedNote)
        return;
    const std::size_t size = std::min(doing.size(), sizeof(Note) - 1);
    std::memcpy(sharedNote->text, doing.data(), size);
    sharedNote->text[size] = '\0';
}

int CrashGuard::run(const std::function<int()>& work,
                    const std::function<int(const std::string&)>& failed)
{
    void* const memory =
        ::mmap(nullptr, sizeof(Note), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    sharedNote = memory == MAP_FAILED ? nullptr : static_cast<Note*>(memory);
    std::signal(SIGCHLD, SIG_DFL);
    const pid_t parent = ::getpid();
    // A signal that arrives while the child works must be passed on to it.
    sigset_t forwarded, before;
    sigemptyset(&forwarded);
    for (const int signal : Forwarded)
        sigaddset(&forwarded, signal);
    ::sigprocmask(SIG_BLOCK, &forwarded, &before);
    const pid_t pid = ::fork();
    if (pid > 0)
        leaveSignalsTo(pid);
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    if (pid < 0)
        return work();
    if (pid == 0) {
        // Killing the parent is meant for the child, which may hang and ignore other signals.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            std::_Exit(1);
        std::exit(work());
    }
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFSIGNALED(status))
        return WEXITSTATUS(status);
    const int signal = WTERMSIG(status);
    if (std::find(std::begin(Deliberate), std::end(Deliberate), signal) != std::end(Deliberate))
        endAs(signal);
    return failed(reasonOf(signal));
}

}  // namespace tarvik::tool
