// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of what is under the cursor.
#pragma once

#include "gui/info/InfoBar.h"
#include "logic/service/CursorInfo.h"

/// Position, count, distance and resolution at the cursor, a line each.
class InfoBarCursor : public InfoBar {
    Q_OBJECT
public:
    InfoBarCursor(unsigned long long syncClass, TarvikService* service);

protected:
    void setText() override;

private:
    CursorInfo _info;
};
