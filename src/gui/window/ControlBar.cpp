// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/ControlBar.h"

#include "gui/kit/PopupButton.h"
#include "gui/kit/RibbonInterface.h"
#include "gui/kit/SvgWidget.h"
#include "gui/kit/ToolBarOverflow.h"
#include "gui/window/MainWindowActions.h"
#include "gui/window/RecentFiles.h"
#include "gui/window/ToolBarStyle.h"
#include "gui/window/ViewActions.h"

#include <QHBoxLayout>
#include <QMainWindow>
#include <QToolBar>
#include <QToolButton>

namespace {

const QString File = QStringLiteral("File");
const QString Synchronize = QStringLiteral("Synchronize");
const QString AutoLoad = QStringLiteral("Auto Load");
const QString Help = QStringLiteral("Help");

/// Fills the free space in a tool bar, or takes a given width.
QWidget* spacer(int minimumWidth, QSizePolicy::Policy policy)
{
    auto* widget = new QWidget;
    widget->setMinimumWidth(minimumWidth);
    widget->setSizePolicy(policy, QSizePolicy::Preferred);
    return widget;
}

QToolBar* toolBar(const QString& title)
{
    auto* bar = new QToolBar(title);
    bar->setFloatable(false);
    bar->setMovable(false);
    bar->setStyleSheet(toolBarStyle());
    return bar;
}

/// Gives buttons room for their texts, in bold where they may be checked: nothing moves when one
/// is, and a bar that is too narrow moves whole buttons into its menu.
void reserveTexts(const QWidget& bars)
{
    for (QToolButton* button : bars.findChildren<QToolButton*>()) {
        if (!button->icon().isNull()) {
            button->setStyleSheet(QStringLiteral("QToolButton { padding: 0px 4px; }"));
            continue;
        }
        if (button->text().isEmpty())
            continue;
        button->ensurePolished();
        QFont font = button->font();
        font.setBold(button->isCheckable());
        button->setStyleSheet(QStringLiteral("QToolButton { min-width: %1px; }")
                                  .arg(QFontMetrics(font).horizontalAdvance(button->text())));
    }
}

}  // namespace

ControlBar::ControlBar(QMainWindow& window, const MainWindowActions& actions,
                       const ViewActions& viewActions)
    : _controlBar(toolBar(QStringLiteral("Control Bar")))
    , _row(new QWidget)
    , _ribbon(new RibbonInterface)
    , _rightToolBar(toolBar(QStringLiteral("View Bar")))
{
    window.addToolBar(_controlBar);
    for (const QString& tab : {File, Synchronize, AutoLoad, Help})
        _controlBar->addAction(_ribbon->addToolBar(tab));
    _ribbon->setStyleSheet(toolBarStyle());
    _fillRibbon(actions);

    _controlBar->addSeparator();
    _controlBar->addWidget(spacer(0, QSizePolicy::Expanding));
    auto* logo = new SvgWidget(QStringLiteral(":icons/morvend_logo.svg"));
    logo->setHeight(15);
    logo->setFixedWidth(logo->sizeHint().width());
    _controlBar->addWidget(logo);
    _controlBar->addWidget(spacer(10, QSizePolicy::Fixed));

    _rightToolBar->addWidget(spacer(0, QSizePolicy::Expanding));
    for (QAction* action :
         {viewActions.fitAction(), viewActions.oneToOneAction(), viewActions.copyPictureAction()})
        _rightToolBar->addAction(action);
    _rightToolBar->addAction(actions.keys);
    _rightToolBar->addAction(actions.tools);
    _rightToolBar->addWidget(spacer(10, QSizePolicy::Fixed));

    auto* row = new QHBoxLayout(_row);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(_ribbon);
    row->addWidget(_rightToolBar);
    // In a narrow window the ribbon gives way, the controls of the view stay.
    _ribbon->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    _ribbon->setMinimumWidth(60);
    _rightToolBar->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
    reserveTexts(*_controlBar);
    reserveTexts(*_row);
    new ToolBarOverflow(*_controlBar);
    for (QToolBar* bar : _row->findChildren<QToolBar*>())
        new ToolBarOverflow(*bar);
}

void ControlBar::setVisible(bool visible)
{
    _controlBar->setVisible(visible);
    _row->setVisible(visible);
}

void ControlBar::_fillRibbon(const MainWindowActions& actions)
{
    _ribbon->addAction(File, actions.newWindow);
    _ribbon->addAction(File, actions.open);
    _ribbon->addAction(File, actions.saveAs);
    _ribbon->addAction(File, actions.exportPicture);
    _ribbon->addSeparator(File);
    auto* recent = new QToolButton;
    recent->setText(actions.recent->title());
    recent->setToolTip(actions.recent->toolTip());
    recent->setMenu(actions.recent);
    recent->setPopupMode(QToolButton::InstantPopup);
    _ribbon->addWidget(File, recent);
    _ribbon->addAction(File, actions.reopen);

    for (QCheckBox* box : {actions.syncViewport, actions.syncContrast, actions.syncStatistics})
        _ribbon->addWidget(Synchronize, box);

    _ribbon->addAction(AutoLoad, actions.movie);
    _ribbon->addAction(AutoLoad, actions.watch);
    _ribbon->addWidget(AutoLoad, actions.monitor);

    _ribbon->addAction(Help, actions.help);
    _ribbon->addAction(Help, actions.about);
    _ribbon->addAction(Help, actions.shortcuts);
}
