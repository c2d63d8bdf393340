// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image that a view shows.
#pragma once

#include "imagelib/codec/PackedPixels.h"
#include "imagelib/display/BlockMaxima.h"
#include "imagelib/image/MImage.h"
#include "logic/analysis/statistics/ImageStatistics.h"

#include <QSharedPointer>

#include <memory>
#include <string>

/// The image of a view with all that was computed for it; empty before the first one.
struct ShownImage {
    using MImage = morvend::imglib::MImage;

    bool loaded() const { return !image.empty(); }
    bool floatingPixels() const { return loaded() && image.type() == morvend::datatypes::FLOAT; }
    /// The image with its pixels, which are unpacked where they were dropped. What they tell, its
    /// header, type and size, is in `image` in any case.
    const MImage& whole();
    /// Drops pixels that are packed.
    void dropPixels();

    MImage image;  ///< its header holds the user's edits; its pixels may be dropped
    MImage mask;
    MImage thumbnail;
    MImage thumbnailMask;
    QSharedPointer<ImageStatistics> statistics;
    std::string path;  ///< empty without file
    int index = -1;
    std::shared_ptr<const morvend::codec::PackedPixels> packed;  ///< null where they aren't
    /// Null where they are not wanted, or not there yet.
    std::shared_ptr<const morvend::imglib::BlockMaxima> maxima{};
    std::string seriesPath{};  ///< opens its series; empty for one in memory
};
