// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/TitleBar.h"

#include "gui/kit/SvgIcon.h"
#include "gui/kit/TitleLabel.h"
#include "logic/support/GlobalStyle.h"

#include <QActionEvent>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace {

QColor lighter(const QColor& color)
{
    const auto raised = [](int part) { return std::min(part + 60, 255); };
    return {raised(color.red()), raised(color.green()), raised(color.blue())};
}

const char* const BackgroundStyle =
    "QWidget {background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1,stop: 0 %1, stop: 1 "
    "%2);}";

const char* const ItemStyle =
    "QPushButton {border: 1px; border-color: rgb(255,100,100); border-radius: "
    "0px;background-color: rgba(0,0,0,0);min-height: 25px; max-height: 25px; min-width: "
    "25px;}"
    "QPushButton:hover {background-color: rgba(255,255,255,50);}"
    "QPushButton:pressed {background-color: rgba(255,255,255,50);}"
    "QToolButton {border: none; border-color: rgb(255,100,100); border-radius: "
    "0px;background-color: rgba(0,0,0,0);min-height: 25px; max-height: 25px; min-width: "
    "25px;}"
    "QToolButton:hover {background-color: rgba(255,255,255,50);}"
    "QToolButton:pressed {background-color: rgba(255,255,255,50);}"
    "QComboBox{margin: 0px; border: 1px solid black;min-height: 20px; max-height: 20 px; "
    "min-width: 30px;background-color: transparent;}"
    "QComboBox::drop-down{border:none; }"
    "QComboBox::down-arrow{image: url(:icons/down.svg); width: 8px;}"
    "QComboBox QAbstractItemView { border: none; background-color: %3;}"
    "QLabel {font-family: %1; font-weight: bold; font-size: %2pt;}";

}  // namespace

TitleBar::TitleBar(QWidget* parent)
    : QWidget(parent)
    , _titleLabel(new TitleLabel(this))
    , _exitButton(new QPushButton(this))
    , _itemLayout(new QHBoxLayout)
{
    setAttribute(Qt::WA_StyledBackground);
    setFixedHeight(FixedHeight);
    _exitButton->setIcon(svgIcon(QStringLiteral(":icons/checked.svg"), QSize(10, 10)));
    _exitButton->setToolTip(QStringLiteral("Close this view"));
    _exitButton->setAccessibleName(QStringLiteral("Close View"));
    _exitButton->setFocusPolicy(Qt::NoFocus);
    _itemLayout->setContentsMargins(0, 0, 0, 0);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addSpacing(10);
    layout->addLayout(_itemLayout);
    layout->addWidget(_titleLabel);
    layout->addSpacing(10);
    layout->addWidget(_exitButton);
    _setStyleSheet(_nonActiveColor);
}

TitleBar::~TitleBar()
{
    // They go with the base class, after the list of them.
    for (QWidget* each : std::as_const(_titleWidgets))
        disconnect(each, nullptr, this, nullptr);
}

void TitleBar::setActiveColor(unsigned char red, unsigned char green, unsigned char blue)
{
    _activeColor = QColor(red, green, blue);
}

void TitleBar::setNonActiveColor(unsigned char red, unsigned char green, unsigned char blue)
{
    _nonActiveColor = QColor(red, green, blue);
}

void TitleBar::setActivated(bool activated)
{
    _activated = activated;
    _setStyleSheet(_activated ? _activeColor : _nonActiveColor);
}

void TitleBar::setTitle(const QString& title) { _titleLabel->setFullText(title); }

QString TitleBar::shownTitle() const { return _titleLabel->text(); }

void TitleBar::addWidget(QWidget* widget)
{
    _itemLayout->insertWidget(_itemCount++, widget, 0, Qt::AlignVCenter);
    _titleWidgets.append(widget);
    connect(widget, &QObject::destroyed, this,
            [this, widget] { _itemCount -= static_cast<int>(_titleWidgets.removeAll(widget)); });
}

void TitleBar::addSpacing(int pixels) { _itemLayout->insertSpacing(_itemCount++, pixels); }

QSize TitleBar::minimumSizeHint() const { return {0, QWidget::minimumSizeHint().height()}; }

void TitleBar::actionEvent(QActionEvent* event)
{
    QWidget::actionEvent(event);
    if (event->type() == QEvent::ActionRemoved)
        _removeAction(event->action());
    if (event->type() != QEvent::ActionAdded)
        return;
    auto* button = new QToolButton(this);
    button->setDefaultAction(event->action());
    button->setIconSize(QSize(25, 15));
    button->setFocusPolicy(Qt::NoFocus);
    addWidget(button);
    _titleActions.append(event->action());
}

void TitleBar::_removeAction(const QAction* action)
{
    const qsizetype place = _titleActions.indexOf(action);
    if (place < 0)
        return;
    _titleActions.removeAt(place);
    for (QWidget* each : QList<QWidget*>(_titleWidgets)) {
        auto* button = qobject_cast<QToolButton*>(each);
        if (!button || button->defaultAction() != action)
            continue;
        // Its click may be what removes the action.
        button->hide();
        _itemCount -= static_cast<int>(_titleWidgets.removeAll(each));
        _itemLayout->removeWidget(button);
        button->deleteLater();
    }
}

void TitleBar::_setStyleSheet(const QColor& background)
{
    setStyleSheet(
        QString::fromLatin1(BackgroundStyle).arg(lighter(background).name(), background.name()) +
        QString::fromLatin1(ItemStyle).arg(GLOBALSTYLE::fontFamily).arg(12).arg(background.name()));
}
