// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindowActions.h"

#include "gui/kit/PopupButton.h"
#include "gui/kit/ToolTipText.h"
#include "gui/window/HalvoWidget.h"
#include "gui/window/RecentFiles.h"
#include "logic/detector/HalvoMonitor.h"

#include <QSignalBlocker>

#include <utility>

MainWindowActions::MainWindowActions(QWidget& window)
    : newWindow(new QAction(QStringLiteral("New Window"), &window))
    , open(new QAction(QStringLiteral("Open"), &window))
    , saveAs(new QAction(QStringLiteral("Save As"), &window))
    , exportPicture(new QAction(QStringLiteral("Export"), &window))
    , recent(new RecentFiles(&window))
    , reopen(new QAction(QStringLiteral("Last Session"), &window))
    , syncViewport(new QCheckBox(QStringLiteral("Synchronize Viewport")))
    , syncContrast(new QCheckBox(QStringLiteral("Synchronize Contrast")))
    , syncStatistics(new QCheckBox(QStringLiteral("Synchronize Statistics")))
    , movie(new QAction(QStringLiteral("Movie Mode"), &window))
    , watch(new QAction(QStringLiteral("Watch Series"), &window))
    , monitorWidget(new HalvoWidget)
    , monitor(new PopupButton(monitorWidget))
    , help(new QAction(QStringLiteral("Documentation"), &window))
    , about(new QAction(QStringLiteral("About"), &window))
    , shortcuts(new QAction(QStringLiteral("Shortcuts"), &window))
    , keys(new QAction(QStringLiteral("Keys"), &window))
    , tools(new QAction(QStringLiteral("Tools"), &window))
{
    newWindow->setToolTip(QStringLiteral("Open new window (Ctrl N)"));
    open->setToolTip(QStringLiteral("Open Image File (Ctrl O)"));
    exportPicture->setToolTip(QStringLiteral("Export to image format like png, jpg,.. (Ctrl P)"));
    saveAs->setToolTip(
        QStringLiteral("Save image as cbf, tif or h5. Some header data may be lost. (Ctrl S)"));
    help->setToolTip(QStringLiteral("Open TARVIK help in default browser"));
    about->setToolTip(QStringLiteral("About TARVIK"));
    shortcuts->setToolTip(QStringLiteral("All keys and mouse gestures (F1)"));
    recent->setTitle(QStringLiteral("Recent Files"));
    recent->setToolTip(QStringLiteral("Files that were shown last"));
    _addKey(window, shortcuts, QKeySequence(Qt::Key_F1));
    _addKey(window, newWindow, QKeySequence::New);
    _addKey(window, open, QKeySequence::Open);
    _addKey(window, saveAs, QKeySequence(QStringLiteral("Ctrl+S")));
    _addKey(window, exportPicture, QKeySequence(QStringLiteral("Ctrl+P")));

    movie->setToolTip(QStringLiteral("Successively load all images of the current series. \n"
                                     "Load image to enable this mode."));
    watch->setToolTip(QStringLiteral("Watch currently opened series. \n"
                                     "Load image to enable this mode."));
    keys->setToolTip(QStringLiteral("Enable/disable keyboard shortcut mode (Esc)\n\n"
                                    "In shortcut mode the following shortcuts are available:\n"
                                    "F: Set foreground by mouse dragging \n"
                                    "B: Set background by mouse dragging \n"
                                    "N: Next image\n"
                                    "P: Previous image\n"
                                    "+: Zoom in\n"
                                    "-: Zoom out"));
    keys->setShortcut(Qt::Key_Escape);
    tools->setToolTip(QStringLiteral("Show/hide toolbar of active window"));
    for (QAction* action : {movie, watch, keys, tools})
        action->setCheckable(true);
    for (QAction* action : {movie, watch, tools})
        action->setEnabled(false);

    monitor->setText(QStringLiteral("HALVO Monitor"));
    monitor->setToolTip(QStringLiteral("Click to switch on/off HALVO Monitor Mode, click right "
                                       "arrow to setup HALVO Monitor Mode"));
    monitor->setCheckable(true);
    monitor->setPopupMode(QToolButton::MenuButtonPopup);
    monitorWidget->setHost(HalvoMonitor::defaultHost(), HalvoMonitor::defaultPort(),
                           HalvoMonitor::defaultMinPause());
}

void MainWindowActions::silenceShortcuts(bool silent)
{
    for (const Shortcut& shortcut : std::as_const(_shortcuts))
        shortcut.key->blockSignals(silent);
}

QList<MainWindowActions::Key> MainWindowActions::keyed() const
{
    QList<Key> all;
    for (const Shortcut& shortcut : _shortcuts)
        all.append({shortcut.action, shortcut.key->key()});
    all.append({keys, keys->shortcut()});
    return all;
}

void MainWindowActions::setLastSession(const QStringList& names)
{
    constexpr int Most = 10;
    reopen->setEnabled(!names.isEmpty());
    QString tip = QStringLiteral("Show again what was open when the program last ended");
    for (const QString& name : names.mid(0, Most))
        tip += '\n' + name;
    if (names.size() > Most)
        tip += QStringLiteral("\nand %1 more").arg(names.size() - Most);
    reopen->setToolTip(toolTipText(tip));
}

void MainWindowActions::setSilently(QAction* action, bool checked)
{
    const QSignalBlocker quiet(action);
    action->setChecked(checked);
}

void MainWindowActions::enableSilently(QAction* action, bool enabled)
{
    const QSignalBlocker quiet(action);
    action->setEnabled(enabled);
}

void MainWindowActions::setMonitor(bool on)
{
    const QSignalBlocker quiet(monitor);
    monitor->setChecked(on);
}

void MainWindowActions::reset()
{
    for (QAction* action : {tools, movie, watch}) {
        setSilently(action, false);
        enableSilently(action, false);
    }
    setMonitor(false);
}

void MainWindowActions::_addKey(QWidget& window, QAction* action, const QKeySequence& key)
{
    auto* shortcut = new QShortcut(key, &window, nullptr, nullptr, Qt::WindowShortcut);
    QObject::connect(shortcut, &QShortcut::activated, action, &QAction::trigger);
    _shortcuts.append({action, shortcut});
}
