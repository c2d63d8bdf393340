// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Applies edits to headers.
#include "logic/service/HeaderEdits.h"

void HeaderEdits::newImage(MImage& image, int imageIndex, bool sameGroup)
{
    _original = image.optionalData();
    if (!sameGroup) {
        _edits.clear();
        return;
    }
    Header& header = image.optionalData();
    boost::optional<float> angle = header.rotation_angle();
    _edits.override(header);
    if (_anglesEdited())
        angle = *_edits.rotation_angle() +
                static_cast<float>(imageIndex - _angleIndex) * *_edits.rotation_angle_step();
    header.set_rotation_angle(angle);
}

void HeaderEdits::apply(const Header& header, MImage& image, int imageIndex)
{
    _edits = header;
    if (_anglesEdited()) {
        _angleIndex = imageIndex;
    } else {
        _edits.set_rotation_angle(boost::none);
        _edits.set_rotation_angle_step(boost::none);
    }
    _edits.override(image.optionalData());
}

void HeaderEdits::applyBeamCentre(float x, float y, MImage& image)
{
    _edits.set_beam_center_x(x);
    _edits.set_beam_center_y(y);
    _edits.override(image.optionalData());
}

void HeaderEdits::reset(MImage& image)
{
    image.setOptionalData(_original);
    _edits.clear();
}
