// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/RoiSelector.h"

#include "logic/service/TarvikService.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QSignalBlocker>

namespace {

void check(QCheckBox* box, bool on)
{
    if (!box)
        return;
    const QSignalBlocker quiet(box);
    box->setChecked(on);
}

}  // namespace

RoiSelector::RoiSelector(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
{
    auto* grid = new QGridLayout(this);
    const auto add = [&](int kind, const QString& text, int row, int column,
                         void (RoiSelector::*toggled)(bool)) {
        auto* box = new QCheckBox(text);
        _boxes.at(static_cast<std::size_t>(kind)) = box;
        grid->addWidget(box, row, column);
        connect(box, &QCheckBox::toggled, this, toggled);
    };
    add(StatisticsData::Line, QStringLiteral("Line Plot"), 0, 0, &RoiSelector::_toggledLineSlot);
    add(StatisticsData::Box, QStringLiteral("Box Plot"), 0, 1, &RoiSelector::_toggledBoxSlot);
    add(StatisticsData::Circle, QStringLiteral("Circle Plot"), 1, 0,
        &RoiSelector::_toggledCircleSlot);
    add(StatisticsData::CentredCircle, QStringLiteral("Powder Plot"), 1, 1,
        &RoiSelector::_toggledCentredCircleSlot);
    connect(service, &TarvikService::newImageSignal, this, &RoiSelector::_newImageSlot);
    connect(service, &TarvikService::newStatisticsSignal, this, &RoiSelector::_newStatisticsSlot);
    _newImageSlot();
    _newStatisticsSlot(service->statisticsData());
}

void RoiSelector::_newImageSlot() { setEnabled(_service->imageLoaded()); }

void RoiSelector::_newStatisticsSlot(const StatisticsData& region)
{
    if (region.roiType != _kind) {
        check(_boxes.at(static_cast<std::size_t>(_kind)), false);
        const bool known = region.roiType >= StatisticsData::None &&
                           region.roiType <= StatisticsData::CentredCircle;
        _kind = known ? region.roiType : StatisticsData::None;
    }
    check(_boxes.at(static_cast<std::size_t>(_kind)), true);
}

void RoiSelector::_toggled(int kind, bool on)
{
    StatisticsData region = _service->statisticsData();
    region.roiType = on ? kind : StatisticsData::None;
    region.roiActive = false;
    _service->setStatisticsData(region);
    emit chosenSignal();
}
