// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/ToolBarStyle.h"

#include "logic/support/GlobalStyle.h"

namespace {

// %1 point size, %2 font family, %3 grey of the text, %4 top and %8 bottom of the gradient, %5 its
// top on hover, %6 when pressed, %7 grey of checked or selected items.
const char* const style = R"(
QToolBar {
    color: white; spacing: 0px; border: none; min-height: 30px; max-height: 30px;
    background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1,
        stop: 0 rgb(%4,%4,%4), stop: 1 rgb(%8,%8,%8));
}
QToolBar::separator {
    margin: 5px; width: 5px;
    background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1,
        stop: 0 rgb(%4,%4,%4), stop: 1 rgb(%8,%8,%8));
}
QToolButton {
    border: 1px; border-radius: 0px; color: rgb(%3,%3,%3); font-size: %1pt; font-family: %2;
    min-height: 30px; max-height: 30px; min-width: 15px; padding: 0px 8px;
    background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1,
        stop: 0 rgb(%4,%4,%4), stop: 1 rgb(%8,%8,%8));
}
QToolButton:disabled { color: rgb(110,110,110); }
QToolButton:hover {
    background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1,
        stop: 0 rgb(%5,%5,%5), stop: 1 rgb(%8,%8,%8));
}
QToolButton:pressed {
    background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1,
        stop: 0 rgb(%6,%6,%6), stop: 1 rgb(%8,%8,%8));
}
QToolButton:checked { color: white; font-weight: bold; background-color: rgb(%7,%7,%7); }
QToolButton[popupMode="1"], QToolButton[popupMode="2"] { padding-right: 22px; }
QToolButton::menu-indicator {
    image: url(:icons/down.svg); width: 8px; subcontrol-position: right center; right: 6px;
}
QToolButton::menu-button { border: none; width: 18px; }
QToolButton::menu-button:hover { background-color: rgba(255,255,255,40); }
QToolButton::menu-arrow { image: url(:icons/down.svg); width: 8px; }
QCheckBox {
    background-color: transparent; color: rgb(%3,%3,%3); font-size: %1pt; font-family: %2;
    margin-left: 10px; margin-right: 10px;
}
QCheckBox::indicator {
    width: 10px; height: 10px; margin-top: 2px; background-color: rgba(220,220,220,255);
}
QCheckBox::indicator:disabled { background-color: rgba(100,100,100,255); }
QCheckBox::indicator:checked { image: url(:icons/checkedWhiteBackground.svg); }
QMenu {
    background-color: rgb(%8,%8,%8); color: rgb(%3,%3,%3); font-size: %1pt; font-family: %2;
}
QMenu::item:selected { background-color: rgba(%7,%7,%7,100); }
)";

}  // namespace

QString toolBarStyle()
{
    static const QString sheet = QString::fromLatin1(style)
                                     .arg(14)
                                     .arg(GLOBALSTYLE::fontFamily)
                                     .arg(232)
                                     .arg(60)
                                     .arg(80)
                                     .arg(80)
                                     .arg(70)
                                     .arg(0);
    return sheet;
}
