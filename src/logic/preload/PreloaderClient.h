// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The client side of the preloader process.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/preload/ReadAhead.h"

#include <optional>
#include <string>

/// A view's way to the images that the preloader process has read ahead. Whatever happens to that
/// process, a view only misses: a peer that is dead, stopped or not there yet costs no more than
/// a quarter of a second once.
///
/// All clients of a process share one queue, which stays open until the process ends, and take
/// turns. Thread: one at a time for each object.
class PreloaderClient {
public:
    using MImage = morvend::imglib::MImage;
    using Header = morvend::imglib::MBasicImageOptionalData<>;

    /// Name of the queue between this process and its preloader: private to this process.
    static std::string messageQueueId();

    PreloaderClient() = default;
    /// If no other client of the process has the series, the preloader forgets it.
    ~PreloaderClient();
    PreloaderClient(const PreloaderClient&) = delete;
    PreloaderClient& operator=(const PreloaderClient&) = delete;

    /// Lets the preloader read ahead from the image after this one, in the series that `path` leads
    /// to; from now on get() asks for images of that series.
    /// @param index  an image number of the series, as in get(); the messages call it so
    void put(unsigned long index, const std::string& path);
    /// The image of a number if it has been read ahead, with exactly the header that its file
    /// gives. The preloader goes on after it.
    /// @param path another series from now on, unless empty
    /// @returns false on a miss, which leaves `image` as it is
    bool get(MImage& image, unsigned long index, const std::string& path = {});

    /// What has been read ahead of the series of the last put(); nothing if the preloader does not
    /// answer. It goes on as it was.
    std::optional<ReadAhead> list() const;

    /// A known header of the series: its metadata tree serves all images that have an
    /// equal one.
    void setDefaultOptData(const Header& header) { _defaultHeader = header; }
    const Header& defaultOptData() const { return _defaultHeader; }
    /// If off, get() always misses, and the default header is cleared.
    void setEnabled(bool enabled);

private:
    /// Asks the preloader, in turn; whatever goes wrong with it ends the question.
    template <class Question>
    void _ask(Question&& question) const;
    bool _receive(MImage& image, unsigned long index) const;
    void _setPath(const std::string& path);

    std::string _path;  // of the latest put(); empty before the first and when it failed
    bool _enabled = false;
    Header _defaultHeader;
};
