// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The strongest maxima of the image that a view shows.
#pragma once

#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/loading/LoaderData.h"
#include "logic/service/LatestJob.h"
#include "logic/service/ShownImage.h"

#include <QObject>

/// The maxima come with an image that was requested while they were wanted; else they are searched
/// for on a worker, once they are. Thread: GUI only.
class ViewPeaks : public QObject {
    Q_OBJECT
public:
    /// @param shown  outlives this object
    explicit ViewPeaks(ShownImage& shown);

    /// For a new image.
    void take(const LoaderData& load);
    /// Begins a search where the maxima are not there, and none is under way.
    void search();
    bool pending() const { return _pending; }
    /// Of the shown image; none before they are found.
    const ImagePeaks& found() const { return _found; }
    /// The same, but searches for them here and now where they are missing.
    const ImagePeaks& foundNow();

signals:
    void computedSignal();

private:
    ShownImage& _shown;
    ImagePeaks _found;
    bool _known = false;  // `_found` is of the shown image
    bool _pending = false;
    LatestJob<ImagePeaks> _job;
};
