// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The reduced images of largest pixels of the image on show.
#pragma once

#include "logic/records/Minification.h"
#include "logic/service/LatestJob.h"
#include "logic/service/ShownImage.h"

#include <functional>
#include <memory>

/// Makes them on a worker where an image came without: they were not wanted when it was asked for.
/// Thread: GUI only.
class MaximaMaker {
public:
    using Maxima = std::shared_ptr<const morvend::imglib::BlockMaxima>;

    /// @param shown  outlives this object
    /// @param changed  called when its maxima have come or gone without an image
    MaximaMaker(ShownImage& shown, std::function<void()> changed);

    Minification minification() const { return _minification; }
    void setMinification(Minification minification);
    /// For an image that has just been taken over.
    void newImage();

private:
    void _make();

    ShownImage& _shown;
    const std::function<void()> _changed;
    Minification _minification = Minification::Nearest;
    LatestJob<Maxima> _job;
};
