// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/HeaderPreviewDialog.h"

#include "gui/info/WriteHeaderToFilesDialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

HeaderPreviewDialog::HeaderPreviewDialog(HeaderJob job, QWidget* parent)
    : QDialog(parent)
    , _job(std::move(job))
    , _label(new QLabel(QStringLiteral("Looking through the files ...")))
    , _bar(new QProgressBar)
    , _report(new HeaderReportView)
    , _go(new QPushButton(_job.button))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Image Headers"));
    auto* cancel = new QPushButton(QStringLiteral("Cancel"));
    _go->setEnabled(false);
    cancel->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(_go);
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(_label);
    rows->addWidget(_bar);
    rows->addWidget(_report);
    rows->addLayout(buttons);

    connect(cancel, &QPushButton::clicked, this, &QDialog::close);
    connect(_go, &QPushButton::clicked, this, &HeaderPreviewDialog::_startJob);
    connect(_job.thread.get(), &HeaderFilesThread::progress, this,
            &HeaderPreviewDialog::_progressSlot);
    connect(_job.thread.get(), &QThread::finished, this, &HeaderPreviewDialog::_finishedSlot);
}

HeaderPreviewDialog::~HeaderPreviewDialog() = default;

void HeaderPreviewDialog::start()
{
    show();
    _job.thread->setMode(HeaderBatch::Mode::Preview);
    _job.thread->start();
}

void HeaderPreviewDialog::_progressSlot(int finished, int tot)
{
    _bar->setMaximum(tot);
    _bar->setValue(finished);
}

void HeaderPreviewDialog::_finishedSlot()
{
    const HeaderReport& report = _job.thread->report();
    _bar->hide();
    _label->setText(report.changedFiles() > 0
                        ? QStringLiteral("Nothing has been written yet. These lines of the headers "
                                         "will change:")
                        : QStringLiteral("There is nothing to change."));
    _report->setReport(report, _job.will);
    _go->setEnabled(report.changedFiles() > 0);
}

void HeaderPreviewDialog::_startJob()
{
    disconnect(_job.thread.get(), nullptr, this, nullptr);
    _job.thread->setMode(HeaderBatch::Mode::Write);
    auto* dialog = new WriteHeaderToFilesDialog(std::move(_job), parentWidget());
    dialog->show();
    dialog->startWriteThread();
    close();
}
