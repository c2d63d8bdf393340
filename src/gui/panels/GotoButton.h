// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The button that drops the way to an image.
#pragma once

#include "gui/kit/PopupButton.h"

class TarvikService;

/// Opens a GotoWidget, which closes with its buttons. Thread: GUI only.
class GotoButton : public PopupButton {
    Q_OBJECT
public:
    /// @param service  not owned; lives as long as the button
    GotoButton(TarvikService* service, QWidget* parent);
};
