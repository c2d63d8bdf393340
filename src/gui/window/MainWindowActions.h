// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The actions of the main window: texts, tool tips and shortcuts.
#pragma once

#include <QAction>
#include <QCheckBox>
#include <QKeySequence>
#include <QList>
#include <QShortcut>
#include <QWidget>

class HalvoWidget;
class PopupButton;
class RecentFiles;

/// All actions, boxes and buttons of a main window, and the window's shortcuts that trigger them.
/// They do nothing by themselves: the window connects them. Thread: GUI only.
class MainWindowActions {
public:
    /// An action that a key of the window triggers.
    struct Key {
        const QAction* action;
        QKeySequence keys;
    };

    /// @param window  parent of the actions
    explicit MainWindowActions(QWidget& window);

    QAction* const newWindow;
    QAction* const open;
    QAction* const saveAs;
    QAction* const exportPicture;
    RecentFiles* const recent;
    QAction* const reopen;
    QCheckBox* const syncViewport;
    QCheckBox* const syncContrast;
    QCheckBox* const syncStatistics;
    QAction* const movie;
    QAction* const watch;
    HalvoWidget* const monitorWidget;
    PopupButton* const monitor;
    QAction* const help;
    QAction* const about;
    QAction* const shortcuts;
    QAction* const keys;
    QAction* const tools;

    /// Silent shortcuts do nothing.
    void silenceShortcuts(bool silent);
    /// Everything with a key, in the order of the tool bars.
    QList<Key> keyed() const;
    /// Names the files that reopen brings back; without files it is disabled.
    void setLastSession(const QStringList& names);

    /// Sets the state without triggering anything.
    static void setSilently(QAction* action, bool checked);
    static void enableSilently(QAction* action, bool enabled);
    void setMonitor(bool on);
    /// The state without views. The monitor stays enabled: it makes a view of its own.
    void reset();

private:
    /// A shortcut of the window beside the action, which works whichever tab is shown.
    void _addKey(QWidget& window, QAction* action, const QKeySequence& key);

    struct Shortcut {
        QAction* action;
        QShortcut* key;
    };
    QList<Shortcut> _shortcuts;
};
