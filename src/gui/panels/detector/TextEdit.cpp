// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/TextEdit.h"

#include "gui/kit/SideBar.h"
#include "gui/panels/detector/InfoField.h"

TextEdit::TextEdit(const QString& help, InfoField* info, QWidget* parent)
    : DelayedLineEdit(Delay, parent)
    , _info(info)
{
    setToolTip(help);
    connect(this, &QLineEdit::textEdited, _info, &InfoField::clearReport);
}

QSize TextEdit::sizeHint() const
{
    return {SideBar::maxSideBarWidth, DelayedLineEdit::sizeHint().height()};
}

void TextEdit::focusInEvent(QFocusEvent* event)
{
    _info->clearReport();
    DelayedLineEdit::focusInEvent(event);
}
