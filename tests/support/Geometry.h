// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a header tells of the geometry of an experiment.
#pragma once

namespace tarvik::tests {

/// All fields: beam centre in pixels, sizes of a pixel and distance in m, wavelength in Angstrom.
template <class Header>
void setGeometry(Header& header, float beamX, float beamY, float pixelX, float pixelY,
                 float distance, float wavelength)
{
    header.set_beam_center_x(beamX);
    header.set_beam_center_y(beamY);
    header.set_x_pixel_size(pixelX);
    header.set_y_pixel_size(pixelY);
    header.set_detector_distance(distance);
    header.set_wavelength(wavelength);
}

}  // namespace tarvik::tests
