// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Images that were pushed by a program, such as those of a running detector.
#pragma once

#include "imagelib/io/series/Series.h"

#include <cstddef>
#include <deque>

namespace morvend::imglib {

/// Numbers images from 0 and keeps the newest ones.
class MemorySeries : public Series {
public:
    /// Keeps up to `bound` images, at least the last one.
    explicit MemorySeries(std::size_t bound);

    const char* format() const override { return "memory"; }
    bool empty() const override { return _images.empty(); }
    int first() const override { return _first; }
    int last() const override { return _first + static_cast<int>(_images.size()) - 1; }
    MImage at(int number) const override;
    /// @throws MRuntimeException always: these images have no file
    std::string pathToImage(int number) const override;
    void pushBack(const MImage& image) override;

private:
    std::size_t _bound;
    int _first = 0;
    std::deque<MImage> _images;
};

}  // namespace morvend::imglib
