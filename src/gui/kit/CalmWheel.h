// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The wheel over fields that stand in something that scrolls.
#pragma once

class QWidget;

/// Keeps a wheel that scrolls past the number boxes and choices inside a widget from changing them:
/// it turns the value only of one that was clicked before. May be called again for those that were
/// added since. Thread: GUI only.
void calmWheel(QWidget& around);
