// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/ExportDialog.h"

#include "gui/kit/ErrorDialog.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/SubWindow.h"
#include "logic/output/OutputFiles.h"
#include "logic/output/OutputJob.h"
#include "logic/service/TarvikService.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using morvend::imglib::MRect;

ExportDialog::ExportDialog(SubWindow* subWindow, const QString& fileName, const QString& format)
    : QDialog(subWindow->window())
    , _subWindow(subWindow)
    , _fileName(fileName)
    , _format(format)
    , _choices(new QWidget)
    , _progress(new QProgressBar)
{
    setWindowTitle(QStringLiteral("Export"));
    auto* currentView = new QRadioButton(QStringLiteral("Current View"));
    auto* entireImage = new QRadioButton(QStringLiteral("Entire Image"));
    auto* group = new QButtonGroup(this);
    group->addButton(currentView);
    group->addButton(entireImage);
    entireImage->setChecked(true);
    auto* colorBar = new QCheckBox(QStringLiteral("Color Bar"));
    colorBar->setChecked(true);
    connect(currentView, &QRadioButton::toggled, this, &ExportDialog::setCurrentView);
    connect(colorBar, &QCheckBox::toggled, this, &ExportDialog::setColorBar);
    auto* choices = new QVBoxLayout(_choices);
    choices->setContentsMargins(0, 0, 0, 0);
    choices->addWidget(currentView);
    choices->addWidget(entireImage);
    choices->addWidget(colorBar);

    auto* exportButton = new QPushButton(QStringLiteral("Export"));
    exportButton->setDefault(true);
    connect(exportButton, &QPushButton::clicked, this, &ExportDialog::exportToFile);
    auto* cancelButton = new QPushButton(QStringLiteral("Cancel"));
    connect(cancelButton, &QPushButton::clicked, this, &ExportDialog::reject);
    auto* row = new QHBoxLayout;
    row->addWidget(exportButton);
    row->addWidget(cancelButton);

    // It keeps its place, or the dialog would change its size under the cursor.
    QSizePolicy policy = _progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    _progress->setSizePolicy(policy);
    _progress->hide();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Export")));
    layout->addWidget(_choices);
    layout->addWidget(_progress);
    layout->addLayout(row);
    connect(subWindow, &QObject::destroyed, this, &ExportDialog::reject);
}

void ExportDialog::reject()
{
    delete std::exchange(_job, nullptr);
    QDialog::reject();
}

void ExportDialog::setCurrentView(bool currentView) { _currentView = currentView; }

void ExportDialog::setColorBar(bool colorBar) { _colorBar = colorBar; }

void ExportDialog::exportToFile()
{
    if (_job || !_subWindow)
        return;
    // All but the way to cancel.
    _choices->setEnabled(false);
    _progress->setRange(0, 0);
    _progress->show();
    OutputJob::Work work;
    MRect legend;
    if (_currentView) {
        const QSize size = _subWindow->displaySize();
        if (_colorBar)
            legend = MRect(size.width(), 0, 150, 400);
        work = [picture = _subWindow->imageDrawer()->grab(),
                contrast = _subWindow->service()->shownContrast(), file = _fileName,
                format = _format, legend](const pictures::Progress&) {
            output::exportView(picture, contrast, file, format, legend);
        };
    } else {
        const QSize size = _subWindow->service()->imageSize();
        if (_colorBar)
            legend = MRect(size.width(), 0, std::max(size.width() / 10, 150),
                           std::max(size.height() / 2, 400));
        work = [snapshot = _subWindow->service()->snapshot(), file = _fileName, format = _format,
                legend](const pictures::Progress& progress) {
            output::exportImage(snapshot, file, format, legend, progress);
        };
    }
    _job = new OutputJob(std::move(work), this);
    connect(_job, &OutputJob::finishedSignal, this, &ExportDialog::_finishedSlot);
    connect(_job, &OutputJob::progressSignal, this, [this](int percent) {
        // The packing that follows can't be measured.
        _progress->setRange(0, percent < 100 ? 100 : 0);
        _progress->setValue(percent);
    });
}

void ExportDialog::closeEvent(QCloseEvent* event)
{
    event->accept();
    reject();
}

void ExportDialog::_finishedSlot(const QString& error)
{
    std::exchange(_job, nullptr)->deleteLater();
    if (error.isEmpty())
        return accept();
    const QPointer<ExportDialog> self(this);
    ErrorDialog::showMessage(error.toUtf8().constData());
    if (self)
        reject();
}
