#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Raises one corner of the mesh over an unsigned integer image, whose levels come as the bits of
// unsigned values.

#define Sampler usampler2D
#define Value uint
#define Level int
// Exact in the pixel type for values above the level.
#define DISTANCE(i, level) float(uint(i) - uint(level))

#include "plotheight.glsl"
