// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The files that are dropped on a window.
#pragma once

#include <QMimeData>
#include <QStringList>
#include <QUrl>

/// The local files among the URLs of a drop, in their order; others are skipped.
inline QStringList droppedFiles(const QMimeData& data)
{
    QStringList files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile())
            files << url.toLocalFile();
    }
    return files;
}
