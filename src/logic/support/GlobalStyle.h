// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The look that all widgets share.
#pragma once

#include <QColor>
#include <QString>

namespace GLOBALSTYLE {

/// Family of the application font and of the legend's font.
const QString fontFamily = QStringLiteral("Nimbus Sans L");
/// Background of side bars and of floating widgets.
const QColor sidebarColor(60, 60, 60, 255);

}  // namespace GLOBALSTYLE
