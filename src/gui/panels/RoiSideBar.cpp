// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/RoiSideBar.h"

#include "gui/kit/ErrorDialog.h"
#include "gui/kit/FloatingWidget.h"
#include "gui/panels/RoiPlotter.h"
#include "gui/panels/RoiSelector.h"
#include "gui/panels/RoiSeries.h"
#include "gui/panels/TuneRoi.h"
#include "logic/output/OutputFiles.h"
#include "logic/output/OutputJob.h"
#include "logic/output/RegionReport.h"
#include "logic/service/TarvikService.h"
#include "logic/support/GlobalStyle.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>

#include <utility>

namespace {

const QString RegionDirectory = QStringLiteral("RegionDirectory");

}  // namespace

RoiSideBar::RoiSideBar(unsigned long long id, TarvikService* service, QWidget* parent)
    : SideBar(id, parent)
    , _service(service)
{
    setTitle(QStringLiteral("Region of Interest"));
}

void RoiSideBar::setVisible(bool visible)
{
    // Before it is shown, so that it comes in its full size.
    if (visible && !_help)
        _createContent();
    SideBar::setVisible(visible);
}

void RoiSideBar::_createContent()
{
    _help = new QLabel;
    _floating = new FloatingWidget(new RoiPlotter(_service), QStringLiteral("TARVIK ROI"),
                                   GLOBALSTYLE::sidebarColor);
    _saveButton = new QPushButton(QStringLiteral("Save"));
    _copyButton = new QPushButton(QStringLiteral("Copy"));
    _popoutButton = new QPushButton(QStringLiteral("Pop Out"));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    auto* selector = new RoiSelector(_service);
    rows->addWidget(selector);
    _help->setWordWrap(true);
    _help->setContentsMargins(9, 0, 9, 0);
    rows->addWidget(_help);
    rows->addWidget(new TuneRoi(_service));
    _createButtons();
    rows->addWidget(_floating, 1);
    auto* series = new RoiSeries(_service);
    rows->addWidget(series);
    // What has been asked for is not left below the window.
    connect(selector, &RoiSelector::chosenSignal, this, [this] { ensureVisible(); });
    connect(series, &RoiSeries::plotOpenedSignal, this,
            [this](QWidget* plot) { ensureVisible(*plot); });
    connect(_service, &TarvikService::newStatisticsSignal, this,
            &RoiSideBar::_setWriteButtonEnableState);
    connect(_service, &TarvikService::newStatisticsSignal, this, &RoiSideBar::_setHelpSlot);
    connect(_service, &TarvikService::newStatisticsSignal, this, &RoiSideBar::_numbersArrived);
    connect(_service, &TarvikService::regionComputedSignal, this, &RoiSideBar::_numbersArrived);
    _setWriteButtonEnableState(_service->statisticsData());
    _setHelpSlot(_service->statisticsData());
}

void RoiSideBar::_createButtons()
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(9, 0, 9, 0);
    for (QPushButton* button : {_saveButton, _copyButton, _popoutButton})
        row->addWidget(button);
    row->addStretch();
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    _saveButton->setToolTip(QStringLiteral("Write roi result including plot to text file"));
    _copyButton->setToolTip(QStringLiteral("Copy roi result including plot to clipboard"));
    _popoutButton->setToolTip(QStringLiteral("Show roi result in separate window"));
    _popoutButton->setCheckable(true);
    connect(_saveButton, &QPushButton::pressed, this, &RoiSideBar::_writeToFileSlot);
    connect(_copyButton, &QPushButton::pressed, this, &RoiSideBar::_copySlot);
    connect(_popoutButton, &QPushButton::toggled, _floating,
            qOverload<bool>(&FloatingWidget::releaseChild));
    connect(_popoutButton, &QPushButton::toggled, this, &RoiSideBar::_popoutSlot);
    connect(_floating, &FloatingWidget::released, _popoutButton, &QPushButton::setChecked);
}

QString RoiSideBar::_report() const
{
    const auto& [region, numbers] = _service->computedRegion();
    return output::regionReport(_service->imagePath(), region, numbers);
}

void RoiSideBar::_writeToFileSlot()
{
    _saveButton->setDown(false);  // its release goes to the dialog
    auto* dialog = new QFileDialog(window(), QStringLiteral("Save"),
                                   QSettings().value(RegionDirectory).toString());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setViewMode(QFileDialog::Detail);
    dialog->setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::HideNameFilterDetails);
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Save"));
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString& file) { _whenComputed([this, file] { _write(file); }); });
    dialog->open();
}

void RoiSideBar::_write(const QString& file)
{
    const auto& [region, numbers] = _service->computedRegion();
    // The view may close meanwhile; the window owns the work.
    auto* job = new OutputJob(
        [file, path = _service->imagePath(), region = region,
         numbers = numbers](const pictures::Progress&) {
            output::writeBytes(output::regionReport(path, region, numbers).toUtf8(), file);
            QSettings().setValue(RegionDirectory, QFileInfo(file).absolutePath());
        },
        window());
    connect(job, &OutputJob::finishedSignal, job, [job](const QString& error) {
        job->deleteLater();
        if (!error.isEmpty())
            ErrorDialog::showMessage(error.toUtf8().constData());
    });
}

void RoiSideBar::_copySlot()
{
    _whenComputed([this] { QApplication::clipboard()->setText(_report()); });
}

void RoiSideBar::_whenComputed(std::function<void()> use)
{
    _awaiting = std::move(use);
    _numbersArrived();
}

void RoiSideBar::_numbersArrived()
{
    if (_awaiting && !_service->regionPending())
        std::exchange(_awaiting, {})();
}

void RoiSideBar::_popoutSlot(bool checked)
{
    _popoutButton->setText(checked ? QStringLiteral("Pop In") : QStringLiteral("Pop Out"));
    if (!checked)
        ensureVisible(*_floating);
}

void RoiSideBar::_setWriteButtonEnableState(const StatisticsData& region)
{
    _saveButton->setEnabled(region.roiActive);
    _copyButton->setEnabled(region.roiActive);
}

void RoiSideBar::_setHelpSlot(const StatisticsData& region)
{
    QString text;
    if (region.roiType >= StatisticsData::Line && region.roiType <= StatisticsData::Circle)
        text = QStringLiteral("<i> Select region by right clicking and dragging the mouse</i>");
    else if (region.roiType == StatisticsData::CentredCircle)
        text = QStringLiteral("<i> Ctrl + right click to set the beam centre<p/>Select region by "
                              "right clicking and dragging the mouse.</i>");
    else
        return;
    _help->setText(text);
    setToolTip(text);
}
