// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/ColorModeSelector.h"

#include "imagelib/display/MColorTable.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Assert.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QRadioButton>
#include <QSignalBlocker>

ColorModeSelector::ColorModeSelector(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
    , _buttons(new QButtonGroup(this))
    , _inverseBox(new QCheckBox(QStringLiteral("Invert Color")))
{
    constexpr int Columns = 2;
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    int place = 0;
    for (const MColorTable* table : service->colorTables()) {
        auto* button = new QRadioButton(QString::fromStdString(table->identifier()));
        button->setStyleSheet(QStringLiteral("QRadioButton { color: white;}"));
        button->setEnabled(false);
        _buttons->addButton(button);
        grid->addWidget(button, place / Columns, place % Columns);
        ++place;
        _tableOf[button] = table;
        _buttonOf[table] = button;
    }
    _inverseBox->setEnabled(false);
    grid->addWidget(_inverseBox, (place + Columns - 1) / Columns, 0);
    connect(_buttons, &QButtonGroup::buttonClicked, this, &ColorModeSelector::_buttonClickedSlot);
    connect(_inverseBox, &QCheckBox::toggled, this, &ColorModeSelector::_toggleInverse);
    connect(service, &TarvikService::newImageSignal, this, &ColorModeSelector::_newImageSlot);
    connect(service, &TarvikService::newContrastSignal, this, &ColorModeSelector::_setContrastSlot);
    _newImageSlot();
}

void ColorModeSelector::_newImageSlot()
{
    if (!_service->imageLoaded())
        return;
    for (QAbstractButton* button : _buttons->buttons())
        button->setEnabled(true);
    _inverseBox->setEnabled(true);
    _setContrastSlot(_service->contrastData());
}

void ColorModeSelector::_setContrastSlot(const ContrastData& contrast)
{
    const MColorTable* table = contrast.colorTable;
    if (table)
        _service->setDefaultColorTable(table);
    else
        table = _service->defaultColorTable();
    if (!table)
        return;  // nobody chose one yet
    {
        const QSignalBlocker quiet(_inverseBox);
        _inverseBox->setChecked(table->inverse());
    }
    const auto button = _buttonOf.find(table->inverse() ? table->inverseTable() : table);
    assert(button != _buttonOf.end());
    button->second->setChecked(true);
}

void ColorModeSelector::_buttonClickedSlot(QAbstractButton* button)
{
    const MColorTable* table = _tableOf.at(button);
    _setTable(_inverseBox->isChecked() ? table->inverseTable() : table);
}

void ColorModeSelector::_toggleInverse(bool)
{
    if (const MColorTable* table = _service->shownContrast().colorTable)
        _setTable(table->inverseTable());
}

void ColorModeSelector::_setTable(const MColorTable* table)
{
    ContrastData contrast = _service->contrastData();
    contrast.colorTable = table;
    _service->setContrastData(contrast);
}
