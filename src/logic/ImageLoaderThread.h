// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One job of a view's loader.
#pragma once

#include "logic/loading/ImageLoader.h"
#include "logic/loading/StepTimes.h"

#include <QElapsedTimer>
#include <QRunnable>

#include <memory>

/// Turns one request into a finished record.
class ImageLoaderThread : public QRunnable {
public:
    /// Pushed images that a series in memory keeps.
    static constexpr int pushedImages = 25;

    /// Looks once, when it begins, whether the queue was dropped since: a job that has begun runs
    /// to its end.
    /// @param number  of the request in the context
    ImageLoaderThread(std::shared_ptr<LoaderContext> context, unsigned int number,
                      ImageLoader::Task task, const ImageLoader::Data& data, bool signalLoadError);

    ~ImageLoaderThread() override;

    /// The whole job. Any failure ends in ImageLoader::loadError().
    void run() override;

private:
    void _load();
    void _openSeries();
    void _openIndex();
    void _readFromSource();
    /// Lets the image's header stand behind those of images from the preloader.
    void _noteHeader();
    void _pushImage();
    void _analyse();
    void _deliver();
    void _fail(const QString& message);
    /// Prints a timing line with the time of the step that ends here.
    void _endStep(StepTimes::Step step, const char* label) const;
    void _printSubtotal() const;

    const std::shared_ptr<LoaderContext> _context;
    const unsigned int _number;
    const ImageLoader::Task _task;
    ImageLoader::Data _data;
    const bool _signalLoadError;
    const unsigned int _generation;
    QElapsedTimer _total;
    QElapsedTimer _step;
};
