// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The user's edits of header values and how they follow a series.
#pragma once

#include "imagelib/image/MImage.h"

/// Keeps the header of the current image as loaded, and the edits that apply to it and to
/// each further image of the series. Thread: one at a time.
class HeaderEdits {
public:
    using MImage = morvend::imglib::MImage;
    using Header = morvend::imglib::MBasicImageOptionalData<>;

    const Header& edits() const { return _edits; }

    /// For a new image: applies the edits to its header, or drops them if it begins a new
    /// group. An edited start angle keeps counting with the image number.
    void newImage(MImage& image, int imageIndex, bool sameGroup);
    /// Replaces the edits. Start angle and step are kept only together, since the angle of a
    /// series needs both.
    void apply(const Header& header, MImage& image, int imageIndex);
    /// Adds a beam centre in pixels to the edits.
    void applyBeamCentre(float x, float y, MImage& image);
    /// Drops the edits.
    void reset(MImage& image);

private:
    bool _anglesEdited() const { return _edits.rotation_angle() && _edits.rotation_angle_step(); }

    Header _original;
    Header _edits;
    /// The image number at which the start angle was set.
    int _angleIndex = 0;
};
