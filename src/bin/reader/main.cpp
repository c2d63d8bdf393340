// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// tarvik-reader: reads HDF5 files for its parent, so that a crash of the library does not
// end the viewer.
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"
#include "imagelib/io/process/ReaderProcess.h"
#include "imagelib/io/process/ReaderServer.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <thread>

#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace morvend;
using namespace morvend::imglib;

constexpr int Socket = ReaderProcess::SocketNumber;

/// A sanitizer reserves more memory than any machine has, and it counts.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool Limited = false;
#else
constexpr bool Limited = true;
#endif

bool hasParent()
{
    struct stat status = {};
    return ::fstat(Socket, &status) == 0 && S_ISSOCK(status.st_mode);
}

/// The parent decides when to end, not a key pressed in its terminal.
void leaveSignalsToTheParent()
{
    for (const int signal : {SIGINT, SIGQUIT, SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
}

/// When memory is short, the system should end this process rather than the viewer.
void offerToBeKilledFirst() { std::ofstream("/proc/self/oom_score_adj") << 500; }

/// A file that asks for more memory than the machine can spare is refused instead of making
/// everything else slow. Images lie in shared memory, which this does not count.
void limitMemory()
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageBytes = ::sysconf(_SC_PAGESIZE);
    if (!Limited || pages <= 0 || pageBytes <= 0)
        return;
    const rlim_t half = static_cast<rlim_t>(pages) / 2 * static_cast<rlim_t>(pageBytes);
    rlimit limit = {};
    if (::getrlimit(RLIMIT_DATA, &limit) == 0 && half < limit.rlim_cur) {
        limit.rlim_cur = half;
        ::setrlimit(RLIMIT_DATA, &limit);
    }
}

/// Damaged files often end in a crash, and its core dump may be
/// gigabytes large.
void leaveNoCore()
{
    const rlimit none = {};
    ::setrlimit(RLIMIT_CORE, &none);
}

/// Ends the process as soon as the parent is gone, even in the middle of a read that never ends.
void watchParent()
{
    std::thread([] {
        pollfd parent{Socket, POLLRDHUP, 0};
        while (::poll(&parent, 1, -1) <= 0) {
        }
        std::_Exit(0);
    }).detach();
}

std::unique_ptr<ImageFile> open(const std::string& path, const std::string& dataset)
{
    std::unique_ptr<ImageFile> file = openHdf5At(ByteSource::open(path), dataset);
    if (!file)
        throw MUnknownFormatException("This is no HDF5 file: " + path);
    return file;
}

}  // namespace

int main()
{
    if (!hasParent()) {
        std::fputs("tarvik-reader is started by tarvik, not by hand.\n", stderr);
        return 2;
    }
    leaveSignalsToTheParent();
    offerToBeKilledFirst();
    limitMemory();
    leaveNoCore();
    watchParent();
    try {
        ReaderServer(UniqueFd(Socket), open).run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tarvik-reader: %s\n", error.what());
        std::_Exit(1);
    }
    // The parent has gone, so a tidy end is useless.
    std::_Exit(0);
}
