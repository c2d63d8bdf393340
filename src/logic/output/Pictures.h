// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of an image and its colours.
#pragma once

#include "imagelib/display/MRect.h"
#include "logic/output/ImageSnapshot.h"

#include <QImage>

#include <functional>

/// Pictures in memory, all of Format_ARGB32_Premultiplied. They follow the cancelling of their
/// thread (CancelScope). Thread: any.
namespace pictures {

using MRect = morvend::imglib::MRect;

/// Takes the share of the work that is done, 0 to 1.
using Progress = std::function<void(double share)>;

/// A colour bar with ticks on white; null for a size that no picture can have.
QImage colorLegend(const ContrastData& contrast, int width, int height);

/// The whole image in its colours, a pixel for each of its own.
/// @throws MRuntimeException when there is no memory for it, MTerminateException when cancelled
QImage ofImage(const ImageSnapshot& snapshot, const Progress& progress = {});

/// True for a rectangle that holds a legend.
bool holdsLegend(const MRect& rect);

/// A picture beside a legend, on white. The canvas contains both; a negative left or top of the
/// rectangle moves the picture right or down by as much, while the legend stays at left and top of
/// the canvas. Without a rectangle it is the picture.
/// @throws MBadParameterException for a canvas that is too large
QImage withLegend(const QImage& picture, const ContrastData& contrast, const MRect& rect);

}  // namespace pictures
