// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/LoadOutcome.h"

#include "gui/window/SubWindow.h"
#include "logic/service/TarvikService.h"

namespace {

LoadOutcome* of(const SubWindow& view)
{
    return view.findChild<LoadOutcome*>(QString(), Qt::FindDirectChildrenOnly);
}

}  // namespace

LoadOutcome::LoadOutcome(SubWindow& view)
    : QObject(&view)
{
    connect(view.service(), &TarvikService::newImageSignal, this, [this] { _failure = QString(); });
    connect(view.service(), &TarvikService::imageLoadErrorSignal, this,
            [this](const QString& message) { _failure = message; });
}

void LoadOutcome::follow(SubWindow& view)
{
    if (!of(view))
        new LoadOutcome(view);  // the view owns it
}

QString LoadOutcome::failure(const SubWindow& view)
{
    const LoadOutcome* outcome = of(view);
    return outcome ? outcome->_failure : QString();
}
