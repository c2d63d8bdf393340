// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/gestures/RegionCursors.h"

#include "gui/kit/Resources.h"

#include <QPixmap>

namespace render {

namespace {

QCursor cursor(const char* icon)
{
    initResources();
    return QCursor(QPixmap(QString::fromLatin1(icon)), -1, -1);
}

}  // namespace

RegionCursors::RegionCursors()
    : _cross(cursor(":icons/crosscursor.xpm"))
    , _rotation(cursor(":icons/rotarrow.xpm"))
    , _hand(Qt::OpenHandCursor)
    , _allWays(cursor(":icons/crossArrowCursor.png"))
    , _leftRight(cursor(":icons/leftRightCursor.png"))
    , _upDown(cursor(":icons/upDownCursor.png"))
{}

const QCursor& RegionCursors::of(RegionHandle handle) const
{
    switch (handle) {
    case RegionHandle::Body:
    case RegionHandle::PowderCentre:
        return _hand;
    case RegionHandle::EdgeBeginX:
    case RegionHandle::EdgeEndX:
        return _leftRight;
    case RegionHandle::EdgeBeginY:
    case RegionHandle::EdgeEndY:
        return _upDown;
    default:
        return _allWays;
    }
}

}  // namespace render
