// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The server side of the preloader process.
#pragma once

#include "imagelib/ipc/MMessageQueue.h"
#include "logic/preload/Preloader.h"
#include "logic/preload/PreloaderMessages.h"

#include <atomic>
#include <string>

/// Serves images that were read ahead to the views of the process that owns the queue.
class PreloaderService {
public:
    using Method = preloader::Method;

    /// @throws MException when the queue can't be opened
    explicit PreloaderService(const std::string& queueId);

    /// Answers requests until stop() is called.
    void run();
    /// Makes run() return soon. Thread: any.
    void stop();

private:
    using Peer = morvend::imglib::MMessageQueue::Peer;

    /// Waits for a request and carries it out.
    void _serve(Peer peer);
    /// Answers a GET.
    void _answer(Peer peer, const PreloaderCache::Key& key);
    /// Takes the metadata tree out of an image, if it was the last one sent to the peer.
    bool _leaveOutTree(Peer peer, morvend::imglib::MImage& image);

    morvend::imglib::MMessageQueue _queue;
    PreloaderCache _cache;
    Preloader _preloader;
    Peer _treePeer = morvend::imglib::MMessageQueue::NoPeer;
    morvend::imglib::MBasicImageOptionalData<> _tree;  // of the last image, nothing else
    std::atomic<bool> _stop = false;
};
