// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/WriteHeaderToFilesDialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

WriteHeaderToFilesDialog::WriteHeaderToFilesDialog(HeaderJob job, QWidget* parent)
    : QDialog(parent)
    , _job(std::move(job))
    , _label(new QLabel(_job.running))
    , _progress(new QLabel)
    , _bar(new QProgressBar)
    , _report(new HeaderReportView)
    , _abort(new QPushButton(QStringLiteral("Abort")))
    , _close(new QPushButton(QStringLiteral("Close")))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Image Headers"));
    _progress->hide();
    _report->hide();
    _close->hide();
    _close->setEnabled(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(_abort);
    buttons->addWidget(_close);
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(_label);
    rows->addWidget(_progress);
    rows->addWidget(_bar);
    rows->addWidget(_report);
    rows->addLayout(buttons);

    connect(_abort, &QPushButton::clicked, this, &WriteHeaderToFilesDialog::_abortWriteThread);
    connect(_close, &QPushButton::clicked, this, &QDialog::close);
    connect(_job.thread.get(), &HeaderFilesThread::progress, this,
            &WriteHeaderToFilesDialog::_progressSlot);
    connect(_job.thread.get(), &QThread::finished, this, &WriteHeaderToFilesDialog::_finishedSlot);
}

WriteHeaderToFilesDialog::~WriteHeaderToFilesDialog() = default;

void WriteHeaderToFilesDialog::startWriteThread() { _job.thread->start(); }

void WriteHeaderToFilesDialog::_progressSlot(int finished, int tot)
{
    _progress->setText(_job.progress.arg(finished).arg(tot));
    _progress->show();
    _bar->setMaximum(tot);
    _bar->setValue(finished);
}

void WriteHeaderToFilesDialog::_finishedSlot()
{
    _label->setText(_job.finished);
    _abort->setEnabled(false);
    _close->setEnabled(true);
    _close->show();
    _report->setReport(_job.thread->report(), _job.did);
    _report->show();
}

void WriteHeaderToFilesDialog::_abortWriteThread()
{
    _job.thread->abort();
    close();
}
