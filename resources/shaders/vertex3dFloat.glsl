#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Raises one corner of the mesh over a float image.

#define Sampler sampler2D
#define Value float
#define Level float
// Exact in the pixel type for values above the level.
#define DISTANCE(i, level) ((i) - (level))

#include "plotheight.glsl"
