// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/GotoWidget.h"

#include "logic/service/TarvikService.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSlider>
#include <QSpinBox>

namespace {

template <class Control>
void setRange(Control& control, int first, int last)
{
    if (control.minimum() != first || control.maximum() != last)
        control.setRange(first, last);
}

template <class Control>
void setValue(Control& control, int value)
{
    if (control.value() != value)
        control.setValue(value);
}

}  // namespace

GotoWidget::GotoWidget(TarvikService* service, QWidget* parent)
    : QWidget(parent)
    , _service(service)
    , _slider(new QSlider(Qt::Horizontal))
    , _box(new QSpinBox)
    , _loadButton(new QPushButton(QStringLiteral("Load File")))
{
    auto* cancelButton = new QPushButton(QStringLiteral("Cancel"));
    _loadButton->setDefault(true);
    setAttribute(Qt::WA_StyledBackground);
    // The title bar, in which the button stands, would colour all of it.
    setStyleSheet(QStringLiteral(
        "QWidget {background-color: rgb(60,60,60); color: rgb(232,232,232);}"
        "QPushButton {background-color: rgb(75,75,75); border: 1px solid rgb(110,110,110); "
        "min-width: 70px; padding: 0px 8px;}"
        "QPushButton:default {border-color: rgb(20,100,220);}"
        "QPushButton:hover {background-color: rgb(95,95,95);}"
        "QSpinBox {background-color: white; color: black; min-height: 22px; min-width: 70px;}"));
    _slider->setMinimumWidth(150);
    auto* grid = new QGridLayout(this);
    grid->addWidget(_slider, 0, 0);
    grid->addWidget(_box, 0, 1);
    grid->addWidget(_loadButton, 1, 0);
    grid->addWidget(cancelButton, 1, 1);
    setFocusProxy(_box);
    connect(_slider, &QSlider::valueChanged, _box, &QSpinBox::setValue);
    connect(_box, &QSpinBox::valueChanged, _slider, &QSlider::setValue);
    const auto choose = [this] { _chosen = _chosen || !_updating; };
    connect(_slider, &QSlider::valueChanged, this, choose);
    connect(_box, &QSpinBox::valueChanged, this, choose);
    connect(_box->findChild<QLineEdit*>(), &QLineEdit::textEdited, this, choose);
    connect(_loadButton, &QPushButton::clicked, this, &GotoWidget::_load);
    connect(cancelButton, &QPushButton::clicked, this, &GotoWidget::cancel);
    connect(service, &TarvikService::newImageSignal, this, &GotoWidget::_update);
    connect(service, &TarvikService::imageContainerChangedSignal, this, &GotoWidget::_update);
    _update();
}

void GotoWidget::_update()
{
    const int first = _service->firstIndex();
    const int last = _service->lastIndex();
    const QScopedValueRollback updating(_updating, true);
    setRange(*_slider, first, last);
    setRange(*_box, first, last);
    if (_chosen)
        return;
    const auto* text = _box->findChild<QLineEdit*>();
    const bool selected = text->hasSelectedText();
    setValue(*_slider, _service->imageIndex());
    setValue(*_box, _service->imageIndex());
    if (selected)
        _box->selectAll();
}

void GotoWidget::_follow()
{
    _chosen = false;
    _update();
}

void GotoWidget::_load()
{
    _service->openImage(_box->value());
    emit loadFile();
}

void GotoWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        _loadButton->click();
    QWidget::keyPressEvent(event);
}

void GotoWidget::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!isVisible())
        return;
    _follow();
    _service->scanImageContainer();
    _box->selectAll();  // a number that is typed takes the place of the old one
}

void GotoWidget::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    _follow();
}
