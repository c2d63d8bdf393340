// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a loader does for each image, written down straight from the definitions: the measure of the
// benchmarks of loading.
#pragma once

#include "imagelib/image/MImage.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace tarvik::bench {

/// Seconds that a piece of work takes.
template <class Work>
double seconds(Work&& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// First marks of the cells, one loop in another.
morvend::imglib::MImage plainMaskThumbnail(const morvend::imglib::MImage& mask);

/// A data set of frames of 32-bit pixels, read by the HDF5 library with the bitshuffle filter of
/// the system.
class PlainChain {
public:
    /// @param mask 32 bits, of the frames' size
    /// @throws MException when file or filter can't be loaded
    PlainChain(const std::string& file, const std::string& dataset,
               const morvend::imglib::MImage& mask);
    ~PlainChain();

    /// Reads a frame and computes statistics, histogram with sorted tails, and both thumbnails, all
    /// in fresh memory. @returns the sum of the good pixels
    double run(std::size_t frame) const;

private:
    struct Hdf5;
    const std::unique_ptr<Hdf5> _hdf5;
    const morvend::imglib::MImage _mask;
};

}  // namespace tarvik::bench
