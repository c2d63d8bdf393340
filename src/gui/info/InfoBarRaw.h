// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of the unparsed header.
#pragma once

#include "gui/info/InfoBar.h"

/// The header text as the file gives it.
class InfoBarRaw : public InfoBar {
    Q_OBJECT
public:
    InfoBarRaw(unsigned long long syncClass, TarvikService* service);

protected:
    void setText() override;
};
