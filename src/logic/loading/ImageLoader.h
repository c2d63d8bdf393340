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
/// finished record, in loadError(), or, for steps that lead nowhere, in notice().
///
/// Of requests for images of the open series that follow one another only the last one counts: one
/// that waits yet is overtaken by the next and never read. Steps count from the number that was
/// asked for last; when nothing is under way that is the number of the last record.
///
/// The series belongs to the running job, as does the way to the preloader, which may hold the
/// wanted image in memory already: only jobs open, read and scan it. What they leave for others,
/// the results and the bounds of the series, is guarded by a mutex that is held for moments only,
/// so that no caller ever waits for a file. A job that hangs, such as on a mount that does not
/// answer, is left behind with all that it needs when the loader ends or another file is asked for.
/// Thread: public calls from the GUI thread, never from a job.
class ImageLoader : public QObject {
    Q_OBJECT
public:
    using Data = LoaderData;
    using Request = LoaderRequest;
    using Task = LoaderRequest::Task;
    using enum LoaderRequest::Task;

    explicit ImageLoader(QObject* parent = nullptr);
    /// Waits for nothing: what is queued is dropped, a running job ends by itself without a trace.
    ~ImageLoader() override;

    /// Queues a request and returns at once. Ignored while emptyTaskQueue() waits. A request for
    /// another file or image does not wait for a job that hangs: it takes a series of its own, and
    /// what was asked for before it is dropped.
    /// @param signalLoadError false keeps a failure quiet
    void open(Task task, const Data& data, bool signalLoadError);
    /// Queues a step of n images, not 0, over all that can't be shown and not beyond the ends of
    /// the series.
    /// @param signalLoadError false for a step that is made again by itself: at the end of the
    /// series it is quiet
    void step(int n, const Data& data, bool signalLoadError);
    /// Drops what is queued and waits for a running job, whose result still comes. No caller in the
    /// program, since a job may hang: the modes of a view use dropTaskQueue().
    void emptyTaskQueue();
    /// Drops what is queued and returns at once: nothing that was asked for before begins any more.
    /// A running job goes on as with emptyTaskQueue(), and its result comes the same way.
    void dropTaskQueue();
    /// Is a request queued or running? Scans do not count.
    bool loading() const { return _context->requests.loading(); }
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
    // From the thread of a job.
    /// A record has been appended to the results.
    void newImage();
    /// The series was scanned.
    void imageContainerChangedSignal();
    void loadError(QString message);
    /// What a step has left out, or why it leads nowhere.
    void notice(QString message);
    // From the GUI thread.
    /// What the view has been waiting for, in words, within half a second and anew each second;
    /// empty when it waits no more.
    void waitingSignal(const QString& text);

private:
    void _ask(const Request& request);
    void _post(const Request& request);
    /// What a request is for, for users.
    std::string _nameOf(const Request& request);
    /// Looks how long the view has been waiting, and leaves a job behind that keeps others waiting.
    void _look();
    void _say(const QString& text);
    /// Is the request of the last opening still waiting?
    bool _openingWaits() const;
    void _leaveBehind();
    /// Goes on with the requests from the last opening on, without the job that hangs.
    void _supersede();

    const std::shared_ptr<LoaderDesk> _desk;
    std::shared_ptr<LoaderContext> _context;
    std::shared_ptr<Strand> _strand;
    std::weak_ptr<ImageLoaderThread> _latest;  // may be joined while it waits
    // The requests from the last one that needs no open series.
    std::vector<std::weak_ptr<ImageLoaderThread>> _sinceOpening;
    std::string _openedPath;  // of the last opening
    std::atomic<bool> _emptying = false;
    QElapsedTimer _updateClock;
    QTimer _updateTimer;
    QTimer _watch;
    QString _said;
};
