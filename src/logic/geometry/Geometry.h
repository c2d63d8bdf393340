// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Diffraction geometry from header values.
#pragma once

#include "imagelib/image/MImage.h"

/// Pure functions on a header; positions are image pixels from 0. Values missing from the header
/// make a quantity undefined.
namespace geometry {

using Header = morvend::imglib::MBasicImageOptionalData<>;

/// True if beam centre, pixel sizes, detector distance and wavelength are known.
bool resolutionDefined(const Header& header);
/// True if beam centre and pixel sizes are known.
bool distanceDefined(const Header& header);
/// True if the beam centre is known.
bool beamCentreDefined(const Header& header);

/// Pixels from the beam centre to a point, truncated, regardless of pixel sizes; -1 without beam
/// centre.
int powderRadius(const Header& header, int x, int y);
/// Metres on the detector from the beam centre to a point; -1 when not defined.
double distance(const Header& header, int x, int y);
/// Resolution at a point in Angstrom by Bragg's law; infinite at the beam centre, -1 when not
/// defined.
double resolution(const Header& header, int x, int y);
/// The same at a distance in metres from the beam centre; resolutionDefined() must hold.
double resolutionAt(const Header& header, double distance);

}  // namespace geometry
