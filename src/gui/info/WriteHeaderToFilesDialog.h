// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The progress of a batch that writes header values.
#pragma once

#include "gui/info/HeaderJob.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

/// Shows how far a batch has come. Not modal; closing it ends the batch after the file that is
/// being written, and deletes it. At the end it says what was changed, and what was not and why.
class WriteHeaderToFilesDialog : public QDialog {
    Q_OBJECT
public:
    WriteHeaderToFilesDialog(HeaderJob job, QWidget* parent);
    ~WriteHeaderToFilesDialog() override;

    void startWriteThread();

private slots:
    void _finishedSlot();
    void _abortWriteThread();
    void _progressSlot(int finished, int tot);

private:
    HeaderJob _job;
    QLabel* _label;
    QLabel* _progress;
    QProgressBar* _bar;
    HeaderReportView* _report;
    QPushButton* _abort;
    QPushButton* _close;
};
