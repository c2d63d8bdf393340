// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The progress of a batch that writes header values.
#pragma once

#include <QDialog>

#include <memory>

class QLabel;
class QProgressBar;
class QPushButton;
class WriteHeaderToFilesThread;

/// Shows how far a batch has come. Not modal; closing it ends the batch after the file that is
/// being written, and deletes it.
class WriteHeaderToFilesDialog : public QDialog {
    Q_OBJECT
public:
    WriteHeaderToFilesDialog(std::unique_ptr<WriteHeaderToFilesThread> thread, QWidget* parent);
    ~WriteHeaderToFilesDialog() override;

    void startWriteThread();

private slots:
    void _finishedSlot();
    void _abortWriteThread();
    void _progressSlot(int finished, int tot);

private:
    std::unique_ptr<WriteHeaderToFilesThread> _thread;
    QLabel* _label;
    QLabel* _progress;
    QProgressBar* _bar;
    QPushButton* _abort;
    QPushButton* _close;
};
