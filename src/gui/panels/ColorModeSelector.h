// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The choice of a view's colour table.
#pragma once

#include "logic/records/ContrastData.h"

#include <QWidget>

#include <map>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class TarvikService;

/// A button for each colour table, and a box that inverts it. Thread: GUI only.
class ColorModeSelector : public QWidget {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as the widget
    explicit ColorModeSelector(TarvikService* service, QWidget* parent = nullptr);

private slots:
    void _newImageSlot();
    void _setContrastSlot(const ContrastData& contrast);
    void _buttonClickedSlot(QAbstractButton* button);
    void _toggleInverse(bool inverse);

private:
    using MColorTable = ContrastData::MColorTable;

    void _setTable(const MColorTable* table);

    TarvikService* _service;
    QButtonGroup* _buttons;
    QCheckBox* _inverseBox;
    // Both ways, of tables that are not inverse.
    std::map<QAbstractButton*, const MColorTable*> _tableOf;
    std::map<const MColorTable*, QAbstractButton*> _buttonOf;
};
