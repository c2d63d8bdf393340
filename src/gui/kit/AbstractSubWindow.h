// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A frame of the image area: a title bar over one content widget.
#pragma once

#include "gui/kit/ApiCallable.h"
#include "gui/kit/TitleBar.h"

#include <QVBoxLayout>
#include <QWidget>

/// A frame that the MDI area tiles. It becomes active when it or any part of it gets the focus.
///
/// A frame never closes itself: a close only emits terminated(), and the area deletes it later,
/// from the event loop, as the close usually comes from a signal of one of its children.
class AbstractSubWindow : public QWidget {
    Q_OBJECT
public:
    using TitleBar = ::TitleBar;

    explicit AbstractSubWindow(QWidget* parent = nullptr);

    bool active() const { return _active; }
    /// Takes the focus and emits gotActivated() when it becomes active.
    void setActivated(bool activated);

    /// Puts a widget below the title bar, replacing the previous one, which is deleted.
    void setWidget(QWidget* widget);
    QWidget* widget() const { return _widget; }
    /// Puts a widget along the lower edge, below the content.
    void addFootWidget(QWidget* widget) { _layout->addWidget(widget); }
    /// False for a bare view.
    bool toolButtonsShown() const { return _toolButtonsShown; }
    TitleBar* titleBar() const { return _titleBar; }
    void addTitleBarWidget(QWidget* widget) { _titleBar->addWidget(widget); }
    void addTitleBarAction(QAction* action) { _titleBar->addAction(action); }
    void addTitleBarSpacing(int pixels) { _titleBar->addSpacing(pixels); }

public slots:
    /// A bare view: no controls and no exit button in the title bar.
    API_CALLABLE void hideToolButtons();
    API_CALLABLE void showToolButtons();
    /// Colours of the title bar; each value is clamped to 0 to 255. They show from the next change
    /// of activation on.
    API_CALLABLE void setActiveColor(int red, int green, int blue);
    API_CALLABLE void setNonActiveColor(int red, int green, int blue);

signals:
    void gotActivated(AbstractSubWindow* frame);
    void windowStateChanged(Qt::WindowStates oldState, Qt::WindowStates newState);
    void terminated(AbstractSubWindow* frame);
    /// The view has become bare, or is so no longer.
    void toolButtonsShownSignal(bool shown);

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private slots:
    void _processFocusChanged(QWidget* old, QWidget* now);

private:
    void _setToolButtonsVisible(bool visible);

    bool _active = false;
    bool _toolButtonsShown = true;
    QWidget* _widget = nullptr;
    QVBoxLayout* _layout;
    TitleBar* _titleBar;
};
