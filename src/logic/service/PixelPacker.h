// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keeps the pixels of a view packed between looks at them.
#pragma once

#include "logic/service/PackingJob.h"
#include "logic/service/ShownImage.h"

#include <QTimer>

/// As long as it is on, has the pixels of the image packed by a worker where they came unpacked,
/// and drops them a while after each look. Thread: GUI only.
class PixelPacker {
public:
    /// @param shown  outlives this object
    explicit PixelPacker(ShownImage& shown);

    bool on() const { return _on; }
    /// Switched on once more, it drops the pixels at once.
    void setOn(bool on);
    /// Somebody has looked at the pixels, or they are new.
    void looked();

private:
    void _pack();

    ShownImage& _shown;
    bool _on = false;
    std::shared_ptr<PackingJob> _job;
    std::uint64_t _identity = 0;  // of the pixels that the job packs
    QTimer _timer;
};
