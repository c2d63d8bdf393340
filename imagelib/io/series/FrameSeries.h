// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The frames of one container: a file of several images, an HDF5 master, or a file without number.
#pragma once

#include "imagelib/io/formats/base/FileStamp.h"
#include "imagelib/io/formats/base/ImageFile.h"
#include "imagelib/io/series/Series.h"

#include <chrono>
#include <memory>

namespace morvend::imglib {

/// Keeps the container open. One that was replaced or rewritten is opened again; if frames are
/// appended to several, and for HDF5 always, the reader itself follows the writer.
class FrameSeries : public Series {
public:
    /// `file` was opened from `path`; `open` opens its successor.
    FrameSeries(std::string path, std::unique_ptr<ImageFile> file, ImagePathOpener open);

    /// True if the file is a series by itself, whatever its name: for several frames and for HDF5,
    /// whose writers append to the container even while it has one frame. A second and last frame
    /// that can't be read doesn't count (a line on standard error says so): some writers leave junk
    /// after their image, and it stays a member of its numbered set.
    static bool isSeriesByItself(const ImageFile& file);

    /// The number of the frame that the path names.
    int openedNumber() const;

    const char* format() const override { return _file->format(); }
    int first() const override { return _file->firstNumber(); }
    int last() const override;
    MImage at(int number) const override;
    std::string pathToImage(int number) const override;
    /// A new file that crashes its reader is opened once, with a line on standard error, and not
    /// again before it changes; one that hangs it, minutes later; one that is refused, each second.
    void update() override;

private:
    using Clock = std::chrono::steady_clock;
    /// The position of a frame in its container. @throws MOutOfRangeException
    std::size_t position(int number) const;
    enum class Change { None, Grown, Replaced };
    /// What happened to the container since it was opened or last seen to grow.
    Change changeSince(const FileStamp& now) const;
    void reopen() const;
    /// Notes that the file in this state can't be opened, and when it is worth another try.
    void postponeRetry(const FileStamp& stamp, const MException& error) const;

    std::string _path;
    mutable FileStamp _stamp;
    mutable std::unique_ptr<ImageFile> _file;
    ImagePathOpener _open;
    mutable FileStamp _refused;          // the state in which the new file could not be opened
    mutable Clock::time_point _nextTry;  // of that state
    mutable bool _warned = false;        // of that state, on standard error
};

}  // namespace morvend::imglib
