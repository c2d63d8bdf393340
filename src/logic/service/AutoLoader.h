// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Moves a view through its series automatically.
#pragma once

#include "logic/service/MovieClock.h"
#include "logic/service/ViewDriver.h"

#include <QMetaObject>
#include <QThread>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

/// Paces a movie, or follows a series that grows. It loads nothing itself: its thread only signals
/// when the view should load, and sleeps in between.
///
/// A movie continues when the previous image has been shown, after 200 ms and with a pause of at
/// least 10 ms, which scans of the series do not end; at the end of the series it sleeps until the
/// series grows. A request that ends without an image raises no error; it is made again when the
/// series has been scanned. Thread: public calls and slots on the view's thread.
class AutoLoader : public QThread {
    Q_OBJECT
public:
    enum Mode { Movie = 0, WatchSeries = 1 };

    explicit AutoLoader(ViewDriver& view,
                        std::unique_ptr<MovieClock> clock = std::make_unique<MovieClock>());
    /// Stops, and waits for the thread.
    ~AutoLoader() override;

    /// Images from one picture of a movie to the next, 1 at first.
    void setStepSize(int step);
    int stepSize() const;

    /// Starts, or continues in another mode.
    void startLoading(Mode mode);
    /// Stops: no further request reaches the view. The thread ends soon after; callers wait for it.
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
    /// Each request goes from Idle over Asked and Loading back to Idle; an image that comes for
    /// another request may answer one that is still Asked. A stop leads from each to Stopped, which
    /// only a start leaves.
    enum class State {
        Stopped,  ///< no thread, or one that is about to end
        Idle,     ///< waits for an image to go to, or for the end of a picture's time
        Asked,    ///< a request was signalled and has not reached the view yet
        Loading   ///< the request has reached the view and is not answered yet
    };

    /// Hands the thread the place of the view. @param answered  a request has ended with an image
    void _updateIndices(bool answered);
    void _disconnectRequests();
    /// Connects the signals that request images; none from before a stop arrives after it.
    void _connectRequests(Mode mode);
    /// A request has reached the view.
    void _noteArrival();
    // Steps of the thread.
    /// Waits until the series goes on after the current image. @returns the step, none if it must
    /// stop
    std::optional<int> _awaitNext();
    /// Signals a request. @returns whether it is for a movie
    bool _request(int step);
    /// Waits until the request is answered. @returns false if it must stop
    bool _awaitAnswer();
    /// Waits for the rest of a picture's time. @returns false if it must stop
    bool _pause(MovieClock::Time asked);

    static constexpr std::chrono::milliseconds minimumPause{10};
    static constexpr std::chrono::milliseconds framePeriod{200};

    ViewDriver& _view;
    const std::unique_ptr<MovieClock> _clock;  // the thread's own
    QMetaObject::Connection _requests;
    int _run = 0;  // counts starts and stops

    // Shared with the thread.
    mutable std::mutex _mutex;
    std::condition_variable _condition;
    State _state = State::Stopped;
    Mode _mode = Movie;
    int _currentIndex = -1;
    int _lastIndex = -1;
    int _stepSize = 1;
};
