// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A child process that reads files for this one.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/process/ReaderMessages.h"
#include "imagelib/ipc/MessageChannel.h"

#include <chrono>
#include <stop_token>
#include <string>

#include <sys/types.h>

namespace morvend::imglib {

/// Starts the program tarvik-reader and talks to it over a pair of sockets. Each object has a
/// process of its own, which ends with the object and, by the end of the socket, with this process,
/// however that ends. Thread: callers take turns.
class ReaderProcess {
public:
    struct Options {
        /// The reader's program.
        std::string program;
        /// How long a request may take. Beyond it the file system hangs or the library loops.
        std::chrono::milliseconds limit = std::chrono::minutes(1);
        /// On a stop request, from any thread, it ends the running request and each later one at
        /// once.
        std::stop_token stop = {};
    };
    /// The descriptor of the reader's end of the pair in the reader.
    static constexpr int SocketNumber = 3;
    /// What both ends say in their hello.
    static constexpr const char* Greeting = "tarvik-reader 2";

    /// The reader that came with this program: beside it, as built, or in ../libexec/tarvik, as
    /// installed; empty if there isn't one.
    static const std::string& installedProgram();

    /// @throws MRuntimeException when the process can't be started
    explicit ReaderProcess(const Options& options);
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;
    ~ReaderProcess();

    pid_t pid() const { return _pid; }
    /// True if it has not ended yet.
    bool alive();

    /// The answer to a request, and the image that follows it.
    /// @throws MReaderGoneException that says how the reader ended, as in "ended with signal
    /// 11 (Segmentation fault)", MTimeoutException, or an MTerminateException after a stop; the
    /// object is then unusable
    ReaderAnswer ask(const ReaderRequest& request, MImage& image);

private:
    Message _receive();
    /// Ends the process if it has not ended by itself, and returns how it ended.
    std::string _end(std::chrono::milliseconds patience);
    bool _reap();

    Options _options;
    pid_t _pid = -1;
    int _status = 0;
    std::chrono::steady_clock::time_point _deadline;
    std::unique_ptr<MessageChannel> _channel;
};

}  // namespace morvend::imglib
