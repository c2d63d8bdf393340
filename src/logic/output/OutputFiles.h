// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures and copies of an image in files.
#pragma once

#include "logic/output/Pictures.h"

#include <QByteArray>
#include <QString>

/// Files appear under their names when they are complete: a failure or a cancel (CancelScope)
/// leaves no part of one and keeps an older one. Thread: any.
namespace output {

using morvend::imglib::MRect;

/// Writes a file as it is.
/// @throws as writePicture() does
void writeBytes(const QByteArray& bytes, const QString& fileName);

/// Writes a picture in any format of QImageWriter.
/// @throws MNoFileAccessException "Cannot write to " and the name, MTerminateException when
/// cancelled
void writePicture(const QImage& picture, const QString& fileName, const QString& format);

/// Writes the image in its colours, with a legend where the rectangle says; see pictures. Without
/// image nothing happens.
/// @throws as writePicture() and pictures do
void exportImage(const ImageSnapshot& snapshot, const QString& fileName, const QString& format,
                 const MRect& legend, const pictures::Progress& progress = {});

/// Writes the picture of a view, with a legend where the rectangle says.
/// @throws as writePicture() and pictures do
void exportView(const QImage& picture, const ContrastData& contrast, const QString& fileName,
                const QString& format, const MRect& legend);

/// Writes the image with its header as "cbf", "tif", "tiff", "h5" or "hdf5", in any case. Without
/// image nothing happens. Data files of another HDF5 series are not replaced.
/// @throws MBadParameterException "Unrecognized file format", or for a file that must not be
/// replaced; MException when the file can't be written
void saveAs(const morvend::imglib::MImage& image, const QString& fileName,
            const QString& extension);

}  // namespace output
