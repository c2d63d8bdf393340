// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Chains of NeXus transformations: the rotation of the sample, the distance of the detector.
#pragma once

#include "imagelib/io/formats/hdf5/nexus/NexusValues.h"

namespace morvend::imglib::hdf5 {

/// The rotation of one image.
struct Rotation {
    double start = 0;            ///< degrees
    std::optional<double> step;  ///< degrees that the axis turns during the image
};

/// Reads the chains that `depends_on` values form. Chains end at ".", at a missing axis and at 100
/// axes, so that all end.
class NexusAxes {
public:
    explicit NexusAxes(const NexusValues& values)
        : _values(values)
    {}

    /// Among the rotations of the sample's chain, then of its goniometer, then of others by their
    /// usual names, the first that has different values for all images, else different values at
    /// all, else a width; else omega or the first of them.
    /// The width is end less value, or the increment, or the median difference of the values.
    /// @param frames  images of the series, 0 if unknown
    std::optional<Rotation> rotation(const std::string& entry, std::size_t frame,
                                     std::size_t frames) const;

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
    /// The axes of a group, whose path ends in a slash, with the usual names.
    std::vector<Axis> _named(const std::string& group) const;
    /// All rotations of the sample, the likeliest first.
    std::vector<Axis> _rotations(const std::string& entry) const;

    const NexusValues& _values;
};

}  // namespace morvend::imglib::hdf5
