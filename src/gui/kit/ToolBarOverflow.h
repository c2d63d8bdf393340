// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What has no room on a tool bar.
#pragma once

#include <QAction>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QToolBar>
#include <QToolButton>

/// Offers boxes and buttons that have no room on a tool bar in the menu at its end, where the bar
/// itself offers its actions only. Thread: GUI only.
class ToolBarOverflow : public QObject {
    Q_OBJECT
public:
    /// @param bar  the parent
    explicit ToolBarOverflow(QToolBar& bar);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void _fill();

    QToolBar& _bar;
    QToolButton* _button;
    /// The bar empties its menu at each layout, and the entries go with it.
    QList<QPointer<QAction>> _entries;
};
