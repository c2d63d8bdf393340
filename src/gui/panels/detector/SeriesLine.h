// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How a series is getting on.
#pragma once

#include "logic/detector/SeriesProgress.h"

#include <QString>
#include <QWidget>

#include <array>

class QLabel;

/// Counts of a series side by side under their names, in places that never move; what needs
/// attention is orange. Hidden without a series. Thread: GUI only.
class SeriesLine : public QWidget {
    Q_OBJECT
public:
    enum Count { Received, Written, Lost, Shown, Waiting, Rate, Disk, Counts };

    explicit SeriesLine(QWidget* parent = nullptr);

    void setProgress(const SeriesProgress& progress);
    void clear();

    /// The texts, by Count.
    static std::array<QString, Counts> texts(const SeriesProgress& progress);
    /// Frames are lost, or the disk will be full before the series ends.
    static bool alarming(const SeriesProgress& progress, Count count);

private:
    std::array<QLabel*, Counts> _values;
};
