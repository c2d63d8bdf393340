// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/SideBarColumn.h"

#include "gui/kit/ScrollIntoSight.h"
#include "logic/support/GlobalStyle.h"

#include <QLayout>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>

namespace {

constexpr int ScrollBarWidth = 15;  // in the style
constexpr int SplitterWidth = 5;

const char* const AreaStyle = R"(
QScrollBar:vertical { width: 15px; margin: 15px 0px; background-color: rgb(40,40,40); }
QScrollBar:horizontal { height: 15px; margin: 0px 15px; background-color: rgb(40,40,40); }
QScrollBar::handle { background-color: rgb(110,110,110); min-height: 20px; min-width: 20px; }
QScrollBar::handle:hover { background-color: rgb(140,140,140); }
QScrollBar::add-page, QScrollBar::sub-page { background: none; }
QScrollBar::add-line:vertical { height: 15px; subcontrol-position: bottom; subcontrol-origin: margin; background-color: rgb(70,70,70); }
QScrollBar::sub-line:vertical { height: 15px; subcontrol-position: top; subcontrol-origin: margin; background-color: rgb(70,70,70); }
QScrollBar::add-line:horizontal { width: 15px; subcontrol-position: right; subcontrol-origin: margin; background-color: rgb(70,70,70); }
QScrollBar::sub-line:horizontal { width: 15px; subcontrol-position: left; subcontrol-origin: margin; background-color: rgb(70,70,70); }
)";

}  // namespace

SideBarColumn::SideBarColumn(QSplitter& splitter)
    : _splitter(splitter)
    , _sideBarScrollArea(new QScrollArea)
    , _sideBarStack(new QStackedWidget)
{
    _sideBarStack->setStyleSheet(
        QStringLiteral("background-color: %1;").arg(GLOBALSTYLE::sidebarColor.name()));
    _sideBarStack->layout()->setSizeConstraint(QLayout::SetMinAndMaxSize);
    // Titles are as wide as the stack: wider than what is visible, they would need a second bar.
    _sideBarStack->setMaximumWidth(MaximumWidth - ScrollBarWidth - SplitterWidth);
    _sideBarScrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    _sideBarScrollArea->setFrameShape(QFrame::NoFrame);
    _sideBarScrollArea->setWidgetResizable(true);
    _sideBarScrollArea->setMaximumWidth(MaximumWidth);
    _sideBarScrollArea->setStyleSheet(QString::fromLatin1(AreaStyle));
    _sideBarScrollArea->setWidget(_sideBarStack);
    _sideBarScrollArea->hide();
    _sideBarStack->hide();
    splitter.addWidget(_sideBarScrollArea);
}

void SideBarColumn::add(QWidget* panels) { _sideBarStack->addWidget(panels); }

void SideBarColumn::setCurrent(QWidget* panels) { _sideBarStack->setCurrentWidget(panels); }

bool SideBarColumn::visible() const { return !_sideBarScrollArea->isHidden(); }

int SideBarColumn::width() const { return _sideBarScrollArea->width(); }

void SideBarColumn::setVisible(bool visible, int width)
{
    if (visible)
        _splitter.setSizes({_splitter.width() - width, width});
    _sideBarScrollArea->setVisible(visible);
    _sideBarStack->setVisible(visible);
}

void SideBarColumn::ensureVisible(QWidget& part, int above)
{
    scrollIntoSight(*_sideBarScrollArea, part, above);
}
