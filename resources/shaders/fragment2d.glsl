#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours one pixel of a signed integer image.

#define Sampler isampler2D
#define Value int
#define Level int
// Exact in the pixel type for values above the level.
#define DISTANCE(i, level) float(uint(i) - uint(level))

#include "transferfunction.glsl"
