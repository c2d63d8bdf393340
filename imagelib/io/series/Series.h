// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What MImageSeries asks of each kind of series.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/image/NumberRange.h"

#include <string>

namespace morvend::imglib {

/// One kind of series; MImageSeries documents each operation. Numbers are never
/// negative here. Thread: callers take turns.
class Series {
public:
    virtual ~Series() = default;

    virtual const char* format() const = 0;
    virtual bool empty() const { return false; }
    virtual int first() const = 0;
    virtual int last() const = 0;
    /// Without gaps, unless a kind knows better.
    virtual int next(int number) const;
    virtual int previous(int number) const;
    /// The runs of numbers between first() and last() without image; null without any.
    virtual NumberRanges gaps() const { return {}; }
    virtual MImage at(int number) const = 0;
    virtual std::string pathToImage(int number) const = 0;
    virtual void update() {}
    /// Takes an image; all series but those in memory refuse.
    virtual void pushBack(const MImage& image);

protected:
    /// Gives an image the text that windows show, unless its file gave one.
    static void describe(MImage& image, const std::string& text);
    /// The last name of a path.
    static std::string fileName(const std::string& path);
    /// Throws the MOutOfRangeException for a number that the series does not have.
    [[noreturn]] void outOfRange(int number, const std::string& path) const;
};

}  // namespace morvend::imglib
