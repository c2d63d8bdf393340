// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/WriteHeaderToFilesDialog.h"

#include "logic/headerfiles/WriteHeaderToFilesThread.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

WriteHeaderToFilesDialog::WriteHeaderToFilesDialog(std::unique_ptr<WriteHeaderToFilesThread> thread,
                                                   QWidget* parent)
    : QDialog(parent)
    , _thread(std::move(thread))
    , _label(new QLabel(QStringLiteral("Writing header info to present image series")))
    , _progress(new QLabel)
    , _bar(new QProgressBar)
    , _abort(new QPushButton(QStringLiteral("Abort")))
    , _close(new QPushButton(QStringLiteral("Close")))
{
    setAttribute(Qt::WA_DeleteOnClose);
    _progress->hide();
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
    rows->addLayout(buttons);

    connect(_abort, &QPushButton::clicked, this, &WriteHeaderToFilesDialog::_abortWriteThread);
    connect(_close, &QPushButton::clicked, this, &QDialog::close);
    connect(_thread.get(), &WriteHeaderToFilesThread::progress, this,
            &WriteHeaderToFilesDialog::_progressSlot);
    connect(_thread.get(), &QThread::finished, this, &WriteHeaderToFilesDialog::_finishedSlot);
}

WriteHeaderToFilesDialog::~WriteHeaderToFilesDialog()
{
    // The file that is being written may hang with its file system: the batch ends by itself.
    _thread->abort();
    disconnect(_thread.get(), nullptr, this, nullptr);
    if (_thread->isRunning()) {
        WriteHeaderToFilesThread* const running = _thread.release();
        connect(running, &QThread::finished, running, &QObject::deleteLater);
        if (running->isFinished())
            running->deleteLater();
    }
}

void WriteHeaderToFilesDialog::startWriteThread() { _thread->start(); }

void WriteHeaderToFilesDialog::_progressSlot(int finished, int tot)
{
    _progress->setText(QStringLiteral("Written image %1 of %2").arg(finished).arg(tot));
    _progress->show();
    _bar->setMaximum(tot);
    _bar->setValue(finished);
}

void WriteHeaderToFilesDialog::_finishedSlot()
{
    _label->setText(QStringLiteral("Finished writing image headers"));
    _abort->setEnabled(false);
    _close->setEnabled(true);
    _close->show();
}

void WriteHeaderToFilesDialog::_abortWriteThread()
{
    _thread->abort();
    close();
}
