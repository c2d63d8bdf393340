// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The look of the program: style, colours and font, and what OpenGL needs before all windows.
#pragma once

#include <QPalette>

namespace look {

/// Before the application object exists: the kind of OpenGL context that the image views need,
/// contexts that share their objects, so that a view keeps its textures when it moves between
/// frames, and substitutes for the font family.
void beforeApplication();

/// On the application object: the Fusion style and the dark colours.
void applyToApplication();

/// Light text on dark grey, for panels, dialogs and menus beside dark images.
QPalette darkPalette();

}  // namespace look
