// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The loop of the preloader process.
#include "logic/preload/PreloaderService.h"

#include "logic/support/Console.h"

#include <chrono>
#include <utility>

using morvend::imglib::MImage;
using morvend::imglib::MMessageQueue;

PreloaderService::PreloaderService(const std::string& queueId)
    : _queue(queueId.c_str())
    , _preloader(_cache)
{}

void PreloaderService::run()
{
    while (!_stop) {
        const Peer peer = _queue.waitForPeer(std::chrono::milliseconds(100));
        if (peer == MMessageQueue::NoPeer)
            continue;
        try {
            while (!_stop)
                _serve(peer);
        } catch (const morvend::MPeerGoneException&) {
            // The viewer may come again; if it has gone for good the process ends.
        } catch (const std::exception& error) {
            console::warn(std::string("Preloader: ") + error.what() + '\n');
            _queue.disconnect(peer);
        }
    }
}

void PreloaderService::stop()
{
    _stop = true;
    _queue.disconnect(_queue.peer());
}

void PreloaderService::_serve(Peer peer)
{
    Method method{};
    unsigned long index = 0;
    std::string path;
    preloader::unpack(preloader::checkedRequest(_queue.receiveFrom(peer)), method, index, path);
    const PreloaderCache::Key key(path, index);
    const std::string place = path + ", " + std::to_string(index) + '\n';
    if (method == preloader::LIST)
        return _queue.sendTo(peer, preloader::pack(_cache.list(path)));
    if (method == preloader::FORGET)
        return _preloader.forget(path);
    if (method == preloader::PUT) {
        console::print("Preloader: PUT, " + place);
    } else {
        console::print("Preloader: GET, " + place);
        _answer(peer, key);
    }
    _preloader.run(key, method == preloader::PUT);
}

void PreloaderService::_answer(Peer peer, const PreloaderCache::Key& key)
{
    _cache.eraseIfStale(key);
    MImage image;
    try {
        image = _cache[key];
    } catch (const morvend::MOutOfRangeException&) {
        console::print("Preloader: Cache Fault\n");
        _queue.sendTo(peer, preloader::pack(false));
        return;
    }
    const bool sameTree = _leaveOutTree(peer, image);
    _queue.sendTo(peer, sameTree ? preloader::packHitOfSameTree() : preloader::pack(true));
    _queue.sendTo(peer, image);
}

bool PreloaderService::_leaveOutTree(Peer peer, MImage& image)
{
    const auto& header = std::as_const(image).optionalData();
    if (std::exchange(_treePeer, peer) == peer && header.sharesNexusTree(_tree)) {
        image.optionalData().setNexusTree({});
        return true;
    }
    _tree.shareNexusTree(header);
    return false;
}
