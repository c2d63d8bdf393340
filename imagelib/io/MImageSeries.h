// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The unit of reading: one file, a numbered set of files, an HDF5 master with its data files, or
// images in memory, all addressed by one image number.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/image/NumberRange.h"

#include <cstddef>
#include <memory>
#include <string>

namespace morvend::imglib {

struct ImagePath;

/// An ordered set of images with integer numbers.
///
/// | series | numbers |
/// |---|---|
/// | numbered files, one image each | as in the names; gaps occur |
/// | frames of one CBF, TIFF or EDF file | from 0 |
/// | HDF5 master with its data files | from 1 |
/// | images in memory | from 0; the oldest go when the bound is reached |
///
/// Every image carries a header; its imageDescription is the name of its file, followed by the
/// number where the file holds several images, unless the file gives a text of its own.
///
/// Errors: MExceptions with file, place and reason. A failure leaves the series as it was: at() may
/// fail for one image while others can be read. Thread: callers take turns.
class MImageSeries {
public:
    /// An empty series that keeps up to `memorySize` pushed images, at least one. Images of files
    /// are read again each time and not kept.
    explicit MImageSeries(std::size_t memorySize);
    MImageSeries(MImageSeries&& other) noexcept;
    MImageSeries& operator=(MImageSeries&& other) noexcept;
    ~MImageSeries();

    /// Opens a file and with it the whole series that it belongs to. Lists the folder of a numbered
    /// file once, opens no other file than the one named. "FILE::/path/in/file" opens one data set
    /// of an HDF5 file, or the images of one of its groups, as a series (see ImagePath).
    /// @returns the number of the image that `path` names
    /// @throws MNoFileAccessException, MUnknownFormatException, or what the format's reader throws
    int open(const std::string& path);
    /// Becomes an empty series in memory that keeps up to `memorySize` images, at least one.
    /// @throws MBadParameterException when it is negative
    void open(int memorySize);
    /// An empty series that cancel() reaches together with this one: for a series that will take
    /// the place of this one once its first image is read.
    MImageSeries beside() const;
    /// Exchanges the two series.
    void exchange(MImageSeries& other) noexcept;
    /// Appends an image to a series in memory.
    /// @throws MRuntimeException when the series was opened from a file
    void pushBack(const MImage& image);

    /// The image with a number. A number that the last listing of the folder lacked is tried
    /// too: its file may have appeared since.
    /// @throws MOutOfRangeException for a number outside of first() to last() that has no image,
    /// another MException for an image in between that is missing or can't be read
    MImage at(int number) const;
    MImage at(std::size_t number) const;
    MImage operator[](int number) const { return at(number); }
    MImage operator[](std::size_t number) const { return at(number); }

    /// True if no series is open, or it has no image yet.
    bool empty() const;
    /// Lowest and highest number; -1 for an empty series.
    int first() const;
    int last() const;
    /// Lowest number of the series above the given one, and highest below it, -1 if there isn't
    /// one: steps over gaps.
    int next(int number) const;
    int previous(int number) const;
    /// The runs of numbers in between that the last listing of the folder lacked, the first ten
    /// thousand of them; null without any. Costs nothing.
    NumberRanges gaps() const;
    /// The file that holds the image of a number, as an absolute path.
    /// @throws MRuntimeException for a series in memory, MOutOfRangeException for a number that the
    /// series can't have
    std::string pathToImage(int number) const;
    std::string pathToImage(std::size_t number) const;
    /// Looks for images that were added or removed since the last call. A folder or file that
    /// can't be read now leaves what is known: its writer may be at work.
    void update();
    /// Ends the work for a series that is no longer wanted: the running call and every later one
    /// that reads fail with an MTerminateException, at once if another process reads, and
    /// between two blocks if this process does. Thread: any, during other calls too.
    void cancel();

    /// "CBF", "TIFF", "EDF" or "HDF5"; "memory" for images in memory, empty before the first image.
    std::string formatName() const;

private:
    class Private;
    explicit MImageSeries(std::unique_ptr<Private> d);
    int _open(const ImagePath& path);

    std::unique_ptr<Private> _d;
};

}  // namespace morvend::imglib
