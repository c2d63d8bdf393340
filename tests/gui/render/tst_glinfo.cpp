// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What is reported about the OpenGL stack, and what follows from it.
#include "gui/render/GlInfo.h"

#include <gtest/gtest.h>

namespace {

using render::GlInfo;

TEST(GlInfo, TheVersionIsReadFromTheDriversText)
{
    struct Row {
        const char* text;
        int major, minor;
    };
    for (const auto& [text, major, minor] :
         {Row{"4.5 (Compatibility Profile) Mesa 22.3.6", 4, 5}, Row{"3.0.0 NVIDIA 525.85", 3, 0},
          Row{"2.1 Mesa", 2, 1}, Row{"", 0, 0}, Row{"OpenGL ES 3.2", 0, 0}, Row{"4", 0, 0}}) {
        GlInfo info;
        info.parseVersion(text);
        EXPECT_EQ(info.version, text);
        EXPECT_EQ(info.major, major) << text;
        EXPECT_EQ(info.minor, minor) << text;
        EXPECT_FALSE(info.glslPossible()) << text;
        info.textureRg = true;
        EXPECT_EQ(info.glslPossible(), major >= 3) << text;
    }
}

TEST(GlInfo, TheLinesAreThoseThatUsersSendIn)
{
    GlInfo info;
    info.parseVersion("4.5 Mesa");
    info.shadingLanguage = "4.50";
    info.colorBits = {8, 8, 8, 0};
    info.depthBits = 24;
    info.stencilBits = 8;
    info.textureRg = true;
    EXPECT_EQ(info.lines(), "\n"
                            "OpenGL info:\n"
                            "OpenGL version: 4.5\n"
                            "OpenGL version string: 4.5 Mesa\n"
                            "Shading language version: 4.50\n"
                            "Number of bits in color buffer (r,g,b,a): 8 8 8 0\n"
                            "Number of bits in depth buffer 24\n"
                            "Number of bits in stencil buffer 8\n"
                            "Number of bits in accumulation buffer (r,g,b,a): 0 0 0 0\n"
                            "GL_ARB_texture_rg extension supported \n"
                            "\n");
    info.parseVersion("1.4");
    info.textureRg = false;
    EXPECT_EQ(info.lines().find("Shading"), std::string::npos);
    EXPECT_EQ(info.lines().find("texture_rg"), std::string::npos);
}

}  // namespace
