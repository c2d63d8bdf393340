// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Chains of NeXus transformations: the rotation of the sample, the distance of the detector.
#pragma once

#include "imagelib/io/formats/hdf5/NexusValues.h"

namespace morvend::imglib::hdf5 {

/// The rotation of one image.
struct Rotation {
    double start = 0;            ///< degrees
    std::optional<double> step;  ///< degrees that the axis turns during the image
};

/// Reads the chains that `depends_on` values form. Chains end at ".", at a missing axis and at 100
/// axes, so that none is endless.
class NexusAxes {
public:
    explicit NexusAxes(const NexusValues& values)
        : _values(values)
    {}

    /// The first rotation of the sample's chain whose values differ from image to image, else the
    /// first that has a width, else a goniometer axis that moves, else the first rotation at all.
    /// The width is end less value, or the increment, or the median difference of the values.
    std::optional<Rotation> rotation(const std::string& entry, std::size_t frame) const;

    /// The part along the beam of the translations from a detector to the sample, in metres,
    /// without its sign: some chains count against the beam.
    std::optional<double> distance(const std::string& detector) const;

private:
    struct Axis {
        std::string path;
        const nexus::Node* node;
    };
    std::vector<Axis> _chain(const std::string& group) const;
    static bool _isRotation(const Axis& axis);
    static double _toDegrees(const nexus::Node& node);
    std::optional<double> _width(const Axis& axis, std::size_t frame) const;
    std::optional<Rotation> _goniometer(const std::string& entry, std::size_t frame) const;

    const NexusValues& _values;
};

}  // namespace morvend::imglib::hdf5
