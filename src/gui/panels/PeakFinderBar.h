// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of the strongest peaks.
#pragma once

#include "gui/kit/SideBar.h"
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/records/PeakData.h"

#include <set>
#include <vector>

class PeakTable;
class QSpinBox;
class TarvikService;

/// Requests a number of peaks and lists them; what is highlighted in the list is so in the image.
/// Thread: GUI only.
class PeakFinderBar : public SideBar {
    Q_OBJECT
public:
    /// @param id  the key of the panel
    /// @param service  not owned; lives as long as the panel
    PeakFinderBar(unsigned long long id, TarvikService* service, QWidget* parent = nullptr);

private slots:
    void _setPeaks(int number);
    void _setPeakData(const PeakData& selection);
    void _highlightPeaks(std::set<int> peaks);

private:
    /// Lists the peaks of the image, as many as requested and as there are.
    void _fillTable();

    TarvikService* const _service;
    QSpinBox* const _number;
    PeakTable* const _table;
    PeakData _peakData;
    std::vector<ImagePeaks::Pixel> _listed;
};
