// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/ControlBar.h"

#include "gui/kit/PopupButton.h"
#include "gui/kit/RibbonInterface.h"
#include "gui/kit/SvgWidget.h"
#include "gui/window/MainWindowActions.h"
#include "gui/window/ToolBarStyle.h"

#include <QHBoxLayout>
#include <QMainWindow>
#include <QToolBar>
#include <QToolButton>

namespace {

const QString file = QStringLiteral("File");
const QString synchronize = QStringLiteral("Synchronize");
const QString autoLoad = QStringLiteral("Auto Load");
const QString help = QStringLiteral("Help");

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

/// Room for the bold text of checked buttons, so that nothing moves when one is checked.
void reserveBold(const QWidget& bars)
{
    for (QToolButton* button : bars.findChildren<QToolButton*>()) {
        if (!button->isCheckable())
            continue;
        button->ensurePolished();
        QFont bold = button->font();
        bold.setBold(true);
        button->setStyleSheet(QStringLiteral("QToolButton { min-width: %1px; }")
                                  .arg(QFontMetrics(bold).horizontalAdvance(button->text())));
    }
}

}  // namespace

ControlBar::ControlBar(QMainWindow& window, const MainWindowActions& actions)
    : _controlBar(toolBar(QStringLiteral("Control Bar")))
    , _row(new QWidget)
    , _ribbon(new RibbonInterface)
    , _rightToolBar(toolBar(QStringLiteral("View Bar")))
{
    window.addToolBar(_controlBar);
    for (const QString& tab : {file, synchronize, autoLoad, help})
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
    _rightToolBar->addAction(actions.keys);
    _rightToolBar->addAction(actions.tools);
    _rightToolBar->addWidget(spacer(10, QSizePolicy::Fixed));

    auto* row = new QHBoxLayout(_row);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(_ribbon);
    row->addWidget(_rightToolBar);
    reserveBold(*_controlBar);
    reserveBold(*_row);
}

void ControlBar::setVisible(bool visible)
{
    _controlBar->setVisible(visible);
    _row->setVisible(visible);
}

void ControlBar::_fillRibbon(const MainWindowActions& actions)
{
    _ribbon->addAction(file, actions.newWindow);
    _ribbon->addAction(file, actions.open);
    _ribbon->addAction(file, actions.saveAs);
    _ribbon->addAction(file, actions.exportPicture);
    _ribbon->addSeparator(file);

    for (QCheckBox* box : {actions.syncViewport, actions.syncContrast, actions.syncStatistics})
        _ribbon->addWidget(synchronize, box);

    _ribbon->addAction(autoLoad, actions.movie);
    _ribbon->addAction(autoLoad, actions.watch);
    _ribbon->addWidget(autoLoad, actions.monitor);

    _ribbon->addAction(help, actions.help);
    _ribbon->addAction(help, actions.about);
}
