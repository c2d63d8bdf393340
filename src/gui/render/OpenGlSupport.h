// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Whether windows can hold widgets that draw through OpenGL.
#pragma once

#include "gui/render/GlInfo.h"

#include <optional>
#include <string>

class QWidget;

namespace render {

/// The result of a trial context. Windows with OpenGL widgets in them stay black or end the process
/// if no context can be made, so this is settled before the first view.
struct OpenGlSupport {
    /// OpenGL 2 or later works here.
    bool usable = false;
    /// The reason why not, in words.
    std::string reason;
    /// Of the trial context, if there was one.
    std::optional<GlInfo> info;

    /// Tried at the first call, with a line on standard error if OpenGL can't be used. GUI
    /// thread, after the application object was made.
    static const OpenGlSupport& ofThisProcess();

    /// Makes a window, before it is first shown, one whose native surface can hold image views,
    /// if OpenGL works. Otherwise the toolkit replaces the native window when the first view
    /// appears: it vanishes for a moment, comes back elsewhere and is no longer maximised.
    static void prepare(QWidget& window);
};

}  // namespace render
