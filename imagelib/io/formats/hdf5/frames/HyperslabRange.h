// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A regular selection along one dimension.
#pragma once

#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <limits>
#include <optional>
#include <vector>

namespace morvend::imglib::hdf5 {

/// The points start + i * stride + j with i < count and j < block, in this order.
struct HyperslabRange {
    static constexpr hsize_t Endless = std::numeric_limits<hsize_t>::max();

    hsize_t start = 0;
    hsize_t stride = 1;
    hsize_t count = 1;
    hsize_t block = 1;

    /// Number of points; Endless for a selection that grows with its data set.
    hsize_t points() const
    {
        const bool overflow = block != 0 && count > Endless / block;
        return overflow ? Endless : count * block;
    }
    /// The place of a coordinate among the points; nothing when it is none of them.
    std::optional<hsize_t> ordinal(hsize_t coordinate) const
    {
        if (coordinate < start || stride == 0)
            return std::nullopt;
        const hsize_t along = coordinate - start;
        if (count == 1)
            return along < block ? std::optional(along) : std::nullopt;
        if (along / stride >= count || along % stride >= block)
            return std::nullopt;
        return along / stride * block + along % stride;
    }
    /// The coordinate of a point. Endless when there is no such coordinate.
    hsize_t at(hsize_t ordinal) const
    {
        if (block == 0 || ordinal >= points())
            return Endless;
        const hsize_t step = ordinal / block;
        if (stride != 0 && step > (Endless - start - block) / stride)
            return Endless;
        return start + step * stride + ordinal % block;
    }
    /// No gaps between the points?
    bool contiguous() const { return count == 1 || stride == block; }

    /// The selection of a data space, one range a dimension; nothing when it is not regular.
    static std::optional<std::vector<HyperslabRange>> of(hid_t space);
};

}  // namespace morvend::imglib::hdf5
