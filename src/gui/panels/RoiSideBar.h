// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of the region of interest.
#pragma once

#include "gui/kit/SideBar.h"
#include "logic/records/StatisticsData.h"

#include <functional>

class FloatingWidget;
class QLabel;
class QPushButton;
class TarvikService;

/// Chooses a kind of region, sets its coordinates, and shows, saves and copies its numbers and
/// curves. Thread: GUI only; nothing waits for numbers or files.
class RoiSideBar : public SideBar {
    Q_OBJECT
public:
    /// @param id  the key of the panel
    /// @param service  not owned; lives as long as the panel
    RoiSideBar(unsigned long long id, TarvikService* service, QWidget* parent = nullptr);

    void setVisible(bool visible) override;

private slots:
    void _writeToFileSlot();
    void _copySlot();
    void _popoutSlot(bool checked);
    void _setWriteButtonEnableState(const StatisticsData& region);
    void _setHelpSlot(const StatisticsData& region);

private:
    /// Made when the panel is first unfolded: few views of many are ever asked for their region.
    void _createContent();
    void _createButtons();
    QString _report() const;
    void _write(const QString& file);
    /// Calls now, or once the numbers of the present region have arrived.
    void _whenComputed(std::function<void()> use);
    void _numbersArrived();

    TarvikService* const _service;
    // Null before the panel is first unfolded.
    QLabel* _help = nullptr;
    FloatingWidget* _floating = nullptr;
    QPushButton* _saveButton = nullptr;
    QPushButton* _copyButton = nullptr;
    QPushButton* _popoutButton = nullptr;
    std::function<void()> _awaiting;  // empty unless numbers are awaited
};
