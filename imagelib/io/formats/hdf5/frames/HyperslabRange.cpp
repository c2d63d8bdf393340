// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Selections of data spaces as ranges.
#include "imagelib/io/formats/hdf5/frames/HyperslabRange.h"

#include "imagelib/io/formats/hdf5/library/SmallValues.h"

namespace morvend::imglib::hdf5 {

static_assert(H5S_UNLIMITED == HyperslabRange::Endless);

std::optional<std::vector<HyperslabRange>> HyperslabRange::of(hid_t space)
{
    const auto shape = extents(space);
    if (!shape || shape->empty())
        return std::nullopt;
    const std::size_t rank = shape->size();
    std::vector<HyperslabRange> ranges(rank);
    const H5S_sel_type kind = H5Sget_select_type(space);
    if (kind == H5S_SEL_ALL) {
        for (std::size_t i = 0; i < rank; ++i)
            ranges[i].block = (*shape)[i];
        return ranges;
    }
    if (kind != H5S_SEL_HYPERSLABS || H5Sis_regular_hyperslab(space) <= 0)
        return std::nullopt;
    std::vector<hsize_t> start(rank), stride(rank), count(rank), block(rank);
    if (H5Sget_regular_hyperslab(space, start.data(), stride.data(), count.data(), block.data()) <
        0)
        return std::nullopt;
    for (std::size_t i = 0; i < rank; ++i)
        ranges[i] = {start[i], stride[i], count[i], block[i]};
    return ranges;
}

}  // namespace morvend::imglib::hdf5
