// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindowActions.h"

MainWindowActions::MainWindowActions(QWidget& window, const Slots& receivers)
    : _newWindowAction(_add(window, QStringLiteral("New Window"),
                            QStringLiteral("Open new window (Ctrl N)"), QKeySequence::New,
                            receivers.newWindow))
    , _openAction(_add(window, QStringLiteral("Open"), QStringLiteral("Open Image File (Ctrl O)"),
                       QKeySequence::Open, receivers.open))
{}

void MainWindowActions::silenceShortcuts(bool silent)
{
    for (QShortcut* shortcut : std::as_const(_shortcuts))
        shortcut->blockSignals(silent);
}

QAction* MainWindowActions::_add(QWidget& window, const QString& text, const QString& tip,
                                 const QKeySequence& key, const std::function<void()>& slot)
{
    auto* action = new QAction(text, &window);
    action->setToolTip(tip);
    QObject::connect(action, &QAction::triggered, &window, [slot] { slot(); });
    auto* shortcut = new QShortcut(key, &window);
    QObject::connect(shortcut, &QShortcut::activated, &window, [slot] { slot(); });
    _shortcuts.append(shortcut);
    return action;
}
