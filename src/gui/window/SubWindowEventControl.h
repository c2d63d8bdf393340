// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The gestures of the keyboard shortcut mode.
#pragma once

#include "logic/records/ContrastData.h"

#include <QList>
#include <QObject>
#include <QPoint>

#include <functional>

class QKeyEvent;
class QMouseEvent;
class TarvikService;

/// Changes the contrast of a view by drags with a held key, and steps and zooms by keys. Events
/// come from the event filter of the main window while the mode is on. Child of the view.
/// Thread: GUI only.
class SubWindowEventControl : public QObject {
    Q_OBJECT
public:
    /// A key of the mode and its effect in words.
    struct Key {
        int key;
        const char* effect;
    };
    /// All keys, in the order of their importance.
    static const QList<Key>& keys();

    /// @param zoom  takes 1 to zoom in, -1 to zoom out
    SubWindowEventControl(QObject* view, TarvikService* service, std::function<void(int)> zoom);

    /// @returns true if the event is used up and must not reach its target
    bool event(QEvent* event) override;
    /// Ends a drag whose release will not arrive.
    void endDrag();

private:
    bool _drag(const QMouseEvent& event);
    void _apply(QPoint position);
    bool _press(const QKeyEvent& event);

    TarvikService* const _service;
    const std::function<void(int)> _zoom;
    QPoint _lastPos;             // on the screen
    ContrastData _dragContrast;  // dragUpdate is set while a drag is under way
};
