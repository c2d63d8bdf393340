// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The groups of all records that views share.
#pragma once

#include "logic/records/ContrastData.h"
#include "logic/records/PeakData.h"
#include "logic/records/StatisticsData.h"
#include "logic/records/SyncGroups.h"
#include "logic/records/ViewportData.h"

#include <tuple>

/// One SyncGroups for each kind of record; views and core meet here. Thread: GUI only.
class RecordGroups {
public:
    template <class T>
    SyncGroups<T>& of()
    {
        return std::get<SyncGroups<T>>(_groups);
    }
    template <class T>
    const SyncGroups<T>& of() const
    {
        return std::get<SyncGroups<T>>(_groups);
    }

private:
    std::tuple<SyncGroups<ContrastData>, SyncGroups<ViewportData>, SyncGroups<StatisticsData>,
               SyncGroups<PeakData>>
        _groups;
};
