// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/ContainerSideBar.h"

#include "gui/kit/ScrollIntoSight.h"
#include "gui/kit/SideBarTitle.h"

#include <QEvent>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

std::map<unsigned long long, std::set<QScrollBar*>> ContainerSideBar::_syncMap;

ContainerSideBar::ContainerSideBar(unsigned long long syncClass, QWidget* parent)
    : SideBar(syncClass, parent)
    , _layout(new QVBoxLayout(this))
{
    _layout->setContentsMargins(0, 0, 0, 0);
    _layout->setSpacing(0);
    auto* filler = new QWidget(this);
    filler->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    _layout->addWidget(filler);
}

ContainerSideBar::~ContainerSideBar()
{
    for (SideBar* sideBar : _sideBars) {
        disconnect(sideBar, nullptr, this, nullptr);
        sideBar->setParentSideBar(nullptr);
    }
    if (_scrollArea && !_scrollArea->parent())
        _scrollArea->deleteLater();  // nobody else knows it
}

void ContainerSideBar::addSideBar(SideBar* sideBar)
{
    if (ContainerSideBar* before = sideBar->parentSideBar()) {
        before->_removeSideBar(sideBar);
        disconnect(sideBar, nullptr, before, nullptr);
    }
    auto* title = new TitleWidget(sideBar, this);
    _sideBars.push_back(sideBar);
    _titleWidgets.push_back(title);
    sideBar->setParentSideBar(this);
    sideBar->setLevel(level() + 1);
    connect(sideBar, &SideBar::titleChangedSignal, title, &TitleWidget::refresh);
    connect(sideBar, &SideBar::ensureVisibleSignal, this,
            qOverload<SideBar*>(&ContainerSideBar::ensureVisible));
    connect(sideBar, &QObject::destroyed, this, [this, sideBar] { _removeSideBar(sideBar); });
    _layout->insertWidget(_layout->count() - 1, title);
    _layout->insertWidget(_layout->count() - 1, sideBar);
    title->show();
    sideBar->setVisible(sideBar->visible());
}

void ContainerSideBar::setLevel(unsigned int level)
{
    SideBar::setLevel(level);
    // What is left below the panels belongs to the root's filler.
    setSizePolicy(QSizePolicy::Preferred,
                  level > 0 ? QSizePolicy::Maximum : QSizePolicy::Preferred);
    for (SideBar* sideBar : _sideBars)
        sideBar->setLevel(level + 1);
}

void ContainerSideBar::ensureVisible(SideBar* sideBar)
{
    ContainerSideBar* root = this;
    while (!root->_scrollArea && root->parentSideBar())
        root = root->parentSideBar();
    if (root->_scrollArea)
        scrollIntoSight(*root->_scrollArea, *sideBar, sideBar->titleHeight());
}

QScrollArea* ContainerSideBar::scrollArea()
{
    if (_scrollArea)
        return _scrollArea;
    _scrollArea = new QScrollArea;
    _scrollArea->setFrameShape(QFrame::NoFrame);
    _scrollArea->setWidgetResizable(true);
    _scrollArea->setMaximumWidth(maxSideBarWidth);
    _scrollArea->setWidget(this);
    _scrollArea->viewport()->installEventFilter(this);
    _layout->setSizeConstraint(QLayout::SetMinAndMaxSize);
    _linkScrollBar(syncClass(), _scrollArea->verticalScrollBar());
    show();
    return _scrollArea;
}

void ContainerSideBar::toggleVisible(bool on)
{
    const QPointer<ContainerSideBar> self(this);
    SideBar::toggleVisible(on);
    if (!self)
        return;
    for (TitleWidget* title : _titleWidgets)
        title->show();
}

bool ContainerSideBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        _updateTitleWidths();
    return SideBar::eventFilter(watched, event);
}

void ContainerSideBar::resizeEvent(QResizeEvent* event)
{
    SideBar::resizeEvent(event);
    for (SideBar* sideBar : _sideBars) {
        if (auto* container = qobject_cast<ContainerSideBar*>(sideBar))
            container->_updateTitleWidths();
    }
}

void ContainerSideBar::_removeSideBar(SideBar* sideBar)
{
    const auto place = std::find(_sideBars.begin(), _sideBars.end(), sideBar);
    if (place == _sideBars.end())
        return;
    const auto title = _titleWidgets.begin() + (place - _sideBars.begin());
    // The press of a title may be what deletes its panel.
    (*title)->hide();
    (*title)->deleteLater();
    _titleWidgets.erase(title);
    _sideBars.erase(place);
}

void ContainerSideBar::_updateTitleWidths()
{
    for (TitleWidget* title : _titleWidgets)
        title->updateGeometry();
}

void ContainerSideBar::_linkScrollBar(unsigned long long syncClass, QScrollBar* bar)
{
    _syncMap[syncClass].insert(bar);
    connect(bar, &QObject::destroyed, [syncClass, bar] {
        const auto bars = _syncMap.find(syncClass);
        bars->second.erase(bar);
        if (bars->second.empty())
            _syncMap.erase(bars);
    });
    connect(bar, &QScrollBar::valueChanged, [syncClass, bar](int value) {
        // A shorter column can not follow to the end, and must not pull the others back.
        static bool following = false;
        if (following)
            return;
        const QScopedValueRollback<bool> noEcho(following, true);
        for (QScrollBar* other : std::set<QScrollBar*>(_syncMap[syncClass])) {
            if (other != bar)
                other->setValue(value);
        }
    });
}
