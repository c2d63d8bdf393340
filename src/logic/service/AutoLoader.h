// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keeps a view moving through its series without a hand.
#pragma once

#include "logic/service/MovieClock.h"

#include <QMetaObject>
#include <QThread>

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

class TarvikService;

/// Paces a movie, or follows a series that grows. It loads nothing itself: its thread only signals
/// when the service is to load, and sleeps in between.
///
/// A movie goes on when the image before has been shown, after 200 ms and with a pause of 10 ms at
/// least, which scans of the series do not end; at the end of the series it sleeps until the series
/// grows. A request that ends without an image raises no error; it is made again when the series
/// has been scanned. Thread: public calls and slots on the service's thread.
class AutoLoader : public QThread {
    Q_OBJECT
public:
    enum Mode { Movie = 0, WatchSeries = 1 };

    explicit AutoLoader(TarvikService* service,
                        std::unique_ptr<MovieClock> clock = std::make_unique<MovieClock>());
    /// Stops, and waits for the thread.
    ~AutoLoader() override;

    /// Images from one picture of a movie to the next, 1 at first.
    void setStepSize(int step);
    int stepSize() const;

    /// Begins, or goes on in another mode.
    void startLoading(Mode mode);
    /// No further request reaches the service. The thread ends soon after; callers wait for it.
    void stopLoading();

signals:
    void nextImageSignal(int n, bool signalLoadError);
    void lastImageSignal(bool signalLoadError);

protected:
    void run() override;

private slots:
    void _directoryChangedSlot();
    void _newImageSlot();

private:
    /// Tells the thread where the view is. @param answered  a request of the thread came to an end
    void _updateIndices(bool answered);
    void _disconnectService();
    /// Connects what asks for images; what was signalled before a stop does not arrive after it.
    void _connectRequests(Mode mode);
    /// Has a request reached the service?
    void _noteArrival();
    /// Waits until there is an image behind the current one. @returns the step to it, none to stop
    std::optional<int> _awaitNext();
    /// Signals a request. @returns whether it is for a movie
    bool _request(int step);
    /// Waits until the request is answered. @returns false to stop
    bool _awaitAnswer();
    /// The rest of the time of a picture that was asked for then. @returns false to stop
    bool _pause(MovieClock::Time asked);

    static constexpr std::chrono::milliseconds minimumPause{10};
    static constexpr std::chrono::milliseconds framePeriod{200};

    TarvikService* const _service;
    const std::unique_ptr<MovieClock> _clock;  // the thread's own
    std::array<QMetaObject::Connection, 3> _connections;
    int _session = 0;  // counts starts and stops

    // Shared with the thread.
    mutable std::mutex _mutex;
    std::condition_variable _condition;
    bool _stop = false;
    bool _update = false;
    bool _underWay = false;  // a request has been signalled and has not reached the service yet
    Mode _mode = Movie;
    int _currentIndex = -1;
    int _lastIndex = -1;
    int _stepSize = 1;
};
