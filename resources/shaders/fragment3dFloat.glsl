#version 130
// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours the mesh over a float image.

#include "plotcolour.glsl"
