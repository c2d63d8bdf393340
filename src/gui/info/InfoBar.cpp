// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/InfoBar.h"

#include "gui/info/FieldEdit.h"
#include "logic/service/TarvikService.h"

#include <QEvent>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

InfoBar::InfoBar(unsigned long long syncClass, TarvikService* service)
    : SideBar(syncClass)
    , _service(service)
    , _text(new FieldEdit)
    , _layout(new QVBoxLayout(this))
{
    // Numbers are written with a point.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    _layout->addWidget(_text);
    connect(_text, &FieldEdit::documentSizeChanged, this, &InfoBar::_resizeTextEdit);
    connect(service, &TarvikService::newImageSignal, this, &InfoBar::_newImageSlot);
    connect(service, &TarvikService::headerChangedSignal, this, &InfoBar::_newImageSlot);
}

void InfoBar::clearText() { _text->clear(); }

void InfoBar::addLine(const QString& key, const QString& value)
{
    _text->append(key + ": " + value);
}

void InfoBar::addHeader(const QString& text) { _text->appendHeader(text); }

int InfoBar::addEditLine(const QString& text) { return _text->appendEditLine(text); }

void InfoBar::addEditLine(const QString& text, int& first, int& second)
{
    _text->appendEditLine(text, first, second);
}

void InfoBar::addEmptyLine() { _text->append({}); }

void InfoBar::addText(const QString& text) { _text->append(text); }

bool InfoBar::getValue(int index, double& value) const { return _text->getValue(index, value); }

void InfoBar::addButtons()
{
    auto* row = new QHBoxLayout;
    auto* lower = new QHBoxLayout;
    const auto add = [this](QHBoxLayout* place, const char* text, const char* tip, auto signal) {
        auto* button = new QPushButton(QString::fromLatin1(text));
        button->setToolTip(QString::fromLatin1(tip));
        button->setMaximumHeight(20);
        // As high as the others of the column would be, they would be cut off.
        button->setStyleSheet(QStringLiteral("QPushButton {padding: 0px 6px;}"));
        connect(button, &QPushButton::clicked, this, signal);
        place->addWidget(button);
        return button;
    };
    _reset = add(row, "Reset", "Reset values to their current states", &InfoBar::clickedReset);
    _apply = add(row, "Apply", "Apply changes to current file", &InfoBar::clickedApply);
    _writeToAll = add(row, "Write To All",
                      "Write changes to all image headers. This may take some time...\n"
                      "This feature is only available for cbf files.",
                      &InfoBar::clickedWriteToAll);
    add(lower, "Undo Last Write",
        "Put back the header lines that the last write to files replaced, whichever series it was.",
        &InfoBar::clickedUndo);
    _layout->addLayout(row);
    _layout->addLayout(lower);
    _hasButtons = true;
}

void InfoBar::enableResetButton(bool enabled) { _reset->setEnabled(enabled); }

void InfoBar::enableApplyButton(bool enabled) { _apply->setEnabled(enabled); }

void InfoBar::enableWriteToAllButton(bool enabled) { _writeToAll->setEnabled(enabled); }

void InfoBar::_resizeTextEdit(QSizeF size)
{
    const int height = int(std::ceil(std::min(size.height(), 1e6)));
    _text->setMinimumHeight(height + 10);
    setMinimumHeight(height + 30 + (_hasButtons ? 2 * 20 + _layout->spacing() : 0));
}

void InfoBar::refresh()
{
    _outdated = isHidden();
    if (_outdated)
        return;
    clearText();
    setText();
}

void InfoBar::changeEvent(QEvent* event)
{
    SideBar::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        refresh();
}

void InfoBar::showEvent(QShowEvent* event)
{
    SideBar::showEvent(event);
    if (_outdated)
        refresh();
}
