// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panel of the image's header and statistics.
#pragma once

#include "gui/info/InfoBar.h"
#include "imagelib/image/MImage.h"

#include <array>

/// What the header and the statistics say, with fields to correct the geometry for the series, in
/// the view or in its files.
class InfoBarImage : public InfoBar {
    Q_OBJECT
public:
    using Header = morvend::imglib::MBasicImageOptionalData<>;

    InfoBarImage(unsigned long long syncClass, TarvikService* service);

public slots:
    /// Applies the values of all fields that hold a number to the series.
    /// @returns the header edits of the series with them
    Header apply();
    /// Drops all header edits.
    void reset();
    /// Applies them and, after a look at what will change, writes them into all files of the
    /// series.
    void writeHeaderToAllImages();
    /// Puts back what the last write to files replaced, after a look at what will change.
    void undoLastWrite();

protected:
    void setText() override;

private slots:
    void _newImageSlot();

private:
    enum Field { StartAngle, Step, Wavelength, Transmission, Distance, CentreX, CentreY, Fields };

    void _addDetector(const Header& header);
    void _addImage(const Header& header);
    void _addBeamline(const Header& header);

    std::array<int, Fields> _fields;  // numbers of the fields, -1 while not shown
};
