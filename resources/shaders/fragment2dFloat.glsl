#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours one pixel of a float image.

#define Sampler sampler2D
#define Value float
#define Level float
// Exact in the pixel type for values above the level.
#define DISTANCE(i, level) ((i) - (level))

#include "transferfunction.glsl"
