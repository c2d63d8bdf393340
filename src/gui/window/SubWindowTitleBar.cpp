// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/SubWindowTitleBar.h"

#include "gui/kit/AbstractSubWindow.h"
#include "gui/kit/SvgIcon.h"
#include "gui/panels/FastContrastControl.h"
#include "gui/panels/GotoButton.h"

#include <QSignalBlocker>

namespace {

constexpr QSize IconSize(25, 15);

QAction* stepAction(const QString& text, const QString& tip, const QString& icon, QObject* parent)
{
    auto* action = new QAction(svgIcon(icon, IconSize), text, parent);
    action->setToolTip(tip);
    return action;
}

}  // namespace

SubWindowTitleBar::SubWindowTitleBar(AbstractSubWindow& frame, TarvikService* service)
    : QObject(&frame)
    , _stepBox(new QComboBox)
    , _previousAction(stepAction(QStringLiteral("Previous"),
                                 QStringLiteral("Go back within the present image series"),
                                 QStringLiteral(":icons/previous.svg"), this))
    , _nextAction(stepAction(QStringLiteral("Next"),
                             QStringLiteral("Go forward within the present image series"),
                             QStringLiteral(":icons/next.svg"), this))
    , _movieAction(new QAction(QStringLiteral("Movie"), this))
    , _gotoButton(new GotoButton(service, frame.titleBar()))
    , _fastContrast(new FastContrastControl(&frame, service))
    , _continueIcon(svgIcon(QStringLiteral(":icons/continue.svg"), IconSize))
    , _interruptIcon(svgIcon(QStringLiteral(":icons/interrupt.svg"), IconSize))
{
    for (const int step : {1, 5, 10, 20, 50, 100})
        _stepBox->addItem(QString::number(step), step);
    _stepBox->setToolTip(QStringLiteral("Set the number of images to step forward or back. This "
                                        "also affects the movie mode"));
    // A click leaves the keyboard to the view, whose keys would be typed into the box otherwise.
    _stepBox->setFocusPolicy(Qt::TabFocus);
    _movieAction->setToolTip(QStringLiteral("Start/Stop Movie Mode"));
    _movieAction->setCheckable(true);
    frame.addTitleBarWidget(_stepBox);
    for (QAction* action : {_previousAction, _nextAction, _movieAction})
        frame.addTitleBarAction(action);
    frame.addTitleBarSpacing(10);
    _gotoButton->setFocusPolicy(Qt::NoFocus);
    frame.addTitleBarWidget(_gotoButton);
    frame.addTitleBarAction(_fastContrast->action());
    setMovie(false);
    setImageLoaded(false);
}

void SubWindowTitleBar::setImageLoaded(bool loaded)
{
    for (QAction* action : {_previousAction, _nextAction, _movieAction})
        action->setEnabled(loaded);
    _gotoButton->setEnabled(loaded);
    _fastContrast->action()->setEnabled(loaded);
}

void SubWindowTitleBar::setMovie(bool playing)
{
    const QSignalBlocker quiet(_movieAction);
    _movieAction->setChecked(playing);
    _movieAction->setIcon(playing ? _interruptIcon : _continueIcon);
}
