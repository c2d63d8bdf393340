// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sets the contrast of a view by a range of its pixels.
#pragma once

#include "logic/service/ContrastChoice.h"
#include "logic/service/LatestJob.h"
#include "logic/service/Records.h"

#include <QRect>

#include <optional>

/// Levels over the whole image come from its histogram, at once; those of a part are counted on a
/// worker, as are those that the histogram knows too coarsely. A contrast that was set meanwhile
/// stays. Thread: GUI only.
class ContrastChooser {
public:
    /// Both outlive this object.
    ContrastChooser(ShownImage& shown, Records& records);

    ContrastChoice choice;

    /// Without image nothing happens.
    /// @param part  of the image; beyond it there is nothing
    void chooseFor(const QRect& part);
    void chooseForAll();
    /// For an image that is about to be announced: no signal for the levels.
    void followNewImage();

private:
    std::optional<ContrastLevels> _levelsOfAll() const;
    void _count(const QRect& part);
    /// Levels, and what they were asked for.
    struct Answer {
        std::optional<ContrastLevels> levels;
        std::string group;
        unsigned int version = 0;
    };
    void _arrived(const Answer& answer);
    void _contrastChanged(const ContrastData& contrast);

    ShownImage& _shown;
    Records& _records;
    // Of the levels, counting those that others have set.
    unsigned int _version = 0;
    ContrastLevels _known;
    bool _applying = false;
    LatestJob<Answer> _job;
};
