// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What surrounds the child of a floating widget, at home and as a window.
#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>

/// Keeps its child at its own size. As a window it is dragged by any of its parts, and its close
/// button only asks to be taken home.
class FloatingContainer : public QWidget {
    Q_OBJECT
public:
    /// @param child  becomes the container's
    FloatingContainer(QWidget* child, QWidget* parent);

    QWidget* child() const { return _child; }
    /// Becomes a window at a place on the screen; one that comes out under a pressed button hangs
    /// on the cursor by its corner.
    void becomeWindow(QPoint pos);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void closed();
    /// The button was released over the window.
    void dropped();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// Under the button that tore the child out; widgets hear nothing of that button any more.
    bool _torn = false;
    QPoint _offset;  // from the corner of the window to where it was pressed
    QPointer<QWidget> _child;
};
