// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The view as its automatic modes see it.
#pragma once

#include <functional>

class QString;

/// The position of a view in its series, and the ways to move it. The service implements it.
/// Thread: GUI only.
class ViewDriver {
public:
    enum class Mode { Movie, WatchSeries, Monitor };

    virtual ~ViewDriver() = default;

    virtual bool imageLoaded() const = 0;
    /// Number of the image, and the highest of its series; -1 without image.
    virtual int index() const = 0;
    virtual int lastIndex() const = 0;
    /// True if a request for an image is queued or running.
    virtual bool loading() const = 0;

    // Requests, as the service's functions of these names.
    virtual void nextImage(int n, bool signalLoadError) = 0;
    virtual void openLast(bool signalLoadError) = 0;
    /// Drops the requests that have not begun.
    virtual void dropRequests() = 0;
    /// Looks for images that were added to the series.
    virtual void scan() = 0;
    /// Scans from now on whenever the files of the series change. Replaces an earlier
    /// watch().
    /// @param shown  called after each new image
    /// @param scanned  called after each scan
    virtual void watch(const std::function<void()>& shown,
                       const std::function<void()>& scanned) = 0;
    virtual void unwatch() = 0;

    // Announcements of the view.
    virtual void modeChanged(Mode mode, bool on) = 0;
    virtual void monitorHostChanged(const QString& host, int port, double minPause) = 0;
};
