// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The work of a reader process.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"
#include "imagelib/io/process/HeaderChange.h"
#include "imagelib/ipc/MessageChannel.h"

namespace morvend::imglib {

/// Answers the requests of one parent, one after the other. Images are decoded into segments of
/// shared memory and handed over without a copy.
class ReaderServer {
public:
    /// Opens a file, or one data set of it. @throws MException
    using Opener = std::function<std::unique_ptr<ImageFile>(const std::string& path,
                                                            const std::string& dataset)>;

    ReaderServer(UniqueFd socket, Opener opener);

    /// Returns when the parent has gone.
    /// @throws MException when it breaks the protocol
    void run();

private:
    Message _nextMessage();
    ReaderAnswer _answer(const ReaderRequest& request, MImage& image);
    void _send(ReaderAnswer& answer, MImage image);
    void _describe(ReaderAnswer& answer) const;
    /// Runs a step of an answer; a failure of the step becomes the answer.
    template <class Step>
    void _attempt(ReaderAnswer& answer, Step step) const;
    void _do(const ReaderRequest& request, ReaderAnswer& answer, MImage& image);

    Opener _opener;
    std::shared_ptr<SegmentPool> _pool;
    MessageChannel _channel;
    HeaderChange _header;
    std::string _path;
    ReaderAnswer _container;  // as it was at the last answer
    std::unique_ptr<ImageFile> _file;
};

}  // namespace morvend::imglib
