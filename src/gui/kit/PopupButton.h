// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A tool button that drops down a panel.
#pragma once

#include <QPointer>
#include <QToolButton>

class PanelMenu;

/// Shows a panel below itself, in which the keyboard works as in any window. The panel opens after
/// a long press, or as setPopupMode() says. Thread: GUI only.
class PopupButton : public QToolButton {
    Q_OBJECT
public:
    /// @param popup  becomes the button's; it gets the focus when it is shown, which it may pass on
    /// by a focus proxy
    explicit PopupButton(QWidget* popup, QWidget* parent = nullptr);

    QWidget* popup() const { return _popup; }
    QSize sizeHint() const override;

public slots:
    void hideMenu();

private:
    using Menu = PanelMenu;

    Menu* _menu;
    QPointer<QWidget> _popup;
};
