// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The header of an image: optional fields, of which none may be assumed to be present.
#pragma once

#include "imagelib/image/MBasicNeXusTree.h"
#include "imagelib/image/MImage.h"

#include <boost/optional.hpp>

#include <string>

namespace morvend::imglib {

/// The fields in their order, as X(value type, name). Pixel positions count from 0.
///
/// | field | unit | meaning |
/// |---|---|---|
/// | beam_center_x, beam_center_y | pixels | direct beam in image coordinates |
/// | detector_distance | m | sample to detector |
/// | wavelength | Angstrom | photon energy in eV is 12398.42 divided by it |
/// | x_pixel_size, y_pixel_size | m | |
/// | rotation_angle, rotation_angle_step | degrees | start of this image, range per image |
/// | filter_transmission | ratio | as the file gives it; some give a percentage |
/// | saturation_value | counts | at or above it a pixel is saturated |
/// | sensor_thickness | m | |
/// | threshold_energy | eV | |
/// | count_time, frame_time | s | exposure time and period |
/// | beam_flux | 1/s | |
/// | data_collection_date, description, detector_number | | texts as the file gives them |
/// | pixel_mask | | see MImage pixel_mask() below |
/// | imageDescription | | free text of the image |
/// | rawHeader | | the file's header text, unparsed |
#define TARVIK_HEADER_FIELDS(X)                                                                    \
    X(float, beam_center_x)                                                                        \
    X(float, beam_center_y)                                                                        \
    X(float, detector_distance)                                                                    \
    X(float, wavelength)                                                                           \
    X(float, x_pixel_size)                                                                         \
    X(float, y_pixel_size)                                                                         \
    X(float, rotation_angle)                                                                       \
    X(float, rotation_angle_step)                                                                  \
    X(float, filter_transmission)                                                                  \
    X(int, saturation_value)                                                                       \
    X(float, sensor_thickness)                                                                     \
    X(float, threshold_energy)                                                                     \
    X(float, count_time)                                                                           \
    X(float, frame_time)                                                                           \
    X(float, beam_flux)                                                                            \
    X(std::string, data_collection_date)                                                           \
    X(std::string, description)                                                                    \
    X(std::string, detector_number)                                                                \
    X(MImage, pixel_mask)                                                                          \
    X(std::string, imageDescription)                                                               \
    X(std::string, rawHeader)

/// Header of one image. For each field `f` of TARVIK_HEADER_FIELDS there are `f()`, which returns
/// the optional value, and `set_f(value)`; `set_f(boost::none)` clears it.
///
/// `pixel_mask` is an image of the size of the one it belongs to, of an unsigned pixel type, 0 for
/// a good pixel: bit 0 marks a gap, bits 1 to 4 a defective pixel. Thread: a value; copies may go
/// to other threads.
template <class Allocator>
class MBasicImageOptionalData {
public:
#define TARVIK_FIELD(T, name)                                                                      \
    const boost::optional<T>& name() const { return _##name; }                                     \
    void set_##name(const boost::optional<T>& value) { _assign(_##name, value); }                  \
    void set_##name(const T& value) { _assign(_##name, boost::optional<T>(value)); }
    TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
    void setImageDescription(const std::string& text) { set_imageDescription(text); }

    /// The metadata tree of a NeXus file; empty for other files.
    const nexus::MBasicNeXusTree& nexusTree() const { return _tree.read(); }
    void setNexusTree(nexus::MBasicNeXusTree tree) { _tree.write() = std::move(tree); }
    /// Takes over the tree of another header without a copy, and returns true if it is the same
    /// tree.
    void shareNexusTree(const MBasicImageOptionalData& other) { _tree = other._tree; }
    bool sharesNexusTree(const MBasicImageOptionalData& other) const
    {
        return &_tree.read() == &other._tree.read();
    }

    void clear() { *this = MBasicImageOptionalData(); }

    /// Copies every field that is set here into `target`; its other fields stay.
    void override(MBasicImageOptionalData& target) const
    {
#define TARVIK_FIELD(T, name)                                                                      \
    if (_##name)                                                                                   \
        target.set_##name(*_##name);
        TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
    }

    /// Calls visit(const char* name, const boost::optional<T>& value) for each field in order.
    template <class Visitor>
    void forEachField(Visitor&& visit) const
    {
#define TARVIK_FIELD(T, name) visit(#name, _##name);
        TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
    }

private:
    template <class T>
    void _assign(boost::optional<T>& field, const boost::optional<T>& value)
    {
        field = value;
        if constexpr (std::is_same_v<T, float>) {
            // Only the wavelength is kept in the tree too, where writers of NeXus files look.
            if (&field == &_wavelength && value)
                _tree.write().setNumber("/entry/instrument/beam/wavelength", double(*value),
                                        "angstrom");
        }
    }

#define TARVIK_FIELD(T, name) boost::optional<T> _##name;
    TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
    image::CowPtr<nexus::MBasicNeXusTree> _tree;
};

}  // namespace morvend::imglib
