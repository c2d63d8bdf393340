// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The title over a panel.
#pragma once

#include "gui/kit/SideBar.h"

#include <QPointer>

/// Shows by a triangle whether its panel is folded, and folds or unfolds it at a press.
class SideBarTitle : public QWidget {
    Q_OBJECT
public:
    SideBarTitle(SideBar* sideBar, QWidget* parent);

    /// After a change of the panel's title, text or level.
    void refresh();
    QSize sizeHint() const override;
    /// Any width, or a column could never get narrower than it was.
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// The panel that it folds; a sibling. The title may outlive it until the event loop runs.
    const QPointer<SideBar> _sideBar;
};
