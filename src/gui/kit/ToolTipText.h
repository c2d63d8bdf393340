// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Tooltips with names of files.
#pragma once

#include <QString>
#include <QTextDocument>

/// A tooltip that shows a text as it is: a path may look like markup.
inline QString toolTipText(const QString& plain)
{
    return Qt::mightBeRichText(plain) ? Qt::convertFromPlainText(plain) : plain;
}
