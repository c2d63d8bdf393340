// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writes edited header values into all files of a series.
#pragma once

#include "logic/headerfiles/HeaderFilesThread.h"

#include <QMutex>

#include <string>

/// One batch over a numbered CBF series. Set it up, start() it, and follow progress(). Thread:
/// setNeXuS() and setImageSeries() any, even while it runs, since the batch works on copies.
class WriteHeaderToFilesThread : public HeaderFilesThread {
    Q_OBJECT
public:
    using Header = CbfHeaderWriter::Header;

    ~WriteHeaderToFilesThread() override;

    /// @param index  number of the image that the header's start angle belongs to
    void setNeXuS(const Header& header, int index);
    /// Files are named directory/prefix<number>.suffix; the number is padded with zeros to this
    /// many digits.
    void setImageSeries(const std::string& directory, const std::string& prefix,
                        const std::string& suffix, unsigned long digits);

protected:
    void run() override;

private:
    struct Files {
        std::string directory;
        std::string prefix;
        std::string suffix;
        unsigned long digits = 0;

        std::string name(long long number) const;
        bool exists(long long number) const;
        /// Entries of the directory, "." and ".." included.
        long long count() const;
    };
    struct Range {
        long long lowest;
        long long highest;
    };

    /// Finds the lowest and the highest number that has a file, starting from the header's image.
    /// @returns false if there is no file, and after an abort
    bool _find(const Files& files, int index, Range& range) const;

    /// Writes the files of a range. @param writer  with the values for the image of this number
    void _walk(const Files& files, const Range& range, CbfHeaderWriter writer, int index,
               HeaderBatch& batch);

    QMutex _mutex;
    CbfHeaderWriter _writer;
    Files _files;
    int _index = 0;
};
