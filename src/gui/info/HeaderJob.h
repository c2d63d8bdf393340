// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A walk over the headers of many files, as dialogs hold and name it.
#pragma once

#include "logic/headerfiles/HeaderFilesThread.h"

#include <QPlainTextEdit>
#include <QString>

#include <memory>

/// Ends a walk without waiting for it: the file that it is at may hang with its file system.
struct EndsByItself {
    void operator()(HeaderFilesThread* thread) const
    {
        thread->abort();
        if (thread->isRunning()) {
            QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
            if (thread->isFinished())
                thread->deleteLater();
        } else {
            delete thread;
        }
    }
};

/// What a walk does, and the words for it.
struct HeaderJob {
    std::unique_ptr<HeaderFilesThread, EndsByItself> thread;
    QString button;    // starts it
    QString will;      // as in "3 files will change"
    QString did;       // as in "3 files changed"
    QString running;   // while it runs
    QString progress;  // with %1 of %2
    QString finished;

    static HeaderJob write(std::unique_ptr<HeaderFilesThread> thread)
    {
        return {std::unique_ptr<HeaderFilesThread, EndsByItself>(thread.release()),
                QStringLiteral("Write"),
                QStringLiteral("will change"),
                QStringLiteral("changed"),
                QStringLiteral("Writing header info to present image series"),
                QStringLiteral("Written image %1 of %2"),
                QStringLiteral("Finished writing image headers")};
    }
    static HeaderJob undo(std::unique_ptr<HeaderFilesThread> thread)
    {
        return {std::unique_ptr<HeaderFilesThread, EndsByItself>(thread.release()),
                QStringLiteral("Put Back"),
                QStringLiteral("will be put back"),
                QStringLiteral("put back"),
                QStringLiteral("Putting back what the last write replaced"),
                QStringLiteral("Put back image %1 of %2"),
                QStringLiteral("Finished putting back image headers")};
    }
};

/// A report as a text that can be scrolled and copied.
class HeaderReportView : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit HeaderReportView(QWidget* parent = nullptr);
    void setReport(const HeaderReport& report, const QString& did);
};
