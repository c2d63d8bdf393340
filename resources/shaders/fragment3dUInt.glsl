#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours the mesh over an unsigned integer image, whose levels come as the bits of unsigned
// values.

#include "plotcolour.glsl"
