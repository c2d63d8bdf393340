// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/InfoBarRaw.h"

#include "logic/service/TarvikService.h"

namespace {

/// Of a text that a panel shows; longer ones would take seconds to lay out.
constexpr std::size_t LongestText = 1 << 18;

}  // namespace

InfoBarRaw::InfoBarRaw(unsigned long long syncClass, TarvikService* service)
    : InfoBar(syncClass, service)
{
    setTitle(QStringLiteral("Raw Header"));
}

void InfoBarRaw::setText()
{
    const auto& raw = tarvikService()->optionalData().rawHeader();
    if (!raw)
        return;
    addText(QString::fromStdString(raw->substr(0, LongestText)));
    if (raw->size() > LongestText)
        addText(QStringLiteral("... (%1 more bytes)").arg(raw->size() - LongestText));
}
