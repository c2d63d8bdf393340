// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/core/TarvikCore.h"

#include "imagelib/display/MColorTable.h"
#include "imagelib/display/MDrawingList.h"
#include "logic/detector/HalvoService.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Assert.h"

#include <algorithm>

TarvikCore::TarvikCore()
    : _colorTables{MColorTable::hdr(),     MColorTable::grey(),    MColorTable::heat(),
                   MColorTable::rainbow(), MColorTable::viridis(), MColorTable::cividis()}
    , _halvoService(std::make_shared<HalvoService>())
{
    qRegisterMetaType<ViewportData>("ViewportData");
    qRegisterMetaType<ContrastData>("ContrastData");
    qRegisterMetaType<StatisticsData>("StatisticsData");
    qRegisterMetaType<const StatisticsData*>("const StatisticsData*");
    qRegisterMetaType<PeakData>("PeakData");
    qRegisterMetaType<morvend::imglib::MImage>("morvend::imglib::MImage");
    qRegisterMetaType<const morvend::imglib::MDrawingList<>*>(
        "const morvend::imglib::MDrawingList<>*");
}

TarvikCore::~TarvikCore()
{
    // Services leave their groups when they are destroyed; one that waits for its deletion is still
    // a child.
    _services.clear();
    qDeleteAll(findChildren<TarvikService*>(QString(), Qt::FindDirectChildrenOnly));
}

TarvikService* TarvikCore::newService(const QString& additionalSyncID)
{
    auto service = std::make_unique<TarvikService>(_groups, _halvoService, this);
    service->setAdditionalSyncID(additionalSyncID);
    service->setDefaultColorTable(_defaultColorTable);
    service->setColorTables(_colorTables);
    _services.insert(service.get());
    return service.release();  // a child of the core
}

void TarvikCore::deleteService(TarvikService* service)
{
    if (_services.erase(service) > 0)
        service->deleteLater();
}

void TarvikCore::setDefaultColorTable(const QString& name)
{
    const auto table =
        std::find_if(_colorTables.begin(), _colorTables.end(),
                     [identifier = name.toStdString()](const MColorTable* candidate) {
                         return candidate->identifier() == identifier;
                     });
    assert(table != _colorTables.end());
    _defaultColorTable = *table;
}

void TarvikCore::synchronizeViewportSlot(bool flag)
{
    if (_groups.of<ViewportData>().setEnabled(flag))
        emit synchronizeViewportSignal(flag);
}

void TarvikCore::synchronizeContrastSlot(bool flag)
{
    if (_groups.of<ContrastData>().setEnabled(flag))
        emit synchronizeContrastSignal(flag);
}

void TarvikCore::synchronizeStatisticsSlot(bool flag)
{
    if (_groups.of<StatisticsData>().setEnabled(flag))
        emit synchronizeStatisticsSignal(flag);
}

void TarvikCore::synchronizePeaksSlot(bool flag)
{
    if (_groups.of<PeakData>().setEnabled(flag))
        emit synchronizePeaksSignal(flag);
}
