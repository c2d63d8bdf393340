// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How the frames of a written HDF5 file are compressed.
#pragma once

namespace morvend::imglib {

struct MCompression {
    /// A set of filters that the writer may use, as bits; it takes the best of them, which is the
    /// last one in this list. NONE writes plain frames, ALL leaves the choice to the writer.
    enum FILTER : int {
        NONE = 0,
        DEFLATE = 1,         ///< byte shuffle and deflate, which every HDF5 library reads
        LZ4 = 2,             ///< filter 32004
        BITSHUFFLE_LZ4 = 4,  ///< filter 32008: smallest and fastest for counts
        ALL = -1
    };
};

}  // namespace morvend::imglib
