// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A panel that drops from the button of an action.
#pragma once

#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QPointer>
#include <QWidget>

/// The base of small panels that open below whichever button of their action was clicked. Stands in
/// a menu that it makes, which is a child of the parent and owns it. Thread: GUI only.
class DropDownWidget : public QWidget {
    Q_OBJECT
public:
    explicit DropDownWidget(QWidget* parent = nullptr);
    ~DropDownWidget() override;

    void setIcon(const QIcon& icon) { _action->setIcon(icon); }
    /// Opens the panel; may be placed in any number of bars.
    QAction* action() const { return _action; }

protected slots:
    /// Opens the panel at the lower left corner of the action's widget that is next to the cursor.
    virtual void exec();

private:
    QAction* _action;
    QPointer<QMenu> _menu;
};
