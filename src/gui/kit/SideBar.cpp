// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/SideBar.h"

#include "gui/kit/CalmWheel.h"
#include "logic/support/GlobalStyle.h"

#include <QPointer>
#include <QScopedValueRollback>

std::map<unsigned long long, std::set<SideBar*>> SideBar::_syncMap;
std::map<unsigned long long, bool> SideBar::_globalVisibleMap;
std::map<unsigned long long, bool> SideBar::_defaultVisibleMap;
bool SideBar::_emitSignal = true;

namespace {

/// Light text on the ground of the column. A tooltip, a window of its own, would have no ground.
const QString& panelStyle()
{
    static const QString style =
        QStringLiteral(
            "QWidget {background-color: transparent; color: rgb(%3,%3,%3); "
            "font-family: %1; font-size: %2pt;}"
            "QToolTip {background-color: rgb(40,40,40); border: 1px solid "
            "rgb(90,90,90);}"
            "QSpinBox, QDoubleSpinBox {background-color: white; color: black; "
            "height: 25px;}"
            "QCheckBox {background-color: transparent;}"
            "QLineEdit {background-color: rgb(40,40,40); border: 1px solid "
            "rgb(100,100,100); padding: 1px 2px;}"
            "QComboBox {background-color: rgb(75,75,75); border: 1px solid "
            "rgb(100,100,100); min-height: 22px; padding-left: 4px;}"
            "QComboBox::drop-down {border: none;}"
            "QComboBox::down-arrow {image: url(:icons/down.svg); width: 8px;}"
            "QComboBox QAbstractItemView {background-color: rgb(60,60,60); "
            "border: none;}"
            "QCheckBox::indicator, QRadioButton::indicator {width: 12px; height: 12px; "
            "border: 1px solid rgb(150,150,150); background-color: rgb(40,40,40);}"
            "QRadioButton::indicator {border-radius: 6px;}"
            "QCheckBox::indicator:checked {image: url(:icons/tick.svg);}"
            "QRadioButton::indicator:checked {background-color: rgb(232,232,232);}"
            "QCheckBox::indicator:disabled, QRadioButton::indicator:disabled "
            "{border-color: rgb(100,100,100);}"
            "QPushButton {background-color: rgb(75,75,75); border: 1px solid "
            "rgb(100,100,100); border-radius: 2px; padding: 3px 8px;}"
            "QPushButton:hover {background-color: rgb(90,90,90);}"
            "QPushButton:pressed, QPushButton:checked "
            "{background-color: rgb(20,100,220);}"
            "QPushButton:focus, QLineEdit:focus, QComboBox:focus {border-color: rgb(20,100,220);}"
            "QLineEdit:disabled, QComboBox:disabled, QPushButton:disabled, QLabel:disabled, "
            "QCheckBox:disabled {color: rgb(130,130,130);}"
            "QSpinBox:disabled, QDoubleSpinBox:disabled {background-color: "
            "rgb(130,130,130);}")
            .arg(GLOBALSTYLE::fontFamily)
            .arg(12)
            .arg(232);
    return style;
}

}  // namespace

SideBar::SideBar(unsigned long long syncClass, QWidget* parent)
    : QWidget(parent)
    , _syncClass(syncClass)
{
    setAutoFillBackground(false);
    setStyleSheet(panelStyle());
    setMaximumWidth(maxSideBarWidth);
    hide();
    std::set<SideBar*>& others = _syncMap[syncClass];
    for (SideBar* other : others) {
        connect(this, &SideBar::toggledVisible, other, &SideBar::toggleVisible);
        connect(other, &SideBar::toggledVisible, this, &SideBar::toggleVisible);
    }
    others.insert(this);
    const auto start = _defaultVisibleMap.find(syncClass);
    _globalVisibleMap.try_emplace(syncClass, start != _defaultVisibleMap.end() && start->second);
}

SideBar::~SideBar()
{
    const auto others = _syncMap.find(_syncClass);
    others->second.erase(this);
    if (others->second.empty())
        _syncMap.erase(others);
}

void SideBar::setTitle(const QString& title)
{
    _title = title;
    emit titleChangedSignal();
}

void SideBar::setInfoText(const QString& infoText)
{
    _infoText = infoText;
    emit titleChangedSignal();
}

void SideBar::setLevel(unsigned int level)
{
    _level = level;
    emit titleChangedSignal();
}

int SideBar::titleHeight() const { return _level == 0 ? 0 : _level == 1 ? 30 : 25; }

bool SideBar::visible() const { return _globalVisibleMap.at(_syncClass); }

void SideBar::setDefaultVisibility(unsigned long long syncClass, bool visible)
{
    _defaultVisibleMap[syncClass] = visible;
}

void SideBar::ensureVisible() { emit ensureVisibleSignal(this); }

void SideBar::ensureVisible(QWidget& part) { emit ensurePartVisibleSignal(&part); }

void SideBar::showEvent(QShowEvent* event)
{
    calmWheel(*this);
    QWidget::showEvent(event);
}

void SideBar::toggleVisible(bool on)
{
    // The panel's own state: the one of the key changes before the other panels follow.
    if (_level == 0 || on != isHidden())
        return;
    const QPointer<SideBar> self(this);
    const unsigned long long key = _syncClass;
    setVisible(on);
    if (on)
        emit gotVisbile(this);
    if (!_emitSignal)
        return;
    // Any receiver may delete this panel.
    const QScopedValueRollback<bool> noEcho(_emitSignal, false);
    _globalVisibleMap[key] = on;
    if (self)
        emit toggledVisible(on);
}
