// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Whether windows can hold widgets that draw through OpenGL.
#pragma once

#include "gui/render/GlInfo.h"

#include <optional>
#include <string>

namespace render {

/// What a trial context has told. Windows with OpenGL widgets in them stay black or end the process
/// where no context can be made, so this is settled before the first view.
struct OpenGlSupport {
    /// OpenGL 2 or later works here.
    bool usable = false;
    /// Why not, in words.
    std::string reason;
    /// Of the trial context, where there was one.
    std::optional<GlInfo> info;

    /// Tried at the first call, with a line on standard error where OpenGL can't be used. GUI
    /// thread, after the application object was made.
    static const OpenGlSupport& ofThisProcess();
};

}  // namespace render
