// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The actions of the main window: texts, tool tips and shortcuts.
#pragma once

#include <QAction>
#include <QList>
#include <QShortcut>
#include <QWidget>

#include <functional>

/// Actions and the window's shortcuts for them; both call the same slot.
class MainWindowActions {
public:
    /// The effects of the actions.
    struct Slots {
        std::function<void()> newWindow;
        std::function<void()> open;
    };

    MainWindowActions(QWidget& window, const Slots& receivers);

    QAction* newWindowAction() const { return _newWindowAction; }
    QAction* openAction() const { return _openAction; }

    /// A silenced shortcut does nothing.
    void silenceShortcuts(bool silent);

private:
    QAction* _add(QWidget& window, const QString& text, const QString& tip, const QKeySequence& key,
                  const std::function<void()>& slot);

    QList<QShortcut*> _shortcuts;  // filled along with the actions, hence first
    QAction* _newWindowAction;
    QAction* _openAction;
};
