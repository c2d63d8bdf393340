// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/PeakFinderBar.h"

#include "gui/panels/PeakTable.h"
#include "logic/service/TarvikService.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

bool same(const ImagePeaks::Pixel& one, const ImagePeaks::Pixel& other)
{
    return one.x == other.x && one.y == other.y && one.value == other.value;
}

}  // namespace

PeakFinderBar::PeakFinderBar(unsigned long long id, TarvikService* service, QWidget* parent)
    : SideBar(id, parent)
    , _service(service)
    , _number(new QSpinBox)
    , _table(new PeakTable)
{
    setTitle(QStringLiteral("Max Finder"));
    setInfoText(QStringLiteral("Find local maxima"));
    _number->setRange(0, static_cast<int>(ImagePeaks::MostPeaks));
    // A column full of panels gives each of them no more than it needs.
    _table->setMinimumHeight(_table->sizeHint().height());
    _table->hide();
    auto* row = new QHBoxLayout;
    auto* label = new QLabel(QStringLiteral("Find Peaks"));
    label->setBuddy(_number);
    row->addWidget(label);
    row->addWidget(_number);
    auto* rows = new QVBoxLayout(this);
    rows->addLayout(row);
    rows->addWidget(_table);
    rows->addStretch();
    connect(_number, &QSpinBox::valueChanged, this, &PeakFinderBar::_setPeaks);
    connect(_table, &PeakTable::highlightSignal, this, &PeakFinderBar::_highlightPeaks);
    connect(service, &TarvikService::newPeakSignal, this, &PeakFinderBar::_setPeakData);
    connect(service, &TarvikService::peaksComputedSignal, this,
            [this] { _setPeakData(_peakData); });
    _setPeakData(service->peakData());
}

void PeakFinderBar::_setPeaks(int number)
{
    PeakData selection = _service->peakData();
    selection.numberOfPeaks = number;
    _service->setPeakData(selection);
    ensureVisible();  // with the table, if that has just come
}

void PeakFinderBar::_highlightPeaks(std::set<int> peaks)
{
    PeakData selection = _service->peakData();
    selection.highlightedPeaks = std::move(peaks);
    _service->setPeakData(selection);
}

void PeakFinderBar::_setPeakData(const PeakData& selection)
{
    _peakData = selection;
    {
        const QSignalBlocker quiet(_number);
        _number->setValue(_peakData.numberOfPeaks);
    }
    if (_peakData.numberOfPeaks == 0) {
        _table->hide();
        update();
        return;
    }
    _fillTable();
    _table->highlightLines(_peakData.highlightedPeaks);
    _table->show();
    update();
}

void PeakFinderBar::_fillTable()
{
    const ImagePeaks& peaks = _service->computedPeaks();
    const auto wanted = std::clamp(_peakData.numberOfPeaks, 0, peaks.numberOfPeaks());
    std::vector<ImagePeaks::Pixel> listed(peaks.pixels().begin(), peaks.pixels().begin() + wanted);
    // A drag over the table comes here with each of its steps.
    if (std::equal(listed.begin(), listed.end(), _listed.begin(), _listed.end(), same))
        return;
    _listed = std::move(listed);
    QScrollBar* const bar = _table->verticalScrollBar();
    const int position = bar->value();
    _table->clear();
    for (const ImagePeaks::Pixel& peak : _listed)
        _table->insertLine(peak.x, peak.y, peak.value);
    bar->setValue(position);
}
