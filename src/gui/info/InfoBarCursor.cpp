// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/InfoBarCursor.h"

#include "logic/service/TarvikService.h"

InfoBarCursor::InfoBarCursor(unsigned long long syncClass, TarvikService* service)
    : InfoBar(syncClass, service)
{
    setTitle(QStringLiteral("Cursor Info"));
    connect(service, &TarvikService::cursorInfoSignal, this, [this](const CursorInfo& info) {
        _info = info;
        refresh();
    });
}

void InfoBarCursor::setText()
{
    addLine(CursorInfo::imgXKey(), _info.imgX());
    addLine(CursorInfo::imgYKey(), _info.imgY());
    addLine(CursorInfo::intensityKey(), _info.intensity());
    addLine(CursorInfo::distanceKey(), _info.distance());
    addLine(CursorInfo::resolutionKey(), _info.resolution());
}
