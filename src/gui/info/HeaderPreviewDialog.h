// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a batch would do, before it does it.
#pragma once

#include "gui/info/HeaderJob.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

/// Looks through the files without changing any, says which lines will change, in how many files
/// and where, and starts the batch with its progress dialog when the user agrees. Not modal;
/// deletes itself on close.
class HeaderPreviewDialog : public QDialog {
    Q_OBJECT
public:
    HeaderPreviewDialog(HeaderJob job, QWidget* parent);
    ~HeaderPreviewDialog() override;

    /// Shows the dialog and begins to look.
    void start();

private slots:
    void _progressSlot(int finished, int tot);
    void _finishedSlot();
    void _startJob();

private:
    HeaderJob _job;
    QLabel* _label;
    QProgressBar* _bar;
    HeaderReportView* _report;
    QPushButton* _go;
};
