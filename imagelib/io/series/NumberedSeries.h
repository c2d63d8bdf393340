// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files with numbers in their names, one image each.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"
#include "imagelib/io/series/Series.h"
#include "imagelib/io/series/SeriesFinder.h"

#include <memory>
#include <vector>

namespace morvend::imglib {

/// Every image is read from its file each time, so that a file which was rewritten shows its new
/// content. Knows its files from one listing of the folder.
class NumberedSeries : public Series {
public:
    /// `opened` is the file that the finder was made from; the first at() of its number uses it.
    /// `open` opens the others.
    NumberedSeries(SeriesFinder finder, std::unique_ptr<ImageFile> opened, ImagePathOpener open);

    const char* format() const override { return _format.c_str(); }
    int first() const override { return _members.front().number; }
    int last() const override { return _members.back().number; }
    int next(int number) const override;
    int previous(int number) const override;
    NumberRanges gaps() const override { return _gaps; }
    MImage at(int number) const override;
    std::string pathToImage(int number) const override;
    void update() override;

private:
    /// Lists the folder again; keeps the members if that fails.
    void relist();
    void findGaps();
    /// The file of a number; for one that is not listed, with the usual width.
    SeriesFinder::Member member(int number) const;

    SeriesFinder _finder;
    ImagePathOpener _open;
    std::string _format;
    std::vector<SeriesFinder::Member> _members;  // by rising number, never empty
    NumberRanges _gaps;
    int _padding = 0;  // least digits in the name of a file that is not known
    mutable std::unique_ptr<ImageFile> _opened;
};

}  // namespace morvend::imglib
