// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Look-ups in a metadata tree: the first of several paths, in the unit of the image header, of one
// frame.
#pragma once

#include "imagelib/image/MBasicNeXusTree.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// What a value measures, with the unit of the image header.
enum class Quantity {
    Length,      ///< m
    Wavelength,  ///< Angstrom
    Energy,      ///< eV
    Time,        ///< s
    Angle,       ///< degrees
    Pixels       ///< pixels
};

/// The factor to the unit of the header. Units are compared without case; "micron", "um",
/// "micrometre" and the like are one. Nothing for an empty or unknown unit.
std::optional<double> unitFactor(Quantity quantity, const std::string& unit);

/// The factor for a small length (pixel size, thickness) that carries no unit, by its magnitude:
/// from 1 on micrometres, from 0.01 on millimetres, metres below.
double factorByMagnitude(double length);

using Paths = std::vector<std::string>;

/// Numbers of a value, empty for a text or a group.
std::vector<double> numbersOf(const nexus::Value& value);
/// The text of a value: a string, the first of several, or a number printed; empty for a group.
std::string textOf(const nexus::Value& value);
/// An attribute as text or as numbers; empty if it doesn't exist.
std::string textAttribute(const nexus::Node& node, const std::string& name);
std::vector<double> numbersAttribute(const nexus::Node& node, const std::string& name);

/// Which element of a value belongs to a frame: its own if there is one for each frame, else the
/// first. Nothing if there are no elements.
std::optional<double> ofFrame(const std::vector<double>& values, std::size_t frame);

/// A tree with look-ups. The tree must outlive it.
class NexusValues {
public:
    explicit NexusValues(const nexus::MBasicNeXusTree& tree)
        : _tree(tree)
    {}

    const nexus::MBasicNeXusTree& tree() const { return _tree; }
    /// The first of the paths that holds numbers; null if there isn't one.
    const nexus::Node* firstNumbers(const Paths& paths) const;

    /// The number of a frame at the first of the paths that has one, as stored.
    std::optional<double> number(const Paths& paths, std::size_t frame = 0) const;
    /// The same in the unit of the header. Without a known unit the value is assumed to be in it.
    std::optional<double> quantity(Quantity quantity, const Paths& paths,
                                   std::size_t frame = 0) const;
    /// A small length, whose unit, if not given, is guessed from its magnitude.
    std::optional<double> smallLength(const Paths& paths) const;
    /// The first text that is not empty.
    std::optional<std::string> text(const Paths& paths) const;

    /// Paths of the groups right below a group whose class is `nxClass` or whose name begins with
    /// `prefix`, sorted.
    Paths groups(const std::string& parent, const std::string& nxClass,
                 const std::string& prefix) const;

private:
    const nexus::MBasicNeXusTree& _tree;
};

}  // namespace morvend::imglib::hdf5
