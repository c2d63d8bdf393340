// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Requests to a reader, and what happens to them when it dies.
#include "imagelib/io/process/RemoteFile.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace morvend::imglib {

using Kind = ReaderRequest::Kind;

/// The files that have readers, the one that was asked longest ago first.
class RemoteFile::Running {
public:
    static Running& instance()
    {
        static Running& running = *new Running;  // threads that were left behind outlive statics
        return running;
    }

    /// A file is about to ask its reader; its mutex is held.
    void asks(const RemoteFile& file)
    {
        std::vector<std::unique_ptr<ReaderProcess>> surplus;  // ends after the lock
        const std::lock_guard lock(_mutex);
        std::erase(_files, &file);
        _files.push_back(&file);
        for (auto each = _files.begin(); _files.size() > mostReaders && *each != &file;) {
            const std::unique_lock idle((*each)->_mutex, std::try_to_lock);
            if (!idle) {
                ++each;
                continue;
            }
            (*each)->_parked = (*each)->_process != nullptr;
            surplus.push_back(std::move((*each)->_process));
            each = _files.erase(each);
        }
    }
    void forget(const RemoteFile& file)
    {
        const std::lock_guard lock(_mutex);
        std::erase(_files, &file);
    }

private:
    std::mutex _mutex;
    std::vector<const RemoteFile*> _files;
};

RemoteFile::RemoteFile(std::string path, std::string format, ReaderProcess::Options options,
                       std::string dataset)
    : _path(std::move(path))
    , _format(std::move(format))
    , _dataset(std::move(dataset))
    , _options(std::move(options))
{
    const std::lock_guard lock(_mutex);  // other files may look for readers to end meanwhile
    try {
        _start();
    } catch (...) {
        Running::instance().forget(*this);
        throw;
    }
}

RemoteFile::~RemoteFile() { Running::instance().forget(*this); }

MImage RemoteFile::frame(std::size_t position) const
{
    const std::lock_guard lock(_mutex);
    MImage image;
    const std::string number = std::to_string(position + _state.firstNumber);
    const ReaderAnswer answer =
        _ask({Kind::Frame, {}, position}, "reading image " + number, &image);
    _header.complete(image.optionalData(), answer.header);
    return image;
}

std::string RemoteFile::framePath(std::size_t position) const
{
    const std::lock_guard lock(_mutex);
    // The answer to a frame brings its path along.
    if (_state.framePath.empty() || _framePosition != position)
        _ask({Kind::Path, {}, position}, "looking for the file of an image");
    return _state.framePath;
}

void RemoteFile::update()
{
    const std::lock_guard lock(_mutex);
    // Looks are frequent and unasked: a file that kills each reader would kill as many.
    if (!_process && !_parked)
        return;
    try {
        _ask({Kind::Update, {}, 0}, "looking for new images");
    } catch (const MTerminateException&) {
        throw;
    } catch (const MException& error) {
        // Callers take a refusal to mean that the file is being written; no reader dies of that.
        if (!_process && !std::exchange(_lookFailed, true))
            std::fprintf(stderr, "WARNING: %s\n", error.what());
        throw;
    }
}

pid_t RemoteFile::pid() const
{
    const std::lock_guard lock(_mutex);
    return _process && _process->alive() ? _process->pid() : -1;
}

void RemoteFile::_start() const
{
    MImage none;
    _header = {};
    _process.reset();
    _parked = false;
    Running::instance().asks(*this);
    try {
        _process = std::make_unique<ReaderProcess>(_options);
    } catch (const MException& error) {
        throw MRuntimeException(_format + ": the reader process " + error.what() + ": " + _path);
    }
    const ReaderAnswer opened =
        _exchange({Kind::Open, _path, 0, _dataset}, "opening the file", none);
    if (opened.failed()) {
        _process.reset();
        opened.rethrow();
    }
    _state = opened;
}

ReaderAnswer RemoteFile::_exchange(const ReaderRequest& request, const std::string& doing,
                                   MImage& image) const
{
    const auto told = [&](const MException& error) {
        _process.reset();
        return _format + ": the reader process " + error.what() + " while " + doing + ": " + _path;
    };
    try {
        return _process->ask(request, image);
    } catch (const MTimeoutException& error) {
        throw MTimeoutException(told(error), error.elapsed());
    } catch (const MTerminateException& error) {
        throw MTerminateException(told(error));
    } catch (const MException& error) {
        throw MReaderGoneException(told(error));
    }
}

ReaderAnswer RemoteFile::_ask(const ReaderRequest& request, const std::string& doing,
                              MImage* image) const
{
    // It is no failure if a reader died while idle.
    if (!_process || !_process->alive())
        _start();
    else
        Running::instance().asks(*this);
    MImage none;
    const ReaderAnswer answer = _exchange(request, doing, image ? *image : none);
    const std::string format = std::exchange(_state.format, {});
    _state = answer;
    _state.format = format;
    _framePosition = request.position;
    if (answer.failed())
        answer.rethrow();
    return answer;
}

}  // namespace morvend::imglib
