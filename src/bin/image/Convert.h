// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command "convert": writes images of a series in another format.
#pragma once

#include "bin/image/Arguments.h"
#include "imagelib/io/MImageSeries.h"

namespace tarvik::tool {

/// Writes one image, or all of a series: CBF and TIFF as one file an image, with the number of the
/// image in its name, HDF5 as one series. Files appear when they are complete; an HDF5 series that
/// fails is removed. Shows progress on standard error if that is a terminal.
class Convert {
public:
    /// @throws MException when the file can't be opened
    explicit Convert(Arguments arguments);

    /// @throws MException when an image can't be read or written, or when an output would replace
    /// one of the files that it is read from
    void run();

    /// Name of the file of one image of many: "x_00012.cbf" of "x.cbf".
    static std::string numberedName(const std::string& output, int number);

private:
    std::string target(int number) const;
    morvend::imglib::MImage image(int number) const;
    int firstNumber() const;
    int nextNumber(int number) const;
    void guardSources() const;
    void writeFiles() const;
    void writeSeries() const;

    Arguments _arguments;
    morvend::imglib::MImageSeries _series{0};
    int _opened = 0;
};

}  // namespace tarvik::tool
