// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A place in a panel whose content can be torn out into a window.
#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>

class FloatingContainer;

/// Holds a child, which the user tears out by dragging it over the edge of the place, and which
/// comes home when its window is closed or dropped on the place. The window is shown and hidden
/// with the place and ends with it. Thread: GUI only.
class FloatingWidget : public QWidget {
    Q_OBJECT
public:
    /// @param child  becomes this widget's
    /// @param title, background  of the window
    FloatingWidget(QWidget* child, const QString& title, const QColor& background,
                   QWidget* parent = nullptr);
    ~FloatingWidget() override;

    QWidget* child() const { return _child; }
    /// True while the child is at home.
    bool childIsCatched() const { return _catched; }  // the spelling is part of the interface

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    /// Lets the child out at a global position; at the upper right corner of this widget's window,
    /// as far as the screen goes, without one.
    void releaseChild(QPoint pos);
    void releaseChild() { releaseChild(QPoint()); }
    /// Takes the child home if not enabled.
    void releaseChild(bool enabled, QPoint pos);
    void releaseChild(bool enabled) { releaseChild(enabled, QPoint()); }
    void catchChild();

signals:
    /// True when the child has come out, false when it has come home.
    void released(bool out);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private slots:
    void _catchDropped();

private:
    bool _isOver(QPoint global) const { return rect().contains(mapFromGlobal(global)); }
    /// Where a window without a wished place appears.
    QPoint _cornerOfWindow() const;

    bool _dragging = false;
    bool _pressedHere = false;  // the drag has begun on the child
    QPoint _dragPos;            // global
    QPointer<QWidget> _child;
    QPointer<FloatingContainer> _container;
    bool _catched = false;
};
