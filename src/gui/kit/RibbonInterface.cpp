// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/RibbonInterface.h"

RibbonInterface::RibbonInterface(QWidget* parent)
    : QWidget(parent)
    , _layout(new QStackedLayout(this))
    , _actionGroup(new QActionGroup(this))
{
    _layout->setContentsMargins(0, 0, 0, 0);
    _layout->setSpacing(0);
    _actionGroup->setExclusive(true);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
    connect(_actionGroup, &QActionGroup::triggered, this,
            qOverload<QAction*>(&RibbonInterface::show));
}

QAction* RibbonInterface::addToolBar(const QString& name)
{
    auto* bar = new QToolBar(name);
    bar->setFloatable(false);
    bar->setMovable(false);
    _toolBars[name] = bar;
    _layout->addWidget(bar);

    auto* action = new QAction(name, this);
    action->setCheckable(true);
    action->setChecked(_actionToolBars.empty());
    _actionGroup->addAction(action);
    _actionToolBars[action] = bar;
    return action;
}

void RibbonInterface::addAction(const QString& name, QAction* action)
{
    if (QToolBar* bar = toolBar(name))
        bar->addAction(action);
}

void RibbonInterface::addWidget(const QString& name, QWidget* widget)
{
    if (QToolBar* bar = toolBar(name))
        bar->addWidget(widget);
}

void RibbonInterface::addSeparator(const QString& name)
{
    if (QToolBar* bar = toolBar(name))
        bar->addSeparator();
}

void RibbonInterface::clear()
{
    for (const auto& [action, bar] : _actionToolBars) {
        _layout->removeWidget(bar);
        bar->clear();
        bar->deleteLater();
        _actionGroup->removeAction(action);
        action->deleteLater();
    }
    _toolBars.clear();
    _actionToolBars.clear();
}

void RibbonInterface::show(const QString& name)
{
    for (const auto& [action, bar] : _actionToolBars) {
        if (bar == toolBar(name))
            action->trigger();
    }
}

void RibbonInterface::show(QAction* action)
{
    const auto entry = _actionToolBars.find(action);
    if (entry != _actionToolBars.end())
        _layout->setCurrentWidget(entry->second);
}

QToolBar* RibbonInterface::toolBar(const QString& name) const
{
    const auto entry = _toolBars.find(name);
    return entry == _toolBars.end() ? nullptr : entry->second;
}

QSize RibbonInterface::sizeHint() const
{
    const QWidget* bar = _layout->currentWidget();
    return bar ? bar->sizeHint() : QSize(-1, -1);
}
