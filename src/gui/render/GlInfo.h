// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the OpenGL stack of a context can do.
#pragma once

#include <array>
#include <optional>
#include <string>

namespace render {

/// Facts about one OpenGL context, and the lines that report them.
struct GlInfo {
    std::string version;
    int major = 0;
    int minor = 0;
    std::string shadingLanguage;
    /// Red, green, blue, alpha.
    std::array<int, 4> colorBits{};
    int depthBits = 0;
    int stencilBits = 0;
    std::array<int, 4> accumulationBits{};
    bool textureRg = false;
    /// Longest side of a texture in pixels.
    int maxTextureSize = 0;

    /// Queries the current context.
    static GlInfo ofCurrentContext();
    /// Sets version, major and minor from a text such as "4.5 (Compatibility Profile) Mesa"; 0 and
    /// 0 if it has no number.
    void parseVersion(const std::string& text);

    /// True if the shaders can run here. They need OpenGL 3 and textures of one integer channel.
    bool glslPossible() const { return textureRg && major > 2; }
    /// The printed lines, from a blank one on, up to and including an empty line at the end.
    std::string lines() const;
};

}  // namespace render
