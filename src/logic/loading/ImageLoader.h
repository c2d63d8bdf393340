// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The background loader of one view.
#pragma once

#include "logic/loading/LoaderData.h"
#include "logic/loading/MaskFixup.h"
#include "logic/loading/MaskThumbnails.h"
#include "logic/preload/PreloaderClient.h"

#include <QElapsedTimer>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <list>
#include <memory>
#include <mutex>

namespace morvend::imglib {
class MImageSeries;
}

/// Runs requests one at a time, in order, on a thread of its own; each ends in a finished record
/// or in loadError().
///
/// The series belongs to that one thread, as does the way to the preloader, which may hold the
/// wanted image in memory already: only its jobs open, read and scan it. What they leave
/// for others, the results and the bounds of the series, is guarded by a mutex that is held for
/// moments only, so that no caller ever waits for a file. Thread: public calls from the GUI thread,
/// never from a job.
class ImageLoader : public QObject {
    Q_OBJECT
public:
    enum Task {
        TaskOpenSeries = 0,  ///< open the series of the record's path at the image it names
        TaskOpenIndex = 1,   ///< go to the record's index in the open series
        TaskPushImage = 2    ///< append the record's image to a series in memory
    };
    using Data = LoaderData;

    explicit ImageLoader(QObject* parent = nullptr);
    /// Drops what is queued and waits for a running job, which waits for no other process any more.
    ~ImageLoader() override;

    /// Queues a request and returns at once. Ignored while emptyTaskQueue() waits.
    /// @param signalLoadError false keeps a failure quiet
    void open(Task task, const Data& data, bool signalLoadError);
    /// Drops what is queued and waits for a running job, whose result still comes.
    void emptyTaskQueue();
    /// Drops what is queued and returns at once: nothing that was asked for before begins any more.
    /// A running job goes on as with emptyTaskQueue(), and its result comes the same way.
    void dropTaskQueue() { ++_generation; }
    /// Is a request queued or running? Scans do not count.
    bool loading() const { return _requests > 0; }
    /// Moves all waiting records to the end of a list, in the order they were finished.
    void results(std::list<Data>& out);
    /// Lowest and highest number of the series as the last finished job left it, -1 for an empty
    /// series.
    int firstIndex() const;
    int lastIndex() const;

public slots:
    /// Scans the series for new images, at most once in 100 ms; the last of many calls is not lost.
    void update();

signals:
    // All come from the loader's thread.
    /// A record has been appended to the results.
    void newImage();
    /// The series was scanned.
    void imageContainerChangedSignal();
    void loadError(QString message);

private:
    friend class ImageLoaderThread;

    void _scan();
    /// What a job calls first. The pool orders hand-overs by itself, but thread checkers can't see
    /// that: a mutex tells them.
    void _awaitHandOver();
    /// Publishes the bounds of the series; the mutex is held.
    void _noteBounds();

    std::atomic<bool> _abort = false;
    std::atomic<unsigned int> _generation = 0;  // jobs of an earlier one are dropped
    std::atomic<int> _requests = 0;             // jobs that live
    // The thread's own, but for cancel().
    const std::unique_ptr<morvend::imglib::MImageSeries> _series;
    MaskFixup _maskFixup;
    MaskThumbnails _maskThumbnails;
    PreloaderClient _preloader;
    bool _headerKnown = false;  // does the preloader's client have the header of the open series?
    std::mutex _handOver;
    mutable std::recursive_mutex _mutex;
    int _firstIndex = -1;
    int _lastIndex = -1;
    std::list<Data> _results;
    QElapsedTimer _updateClock;
    QTimer _updateTimer;
    std::atomic<bool> _scanQueued = false;
    QThreadPool _pool;  // last: its end waits for jobs that use the other members
};
