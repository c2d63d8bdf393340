// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The strongest maxima of the image that a view shows.
#pragma once

#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/loading/LoaderData.h"
#include "logic/service/ShownImage.h"

#include <QObject>

#include <memory>

/// The maxima come with an image that was requested while they were wanted; else they are searched
/// for on a worker, once they are. Thread: GUI only.
class ViewPeaks : public QObject {
    Q_OBJECT
public:
    /// @param shown  outlives this object
    explicit ViewPeaks(ShownImage& shown);
    ~ViewPeaks() override;

    /// For a new image.
    void take(const LoaderData& load);
    /// Begins a search where the maxima are not there, and none is under way.
    void search();
    bool pending() const { return _search != nullptr; }
    /// Of the shown image; none before they are found.
    const ImagePeaks& found() const { return _found; }
    /// Waits for the search, or does it here if no worker has begun.
    const ImagePeaks& await();

signals:
    void computedSignal();

private:
    struct Search;
    void _drop();
    void _announce();

    ShownImage& _shown;
    ImagePeaks _found;
    bool _known = false;              // `_found` is of the shown image
    std::shared_ptr<Search> _search;  // shared with the worker; null if there is none
};
