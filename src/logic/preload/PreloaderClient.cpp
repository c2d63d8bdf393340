// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Questions to the preloader.
#include "logic/preload/PreloaderClient.h"

#include "imagelib/ipc/MMessageQueue.h"
#include "logic/preload/PreloaderMessages.h"
#include "logic/support/Console.h"

#include <mutex>

#include <unistd.h>

using morvend::imglib::MImage;
using morvend::imglib::MMessageQueue;

namespace {

/// An answer takes microseconds. A preloader that is late by so much is stopped or drowned.
constexpr std::chrono::milliseconds longestWait{250};

/// One question and its answer at a time in the whole process.
std::mutex& traffic()
{
    static std::mutex mutex;
    return mutex;
}

/// The way to the preloader, opened by the first who asks. It outlives all views: its end may take
/// a second to hand over what waits, which no thread that closes a view has, nor the end of the
/// process, where jobs that were left behind may still use it.
MMessageQueue& queue()
{
    static MMessageQueue& queue = *new MMessageQueue(PreloaderClient::messageQueueId().c_str());
    return queue;
}

}  // namespace

std::string PreloaderClient::messageQueueId() { return "PRELOADER_" + std::to_string(getpid()); }

void PreloaderClient::put(unsigned long index, const std::string& path)
{
    // The images of the series before are none of this one, whatever fails here.
    _enabled = false;
    _path.clear();
    try {
        const std::lock_guard lock(traffic());
        queue().send(preloader::pack(preloader::PUT, index, path));
        _path = path;
        _enabled = true;
    } catch (const morvend::MException& error) {
        // Without a queue all images come from their files.
        console::warn(std::string("WARNING: ") + error.what() + '\n');
    }
}

bool PreloaderClient::get(MImage& image, unsigned long index, const std::string& path)
{
    if (!_enabled)
        return false;
    if (!path.empty())
        _path = path;
    MImage received;
    if (!_receive(received, index))
        return false;
    Header header = _defaultHeader;
    std::as_const(received).optionalData().override(header);
    received.setOptionalData(header);
    image = std::move(received);
    return true;
}

bool PreloaderClient::_receive(MImage& image, unsigned long index)
{
    const std::lock_guard lock(traffic());
    const MMessageQueue::Peer peer = queue().peer();
    if (peer == MMessageQueue::NoPeer)
        return false;
    try {
        queue().sendTo(peer, preloader::pack(preloader::GET, index, _path));
        bool hit = false;
        preloader::unpack(preloader::checkedReply(queue().receiveFrom(peer, longestWait)), hit);
        if (hit)
            queue().receiveFrom(peer, image, longestWait);
        return hit;
    } catch (const morvend::MPeerGoneException&) {
        // Killed; its successor is asked next time.
    } catch (const std::exception& error) {
        // Whatever still comes must not be taken for the answer to a later question.
        queue().disconnect(peer);
        console::warn(std::string("WARNING: The preloader is left alone: ") + error.what() + '\n');
    }
    return false;
}

void PreloaderClient::setEnabled(bool enabled)
{
    _enabled = enabled && !_path.empty();
    if (!enabled)
        _defaultHeader.clear();
}
