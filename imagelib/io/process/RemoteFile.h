// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A file that another process reads.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"
#include "imagelib/io/process/HeaderChange.h"
#include "imagelib/io/process/ReaderProcess.h"

#include <mutex>

namespace morvend::imglib {

/// Asks a reader process for everything. When the reader dies or does not answer in time, that
/// request alone fails, with a text that says so; the next one starts a new reader, which opens the
/// file again. No request is tried twice, so that a file which kills each reader only fails; and a
/// look for new images starts no reader after a failure; the next request for an image does.
///
/// No more than mostReaders run in a process for long: the one that was asked longest ago ends when
/// another one starts, and starts again when its file is asked for something.
///
/// Images lie in memory that is shared with the reader, read-only; they outlive it.
class RemoteFile : public ImageFile {
public:
    /// Only readers that are at work at this moment may be more.
    static constexpr std::size_t mostReaders = 16;

    /// Opens a file.
    /// @param format  its format, for messages
    /// @param dataset  the data set; empty for the default
    /// @throws MException as the reader in this process would, MReaderGoneException or
    /// MTimeoutException when the reader fails, MTerminateException when it is stopped
    RemoteFile(std::string path, std::string format, ReaderProcess::Options options,
               std::string dataset = {});
    ~RemoteFile() override;

    const char* format() const override { return _state.format.c_str(); }
    std::size_t frameCount() const override { return _state.frames; }
    MImage frame(std::size_t position) const override;
    std::string framePath(std::size_t position) const override;
    std::string mainPath() const override { return _state.mainPath; }
    std::string dataset() const override { return _state.dataset; }
    std::size_t openedFrame() const override { return _state.openedFrame; }
    int firstNumber() const override { return static_cast<int>(_state.firstNumber); }
    /// Does nothing between a failure of the reader and the next other request. The first failure
    /// of a reader in here is also reported on standard error.
    void update() override;

    /// The reader's process, -1 if it has ended.
    pid_t pid() const;

private:
    class Running;

    /// @param doing  the running request, as in "reading image 12"
    ReaderAnswer _ask(const ReaderRequest& request, const std::string& doing,
                      MImage* image = nullptr) const;
    void _start() const;
    ReaderAnswer _exchange(const ReaderRequest& request, const std::string& doing,
                           MImage& image) const;

    std::string _path;
    std::string _format;
    std::string _dataset;
    ReaderProcess::Options _options;
    // Over all below: another file may end the reader between two requests.
    mutable std::mutex _mutex;
    // A request may need a new reader: so the state changes behind a const interface.
    mutable std::unique_ptr<ReaderProcess> _process;
    mutable HeaderChange _header;
    mutable ReaderAnswer _state;
    mutable std::size_t _framePosition = 0;  // of _state.framePath
    mutable bool _parked = false;            // its reader made room for another one
    bool _lookFailed = false;                // and was reported
};

}  // namespace morvend::imglib
