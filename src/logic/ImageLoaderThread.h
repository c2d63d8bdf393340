// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One job of a view's loader.
#pragma once

#include "logic/loading/ImageLoader.h"
#include "logic/loading/StepTimes.h"

#include <QElapsedTimer>
#include <QRunnable>

/// Turns one request into a finished record. Deleted by the pool that runs it.
class ImageLoaderThread : public QRunnable {
public:
    /// Pushed images that a series in memory keeps.
    static constexpr int pushedImages = 25;

    /// @param abort looked at once, when the job begins, as is whether the loader has dropped its
    /// queue since: a job that has begun runs to its end
    ImageLoaderThread(ImageLoader* loader, ImageLoader::Task task, const ImageLoader::Data& data,
                      bool signalLoadError, const std::atomic<bool>& abort);

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

    ImageLoader* const _loader;
    const ImageLoader::Task _task;
    ImageLoader::Data _data;
    const bool _signalLoadError;
    const std::atomic<bool>& _abort;
    const unsigned int _generation;
    QElapsedTimer _total;
    QElapsedTimer _step;
};
