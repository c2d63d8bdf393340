// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The background loader of one view.
#pragma once

#include "logic/loading/LoaderContext.h"
#include "logic/loading/LoaderRequest.h"
#include "logic/loading/Strand.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <list>
#include <memory>
#include <vector>

class ImageLoaderThread;

/// Runs requests one at a time, in order, on the threads that all views share; each ends in a
/// finished record, in loadError(), or, for steps without a target, in notice().
///
/// Of several requests for images of the open series only the last one counts: a request that has
/// not begun is replaced by the next one and never read. Steps count from the number that was asked
/// for last; when nothing is pending, that is the number of the last record.
///
/// Only jobs open, read and scan the series (SeriesSession). Results and bounds are on a desk
/// (LoaderDesk) whose mutex is held only briefly, so that no caller ever waits for a file. A job
/// that hangs, such as on a mount that does not answer, is abandoned with all that it needs when
/// the loader ends or another file is asked for. Thread: public calls from the GUI thread, never
/// from a job.
class ImageLoader : public QObject {
    Q_OBJECT
public:
    using Data = LoaderData;
    using Request = LoaderRequest;
    using Task = LoaderRequest::Task;
    using enum LoaderRequest::Task;

    explicit ImageLoader(QObject* parent = nullptr);
    /// Does not wait: what is queued is dropped, and the result of a running job is thrown away.
    ~ImageLoader() override;

    /// Queues a request and returns at once; ignored while emptyTaskQueue() waits. A request to
    /// open a file or to push an image does not wait for a job that hangs: it drops the earlier
    /// requests and goes on without that job.
    /// @param signalLoadError false keeps a failure quiet
    void open(Task task, const Data& data, bool signalLoadError);
    /// Queues a step of n images, not 0. It skips images that can't be shown and stops at the
    /// ends of the series.
    /// @param signalLoadError false for the steps of a movie, which are repeated: these report
    /// nothing at the end of the series
    void step(int n, const Data& data, bool signalLoadError);
    /// Queues a request for the number in `data`, or for the next image beyond it, forward or back,
    /// that can be shown. What is skipped, or that there is none, is reported as of a step.
    void seek(const Data& data, bool forward);
    /// Drops what is queued and waits for a running job, whose result still comes. No caller yet in
    /// the program, since a job may hang: the modes of a view use dropTaskQueue().
    void emptyTaskQueue();
    /// Drops what is queued and returns at once. The result of a running job still comes.
    void dropTaskQueue();
    /// True if a request is queued or running. Scans do not count.
    bool loading() const { return _context->requests.loading(); }
    /// Moves the finished records to the end of a list, in the order they were finished.
    void results(std::list<Data>& out);
    /// Lowest and highest image number of the series when the last job ended, -1 for an empty one.
    int firstIndex() const;
    int lastIndex() const;
    /// What is known of the series' images.
    SeriesState seriesState() const;

public slots:
    /// Looks what has been read ahead, between two jobs; readAheadSignal() follows.
    void listReadAhead();
    /// Scans the series for new images, at most once in 100 ms; the last of many calls is not lost.
    void update();

signals:
    // From the thread of a job.
    /// A record has been appended to the results.
    void newImage();
    /// The series was scanned.
    void imageContainerChangedSignal();
    void loadError(QString message);
    /// What a step has skipped, or why it has no target.
    void notice(QString message);
    /// The read-ahead was looked at.
    void readAheadSignal();
    // From the GUI thread.
    /// What the view is waiting for, as a text to show: first after 0.4 seconds, then each second;
    /// empty once the wait is over.
    void waitingSignal(const QString& text);

private:
    /// Adds a request to the job that waits last, or posts it.
    void _ask(const Request& request);
    /// Makes a job for a request and queues it.
    void _post(const Request& request);
    /// What a request loads, in words for users.
    std::string _nameOf(const Request& request);
    /// Checks how long the view has been waiting, and abandons a job that hangs while an opening
    /// waits for it.
    void _look();
    /// Signals a text, if it differs from the last.
    void _say(const QString& text);
    /// True if the last opening has not begun yet.
    bool _openingWaits() const;
    /// Ends the context and its strand without waiting for the running job.
    void _leaveBehind();
    /// Leaves the job that hangs and starts with a context and a strand of its own.
    void _supersede();

    const std::shared_ptr<LoaderDesk> _desk;
    std::shared_ptr<LoaderContext> _context;
    std::shared_ptr<Strand> _strand;
    std::weak_ptr<ImageLoaderThread> _latest;  // may be joined while it waits
    // The last opening and the requests since.
    std::vector<std::weak_ptr<ImageLoaderThread>> _sinceOpening;
    std::string _openedPath;  // of the last opening
    std::atomic<bool> _emptying = false;
    QElapsedTimer _updateClock;
    QTimer _updateTimer;
    QTimer _watch;
    QString _said;
};
