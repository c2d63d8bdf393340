// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What travels from a request to load an image to the view that shows it.
#pragma once

#include "imagelib/codec/PackedPixels.h"
#include "imagelib/display/BlockMaxima.h"
#include "imagelib/image/MImage.h"
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/analysis/statistics/ImageStatistics.h"
#include "logic/records/ContrastData.h"
#include "logic/records/PeakData.h"
#include "logic/records/StatisticsData.h"
#include "logic/records/ViewportData.h"

#include <QSharedPointer>

#include <memory>
#include <optional>
#include <string>

/// One image with all that is computed for it, and the settings that the view had when it asked.
/// A value; copies share the pixels.
struct LoaderData {
    /// In: the file to open. Out: the image's file, empty for an image in memory.
    std::string path;
    /// Out: what opens the image's series, see MImageSeries::open(); empty for one in memory.
    std::string seriesPath;
    /// In: the image to append. Out: the image.
    morvend::imglib::MImage image;
    /// An image number of the series, under the name that users of the loader know.
    /// In: the one to go to. Out: the image's.
    int index = -1;
    /// At most 200 pixels on the longer side, of the image's pixel type; its pixel mask is
    /// thumbnailMask.
    morvend::imglib::MImage thumbnail;
    /// Of the image's size, never empty after a job.
    morvend::imglib::MImage mask;
    morvend::imglib::MImage thumbnailMask;
    /// Made by every job.
    QSharedPointer<ImageStatistics> statistics;
    /// Of the region in statisticsData.
    RoiStatistics roiStatistics;
    /// Made where peakData asks for any.
    std::optional<ImagePeaks> peaks;
    /// In: shall the pixels be packed too, since nobody may look at them for long?
    bool pack = false;
    /// Out: null where that was not wanted, or saves nothing.
    std::shared_ptr<const morvend::codec::PackedPixels> packed;
    /// In: shall the reduced images of largest pixels be made?
    bool wantsMaxima = false;
    /// Out: null where they were not wanted.
    std::shared_ptr<const morvend::imglib::BlockMaxima> maxima;
    // Copied in by the caller and carried through unchanged.
    ContrastData contrastData;
    ViewportData viewportData;
    StatisticsData statisticsData;
    PeakData peakData;
};
