// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The dialog that asks what to export, and writes it.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QString>

class OutputJob;
class QProgressBar;
class SubWindow;

/// Writes a picture of a view, or of its whole image, to a file that was chosen before. A worker
/// writes while the dialog shows the progress; after a cancel an older file is still there. The
/// dialog is rejected if the write fails, which it reports, and if the view closes.
class ExportDialog : public QDialog {
    Q_OBJECT
public:
    /// @param format  one of QImageWriter
    ExportDialog(SubWindow* subWindow, const QString& fileName, const QString& format);

public slots:
    void reject() override;

private slots:
    void setCurrentView(bool currentView);
    void setColorBar(bool colorBar);
    void exportToFile();
    void closeEvent(QCloseEvent* event) override;
    void _finishedSlot(const QString& error);

private:
    QPointer<SubWindow> _subWindow;
    bool _currentView = false;
    bool _colorBar = true;
    QString _fileName;
    QString _format;
    QWidget* _choices;
    QProgressBar* _progress;
    OutputJob* _job = nullptr;  // while it writes
};
