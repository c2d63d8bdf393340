// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What every format gives: an opened container of images.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/base/ByteSource.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace morvend::imglib {

/// One opened container: a file of one image, a file of several, or an HDF5 master file with its
/// data files. Frames are addressed by position, from 0.
///
/// Errors: frame() may fail for one frame and succeed for others; all failures are MExceptions with
/// file, place and reason. Thread: callers take turns.
class ImageFile {
public:
    virtual ~ImageFile() = default;

    /// "CBF", "TIFF", "EDF" or "HDF5".
    virtual const char* format() const = 0;
    /// Number of frames, at least 1. The first call may have to walk through the file.
    virtual std::size_t frameCount() const { return 1; }
    /// A frame with its header.
    virtual MImage frame(std::size_t position) const = 0;
    /// The file that holds a frame.
    virtual std::string framePath(std::size_t position) const = 0;
    /// The file that users know the container by, such as the master of a data file; empty
    /// when it is the opened file itself.
    virtual std::string mainPath() const { return {}; }
    /// The data set that is shown, if it is not the one shown by default.
    virtual std::string dataset() const { return {}; }
    /// The first frame named by the opened path.
    virtual std::size_t openedFrame() const { return 0; }
    /// Number that users give to the frame at position 0.
    virtual int firstNumber() const { return 0; }
    /// Looks for frames that a writer has added.
    virtual void update() {}
};

/// A format's door: opens a file of its own, returns null for a file of another format, and throws
/// an MException for a file of its own that is damaged.
using ImageFileOpener = std::unique_ptr<ImageFile> (*)(std::shared_ptr<const ByteSource> source);
/// Opens a file of any format by its path. @throws MException
using ImagePathOpener = std::function<std::unique_ptr<ImageFile>(const std::string& path)>;

}  // namespace morvend::imglib
