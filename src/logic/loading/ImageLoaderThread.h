// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One job of a view's loader.
#pragma once

#include "logic/loading/LoaderContext.h"
#include "logic/loading/LoaderRequest.h"
#include "logic/loading/StepTimes.h"

#include <QElapsedTimer>
#include <QRunnable>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

/// Turns one request into a finished record. A request by number may absorb others while it
/// waits. Thread: run() on any, the rest GUI only.
class ImageLoaderThread : public QRunnable {
public:
    /// @param number  of the request in the context
    ImageLoaderThread(std::shared_ptr<LoaderContext> context, unsigned int number,
                      const LoaderRequest& request);
    ~ImageLoaderThread() override;

    unsigned int number() const { return _number; }
    /// The request with all that have joined so far.
    LoaderRequest request() const;
    /// Absorbs another request by number: becomes it, or adds its steps.
    /// @returns false if it has begun or was dropped
    bool join(const LoaderRequest& newer);

    /// The whole job. Any failure ends in ImageLoader::loadError().
    void run() override;

private:
    /// The queue was dropped after this job was queued.
    bool _dropped() const { return _context->requests.dropped(_number); }
    /// True when the image that is searched for is no longer wanted.
    bool _overtaken() const;
    /// What is loaded, for error texts.
    std::string _place() const;
    /// @returns false for a step that ends without an image
    bool _load();
    /// Adds what belongs to the image that was read.
    void _complete();
    // The work for each kind of request; a step may end without an image.
    void _openSeries();
    void _openIndex();
    bool _openStep();
    void _pushImage();
    /// Reads the image that the steps lead to, or the next one that can be read.
    /// @returns false if there is none, which a notice reports, or if it is no longer wanted
    bool _search(Steps& steps);
    void _sayNothingFound(const Steps& steps) const;
    /// Reads an image. @param cached  true if the preloader may have it @param failure  why not
    bool _canRead(int number, bool cached, Steps::Failure& failure);
    /// @throws MRuntimeException for an image without pixels
    void _checkPixels() const;
    // Read the image of the record's number, and print the lines of their times.
    void _readFromCacheOrSource();
    void _readFromSource();
    /// Adds what is computed from image and mask.
    void _analyse();
    /// Hands the finished record over.
    void _deliver();
    /// @param message  an empty message is not signalled
    void _endWithoutImage(const std::string& message);
    /// Ends with a failure, signalled if the request wants it.
    void _fail(const std::string& message);
    /// Prints a timing line with the time of the step that ends here.
    void _endStep(StepTimes::Step step, const char* label) const;
    void _printSubtotal() const;

    const std::shared_ptr<LoaderContext> _context;
    SeriesSession& _session;  // the context's, from run() on
    const unsigned int _number;
    mutable std::mutex _mutex;  // over the next two until it begins
    LoaderRequest _request;
    bool _begun = false;
    LoaderData _data;
    std::string _leftOut;
    std::optional<int> _gaveUpAt;  // the number that a search reached without finding an image
    QElapsedTimer _total;
    QElapsedTimer _step;
};
