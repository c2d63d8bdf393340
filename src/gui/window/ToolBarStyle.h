// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The look of the main window's tool bars.
#pragma once

#include <QString>

/// The style sheet of tool bars, their buttons, check boxes and menus: light grey text on dark
/// gradients.
QString toolBarStyle();
