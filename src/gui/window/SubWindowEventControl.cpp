// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/SubWindowEventControl.h"

#include "gui/kit/PressedKeys.h"
#include "logic/analysis/statistics/ImageStatistics.h"
#include "logic/service/TarvikService.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// A pixel of a drag changes a large count by 2 %, and one near zero by a constant step.
double dragged(double value, double pixels)
{
    return std::sinh(std::clamp(pixels * 0.02 + std::asinh(value), -44.0, 44.0));
}

/// Least distance between foreground and background.
constexpr double Gap = 0.001;

}  // namespace

const QList<SubWindowEventControl::Key>& SubWindowEventControl::keys()
{
    static const QList<Key> all{{Qt::Key_F, "Set foreground by mouse dragging"},
                                {Qt::Key_B, "Set background by mouse dragging"},
                                {Qt::Key_N, "Next image"},
                                {Qt::Key_P, "Previous image"},
                                {Qt::Key_Plus, "Zoom in"},
                                {Qt::Key_Minus, "Zoom out"}};
    return all;
}

SubWindowEventControl::SubWindowEventControl(QObject* view, TarvikService* service,
                                             std::function<void(int)> zoom)
    : QObject(view)
    , _service(service)
    , _zoom(std::move(zoom))
{
    _dragContrast.dragUpdate = false;
}

bool SubWindowEventControl::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        _lastPos = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
        return false;
    case QEvent::MouseButtonRelease:
        endDrag();
        return false;
    case QEvent::MouseMove:
        return _service->imageLoaded() && _drag(*static_cast<QMouseEvent*>(event));
    case QEvent::KeyPress:
        return _service->imageLoaded() && _press(*static_cast<QKeyEvent*>(event));
    default:
        return false;
    }
}

void SubWindowEventControl::endDrag()
{
    if (!_dragContrast.dragUpdate)
        return;
    _dragContrast.dragUpdate = false;
    // A last full pass follows the fast ones of the drag.
    ContrastData contrast = _service->contrastData();
    contrast.dragUpdate = false;
    _service->setContrastData(contrast);
}

bool SubWindowEventControl::_drag(const QMouseEvent& event)
{
    const bool foreground = PressedKeys::pressed(Qt::Key_F);
    if (event.buttons() == Qt::NoButton || !(foreground || PressedKeys::pressed(Qt::Key_B)))
        return false;
    const QPoint position = event.globalPosition().toPoint();
    const int move = position.x() - _lastPos.x();
    const bool under = _dragContrast.dragUpdate;
    _dragContrast = _service->contrastData();
    _dragContrast.dragUpdate = under;
    double& front = _dragContrast.foreground;
    double& back = _dragContrast.background;
    if (foreground) {
        const double moved = dragged(front, move);
        if (moved == front)
            return true;
        front = moved > back ? moved : back + Gap;
    } else {
        const double moved = std::trunc(dragged(back, move));
        if (moved == back)
            return true;
        back = std::max(moved, _service->statistics()->minimum);
        if (!(back < front))
            back = front - Gap;
    }
    _apply(position);
    return true;
}

void SubWindowEventControl::_apply(QPoint position)
{
    _dragContrast.defined = true;
    _dragContrast.dragUpdate = true;
    _service->setContrastData(_dragContrast);
    _lastPos = position;
}

bool SubWindowEventControl::_press(const QKeyEvent& event)
{
    if (!PressedKeys::pressed(event.key()) || event.modifiers().testFlag(Qt::ControlModifier))
        return false;
    switch (event.key()) {
    case Qt::Key_N:
        _service->nextImage(1, true);
        return true;
    case Qt::Key_P:
        _service->nextImage(-1, true);
        return true;
    case Qt::Key_Equal:
        // Typed without Shift it shares its key with "+".
        if (event.modifiers().testFlag(Qt::ShiftModifier))
            return false;
        [[fallthrough]];
    case Qt::Key_Plus:
        _zoom(1);
        return true;
    case Qt::Key_Minus:
        _zoom(-1);
        return true;
    default:
        return false;
    }
}
