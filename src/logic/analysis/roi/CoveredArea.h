// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How much of a pixel a circle covers, and how integer radii cross it.
#pragma once

/// Fraction of pixel (x, y) covered by a circle of integer radius r around a pixel centre. The
/// pixel is centred on (x, y), unlike in the form with a real centre.
double coveredArea(int x, int y, int r, int cx, int cy);

/// The same for a real-valued centre; the pixel is the square from (x, y) to (x + 1, y + 1).
double coveredArea(int x, int y, int r, double cx, double cy);

/// The integer radii around (cx, cy) that cross pixel (x, y), the square from (x, y) to
/// (x + 1, y + 1), -1 for none, and the lengths of the crossings. When r1 is not -1 it is r0 + 1.
void circleSection(int x, int y, double cx, double cy, int& r0, double& s0, int& r1, double& s1);
