// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/SubWindowTitleBar.h"

#include "gui/kit/AbstractSubWindow.h"
#include "gui/kit/SvgIcon.h"

namespace {

QAction* stepAction(const QString& text, const QString& tip, const QString& icon, QObject* parent)
{
    auto* action = new QAction(svgIcon(icon, QSize(25, 15)), text, parent);
    action->setToolTip(tip);
    return action;
}

}  // namespace

SubWindowTitleBar::SubWindowTitleBar(AbstractSubWindow& frame)
    : QObject(&frame)
    , _stepBox(new QComboBox)
    , _previousAction(stepAction(QStringLiteral("Previous"),
                                 QStringLiteral("Go back within the present image series"),
                                 QStringLiteral(":icons/previous.svg"), this))
    , _nextAction(stepAction(QStringLiteral("Next"),
                             QStringLiteral("Go forward within the present image series"),
                             QStringLiteral(":icons/next.svg"), this))
{
    for (const int step : {1, 5, 10, 20, 50, 100})
        _stepBox->addItem(QString::number(step), step);
    _stepBox->setToolTip(QStringLiteral("Set the number of images to step forward or back. This "
                                        "also affects the movie mode"));
    frame.addTitleBarWidget(_stepBox);
    frame.addTitleBarAction(_previousAction);
    frame.addTitleBarAction(_nextAction);
    setImageLoaded(false);
}

int SubWindowTitleBar::step() const { return _stepBox->currentData().toInt(); }

void SubWindowTitleBar::setImageLoaded(bool loaded)
{
    _previousAction->setEnabled(loaded);
    _nextAction->setEnabled(loaded);
}
