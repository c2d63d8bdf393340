// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The files that are dropped on a window.
#pragma once

#include <QDropEvent>
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

/// Accepts a drag or a drop as a copy, whatever its source proposes: a file manager deletes what
/// was taken as a move. A source that offers no copy learns that nothing was taken.
inline void acceptCopy(QDropEvent& event)
{
    event.setDropAction(Qt::CopyAction);
    if (event.dropAction() != Qt::CopyAction)  // the toolkit returns to the proposed action
        event.setDropAction(Qt::IgnoreAction);
    event.accept();
}
