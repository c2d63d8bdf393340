// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/MdiSplitter.h"

#include "gui/kit/MdiSplitterHandle.h"

MdiSplitter::MdiSplitter(Qt::Orientation orientation, QWidget* parent)
    : QSplitter(orientation, parent)
{
    setHandleWidth(2);
    setChildrenCollapsible(false);
    setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
}

QSplitterHandle* MdiSplitter::createHandle() { return new MdiSplitterHandle(orientation(), this); }
