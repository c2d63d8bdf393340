// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Queries to the preloader.
#include "logic/preload/PreloaderClient.h"

#include "imagelib/ipc/MMessageQueue.h"
#include "logic/preload/PreloaderMessages.h"
#include "logic/support/Console.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include <unistd.h>

using morvend::imglib::MImage;
using morvend::imglib::MMessageQueue;

namespace {

/// An answer takes microseconds. A preloader that takes longer than this is stopped or overloaded.
constexpr std::chrono::milliseconds longestWait{250};

/// One question and its answer at a time in the whole process.
std::mutex& traffic()
{
    static std::mutex mutex;
    return mutex;
}

/// The way to the preloader, opened by the first query and never closed: closing it may take a
/// second, to hand over what waits, and abandoned jobs may use it until the process ends.
MMessageQueue& queue()
{
    static MMessageQueue& queue = *new MMessageQueue(PreloaderClient::messageQueueId().c_str());
    return queue;
}

bool equalTrees(const PreloaderClient::Header& left, const PreloaderClient::Header& right)
{
    const auto& a = left.nexusTree().nodes();
    const auto& b = right.nexusTree().nodes();
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.first == y.first && x.second.value == y.second.value &&
               x.second.attributes == y.second.attributes;
    });
}

/// The metadata tree of the last image that came, for any client: later images only report when
/// theirs differs.
class LastTree {
public:
    /// Gives an image its tree, by reference to that of `known` if it is equal.
    void complete(MImage& image, MMessageQueue::Peer peer, bool same,
                  const PreloaderClient::Header& known)
    {
        PreloaderClient::Header& header = image.optionalData();
        if (same && peer != _peer)
            throw morvend::MRuntimeException("it names a metadata tree that it has not sent");
        _peer = peer;
        if (!same)
            _tree.shareNexusTree(header);
        if (!_tree.sharesNexusTree(known) && equalTrees(_tree, known))
            _tree.shareNexusTree(known);
        header.shareNexusTree(_tree);
    }

private:
    MMessageQueue::Peer _peer = MMessageQueue::NoPeer;
    PreloaderClient::Header _tree;  // nothing else
};

LastTree& lastTree()
{
    static LastTree tree;
    return tree;
}

/// The number of clients that have a series.
std::map<std::string, int>& users()
{
    static auto& map = *new std::map<std::string, int>;  // guarded by traffic()
    return map;
}

}  // namespace

PreloaderClient::~PreloaderClient() { _setPath({}); }

void PreloaderClient::_setPath(const std::string& path)
{
    const std::lock_guard lock(traffic());
    if (path == _path)
        return;
    if (!path.empty())
        ++users()[path];
    const std::string before = std::exchange(_path, path);
    if (before.empty() || --users()[before] > 0)
        return;
    users().erase(before);
    try {
        if (const MMessageQueue::Peer peer = queue().peer(); peer != MMessageQueue::NoPeer)
            queue().sendTo(peer, preloader::pack(preloader::FORGET, 0, before));
    } catch (const std::exception&) {
        // A preloader that has gone has lost all.
    }
}

std::string PreloaderClient::messageQueueId() { return "PRELOADER_" + std::to_string(getpid()); }

void PreloaderClient::put(unsigned long index, const std::string& path)
{
    // Even if this fails, images of the previous series must not be taken for this one's.
    _enabled = false;
    std::string wanted;
    try {
        const std::lock_guard lock(traffic());
        queue().send(preloader::pack(preloader::PUT, index, path));
        wanted = path;
        _enabled = true;
    } catch (const morvend::MException& error) {
        // Without a queue all images come from their files.
        console::warn(std::string("WARNING: ") + error.what() + '\n');
    }
    _setPath(wanted);
}

template <class Question>
void PreloaderClient::_ask(Question&& question) const
{
    const std::lock_guard lock(traffic());
    const MMessageQueue::Peer peer = queue().peer();
    if (peer == MMessageQueue::NoPeer)
        return;
    try {
        question(peer);
    } catch (const morvend::MPeerGoneException&) {
        // Killed; the next query goes to its successor.
    } catch (const std::exception& error) {
        // A late answer must not be taken for the answer to a later query.
        queue().disconnect(peer);
        console::warn(std::string("WARNING: The preloader is left alone: ") + error.what() + '\n');
    }
}

bool PreloaderClient::get(MImage& image, unsigned long index, const std::string& path)
{
    if (!_enabled)
        return false;
    if (!path.empty())
        _setPath(path);
    MImage received;
    if (!_receive(received, index))
        return false;
    image = std::move(received);
    return true;
}

bool PreloaderClient::_receive(MImage& image, unsigned long index) const
{
    bool received = false;
    _ask([&](MMessageQueue::Peer peer) {
        queue().sendTo(peer, preloader::pack(preloader::GET, index, _path));
        const std::string reply = queue().receiveFrom(peer, longestWait);
        bool hit = false;
        preloader::unpack(preloader::checkedReply(reply), hit);
        const bool sameTree = preloader::hasSameTree(reply);
        if (hit) {
            queue().receiveFrom(peer, image, longestWait);
            lastTree().complete(image, peer, sameTree, _defaultHeader);
        }
        received = hit;
    });
    return received;
}

std::optional<ReadAhead> PreloaderClient::list() const
{
    std::optional<ReadAhead> result;
    if (_enabled)
        _ask([&](MMessageQueue::Peer peer) {
            queue().sendTo(peer, preloader::pack(preloader::LIST, 0, _path));
            result = preloader::unpackList(queue().receiveFrom(peer, longestWait));
        });
    return result;
}

void PreloaderClient::setEnabled(bool enabled)
{
    _enabled = enabled && !_path.empty();
    if (!enabled)
        _defaultHeader.clear();
}
