// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What an image view needs of the window that it is in.
#pragma once

#include <QString>
#include <QStringList>

class SubWindow;

/// The main window as its views know it: it opens what is dropped on them, and its tool bar shows
/// the state of the active one. Setters of actions never trigger them. Thread: GUI only.
class ViewHost {
public:
    /// Opens files and folders, each in a view of its own.
    /// @param first  takes the first one, unless null
    virtual void openFiles(const QStringList& files, SubWindow* first) = 0;
    /// A file has answered, with an image or without.
    virtual void noteAnswer(const QString& file, bool shown) = 0;

    virtual void enableMovieModeAction(bool enabled) = 0;
    virtual void setMovieModeAction(bool on) = 0;
    virtual void enableWatchSeriesModeAction(bool enabled) = 0;
    virtual void setWatchSeriesModeAction(bool on) = 0;
    virtual void setHalvoMonitorMode(bool on) = 0;
    /// @param minPause  seconds between two pictures
    virtual void setHalvoMonitorHost(QString host, int port, double minPause) = 0;

protected:
    ~ViewHost() = default;
};
