// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An open series with all state that only the running job may touch.
#pragma once

#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/formats/base/FileStamp.h"
#include "logic/loading/AwaitedImage.h"
#include "logic/loading/LoaderData.h"
#include "logic/loading/MaskFixup.h"
#include "logic/loading/MaskThumbnails.h"
#include "logic/loading/SeriesState.h"
#include "logic/loading/Steps.h"
#include "logic/preload/PreloaderClient.h"

#include <optional>
#include <string>

/// The series that a view goes through, where the view is in it, the way to the preloader, and the
/// masks of the last images.
///
/// open() leaves the open series in place; keep() replaces it when the first record of the new one
/// is finished. Errors: MExceptions of the image library; a failure leaves the open series as it
/// is. Thread: one at a time, that of the running job; cancel() any.
class SeriesSession {
public:
    using MImage = morvend::imglib::MImage;
    /// All of the state but the read-ahead.
    using Bounds = SeriesState;
    /// A shown image. Path that its series was opened by, empty for one in memory.
    struct Shown {
        std::string path;
        int number = -1;
    };
    /// Pushed images that a series in memory keeps.
    static constexpr int pushedImages = 25;

    /// @param shown  if it has a path, requests by number mean that series until another one is
    /// open
    explicit SeriesSession(Shown shown);

    /// Opens the shown series, unless that has been done or another series is open.
    void comeBack();
    /// Opens a file with its series. @returns the number of the image that the path names
    int open(const std::string& path);
    /// Appends an image to the series in memory, which is a new one where the open one comes from a
    /// file. @returns the image's number
    int push(const MImage& image);

    /// The image of a number, from its file. A failure in the open series is remembered until the
    /// image can be read.
    MImage read(int number);
    /// The image of a number if the preloader has it. @returns false otherwise
    bool readAhead(int number, MImage& image);
    /// What the preloader has of the open series; nothing if it does not answer.
    std::optional<ReadAhead> listReadAhead() const { return _preloader.list(); }
    /// Looks for new images if the series is not known to go as far as this number.
    void catchUp(int number);
    /// The file of an image, empty for an image in memory.
    std::string pathTo(int number) const;
    /// That file as it is now.
    morvend::imglib::FileStamp stampOf(int number) const;
    /// For error texts: " in the series, which goes from 1 to 100".
    std::string rangeText() const;
    /// The last number of the series in a direction.
    int end(bool forward) const;
    Steps steps() { return Steps(_current()); }

    /// Called when a record is finished: its series becomes the open one, and the
    /// preloader reads ahead in it.
    void keep(const LoaderData& record);
    /// Closes the series that was opened in addition or replaced; this may take as long as reading.
    void closeOther() { _beside.reset(); }
    /// Looks for new images.
    void scan();
    /// Of the open series; nothing until comeBack() has opened the shown series.
    std::optional<Bounds> bounds() const;
    /// The path that the open series was opened by, empty for one in memory.
    const std::string& openedAs() const { return _openedAs; }
    /// Ends the work for all series of this session, see MImageSeries::cancel(). Thread: any.
    void cancel() { _series.cancel(); }

    /// The number that was asked for last, from which steps count.
    int asked() const { return _asked; }
    void setAsked(int number) { _asked = number; }
    /// The number of the last record, -1 before the first.
    int shown() const { return _shown; }

    // For the steps of a job.
    AwaitedImage& awaited() { return _awaited; }
    MaskFixup& maskFixup() { return _maskFixup; }
    MaskThumbnails& maskThumbnails() { return _maskThumbnails; }

private:
    /// A series beside the open one.
    struct Other {
        morvend::imglib::MImageSeries series;
        std::string openedAs;
    };
    /// The series that the running job works on.
    morvend::imglib::MImageSeries& _current() { return _beside ? _beside->series : _series; }
    const morvend::imglib::MImageSeries& _current() const
    {
        return _beside ? _beside->series : _series;
    }
    /// Lets the preloader follow the series that has just been opened.
    void _tellPreloader(int number);

    void _noteFailure(int number, const std::string& reason);
    void _noteSuccess(int number);

    morvend::imglib::MImageSeries _series;
    std::shared_ptr<const SeriesState::Failures> _failed;  // of the open series
    std::optional<Other> _beside;
    std::string _openedAs;
    std::string _comeBackTo;
    PreloaderClient _preloader;
    bool _headerKnown = false;  // true if the preloader client has the open series' header
    MaskFixup _maskFixup;
    MaskThumbnails _maskThumbnails;
    AwaitedImage _awaited;
    int _asked;
    int _shown;
};
