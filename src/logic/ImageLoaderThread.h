// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One job of a view's loader.
#pragma once

#include "imagelib/io/MImageSeries.h"
#include "logic/loading/ImageLoader.h"
#include "logic/loading/StepTimes.h"
#include "logic/loading/Steps.h"

#include <QElapsedTimer>
#include <QRunnable>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

/// Turns one request into a finished record. A request by number may take up others as long as it
/// waits. Thread: run() on any, the rest GUI only.
class ImageLoaderThread : public QRunnable {
public:
    /// Pushed images that a series in memory keeps.
    static constexpr int pushedImages = 25;

    /// @param number  of the request in the context
    ImageLoaderThread(std::shared_ptr<LoaderContext> context, unsigned int number,
                      const ImageLoader::Request& request);
    ~ImageLoaderThread() override;

    unsigned int number() const { return _number; }
    /// As it is by now.
    ImageLoader::Request request() const;
    /// Takes up another request by number, which it becomes or whose steps it goes on with.
    /// @returns false when it has begun or was dropped
    bool join(const ImageLoader::Request& newer);

    /// The whole job. Any failure ends in ImageLoader::loadError().
    void run() override;

private:
    /// Has the queue been dropped since?
    bool _dropped() const { return _generation != _context->generation; }
    /// 1 or -1 when it only makes steps from the number that was asked for last, all that way.
    int _way() const;
    /// The open series, or the one that this job has opened beside it.
    morvend::imglib::MImageSeries& _series();
    /// @returns false for a step that ends without an image
    bool _load();
    /// Adds what belongs to the image that was read.
    void _complete();
    void _openSeries();
    void _openIndex();
    bool _openStep();
    /// Reads the image that the steps lead to, or the next one that can be read.
    /// @returns false when there is none, which is said, or when it isn't wanted any more
    bool _search(Steps& steps);
    /// @param cached  may the preloader have it? @param reason  why it can't be read
    bool _canRead(int number, bool cached, std::string& reason);
    void _checkPixels() const;
    void _readFromCacheOrSource();
    void _readFromSource();
    void _pushImage();
    void _analyse();
    void _deliver();
    /// Makes the series that was opened beside the loader's the open one.
    void _adoptSeries();
    void _endWithoutImage(const QString& message, bool silent);
    void _fail(const QString& message);
    /// Prints a timing line with the time of the step that ends here.
    void _endStep(StepTimes::Step step, const char* label) const;
    void _printSubtotal() const;

    const std::shared_ptr<LoaderContext> _context;
    const unsigned int _number;
    mutable std::mutex _mutex;  // over the next two until it begins
    ImageLoader::Request _request;
    bool _begun = false;
    const unsigned int _generation;
    ImageLoader::Data _data;
    std::optional<morvend::imglib::MImageSeries> _opened;
    std::string _requestedPath;  // that _opened was opened by, empty for one in memory
    std::string _leftOut;
    QElapsedTimer _total;
    QElapsedTimer _step;
};
