// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image that a view shows.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/analysis/statistics/ImageStatistics.h"

#include <QSharedPointer>

#include <optional>
#include <string>

/// The image of a view with all that was computed for it; empty before the first one.
struct ShownImage {
    using MImage = morvend::imglib::MImage;

    bool loaded() const { return !image.empty(); }

    MImage image;  ///< its header holds the user's edits
    MImage mask;
    MImage thumbnail;
    MImage thumbnailMask;
    QSharedPointer<ImageStatistics> statistics;
    std::string path;  ///< empty without file
    int index = -1;
    std::optional<ImagePeaks> peaks{};  ///< searched for when first requested
};
