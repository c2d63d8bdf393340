// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/RangeChoice.h"

#include "logic/service/TarvikService.h"

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QMenu>
#include <QSignalBlocker>
#include <QToolButton>

RangeChoice::RangeChoice(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
    , _button(new QToolButton)
    , _ranges(new QActionGroup(this))
    , _parts(new QActionGroup(this))
    , _followBox(new QCheckBox(QStringLiteral("Follow")))
{
    // The window has sheets for the tool buttons of its bars.
    setStyleSheet(QStringLiteral(
        "QWidget {font-size: 10pt;}"
        "QToolButton {background-color: rgb(75,75,75); border: 1px solid rgb(110,110,110); "
        "border-radius: 2px; padding: 3px 20px 2px 6px; margin: 0px;}"
        "QToolButton:hover {background-color: rgb(95,95,95);}"
        "QToolButton:disabled {color: rgb(130,130,130);}"
        "QToolButton::menu-button {width: 14px; border: none; "
        "border-left: 1px solid rgb(110,110,110);}"));
    auto* menu = new QMenu(_button);
    _button->setMenu(menu);
    _button->setPopupMode(QToolButton::MenuButtonPopup);
    _button->setToolTip(QStringLiteral("Set the levels so that this part of the pixels lies "
                                       "between them"));
    _followBox->setToolTip(QStringLiteral("Do the same for each new image"));
    _add(_ranges, QStringLiteral("0.1 \u2013 99.9 %"), [](ContrastChoice& choice) {
        choice.range = {0.001, 0.999, false};
    });
    _add(_ranges, QStringLiteral("1 \u2013 99 %"), [](ContrastChoice& choice) {
        choice.range = {0.01, 0.99, false};
    });
    _add(_ranges, QStringLiteral("Mean \u00b1 3 \u03c3"), [](ContrastChoice& choice) {
        choice.range = {0, 1, true};
    });
    menu->addSeparator();
    _add(_parts, QStringLiteral("Of the Whole Image"),
         [](ContrastChoice& choice) { choice.partInView = false; });
    _add(_parts, QStringLiteral("Of the Part in View"),
         [](ContrastChoice& choice) { choice.partInView = true; });

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(5);
    row->addWidget(_button);
    row->addWidget(_followBox);
    connect(_button, &QToolButton::clicked, service, &TarvikService::chooseContrast);
    connect(_followBox, &QCheckBox::toggled, this, [this](bool on) {
        ContrastChoice choice = _service->contrastChoice();
        choice.follows = on;
        _service->setContrastChoice(choice);
        if (on)
            _service->chooseContrast();
    });
    connect(service, &TarvikService::contrastChoiceSignal, this, &RangeChoice::_show);
    _show();
}

QAction* RangeChoice::_add(QActionGroup* group, const QString& text, void (*apply)(ContrastChoice&))
{
    QAction* const action = _button->menu()->addAction(text);
    action->setCheckable(true);
    group->addAction(action);
    connect(action, &QAction::triggered, this, [this, apply] {
        ContrastChoice choice = _service->contrastChoice();
        apply(choice);
        _service->setContrastChoice(choice);
        _service->chooseContrast();
    });
    return action;
}

void RangeChoice::_show()
{
    const ContrastChoice choice = _service->contrastChoice();
    const int range = choice.range.sigma ? 2 : choice.range.low > 0.005 ? 1 : 0;
    _ranges->actions().at(range)->setChecked(true);
    _parts->actions().at(choice.partInView ? 1 : 0)->setChecked(true);
    _button->setText(_ranges->checkedAction()->text());
    const QSignalBlocker quiet(_followBox);
    _followBox->setChecked(choice.follows);
}
