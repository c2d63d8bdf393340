// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A menu that holds a panel instead of entries.
#pragma once

#include <QMenu>

/// Leaves the keys to the panel in it: a menu of entries takes letters, arrows and tabs for a
/// choice among them.
class PanelMenu : public QMenu {
    Q_OBJECT
public:
    /// @param panel  becomes the menu's
    explicit PanelMenu(QWidget* panel, QWidget* parent = nullptr);

protected:
    // NOLINTBEGIN(bugprone-parent-virtual-call): what a menu does with keys is left out on purpose
    void keyPressEvent(QKeyEvent* event) override { QWidget::keyPressEvent(event); }
    void keyReleaseEvent(QKeyEvent* event) override { QWidget::keyReleaseEvent(event); }
    bool focusNextPrevChild(bool next) override { return QWidget::focusNextPrevChild(next); }
    // NOLINTEND(bugprone-parent-virtual-call)
};
