// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames on their way to the display.
#pragma once

#include "logic/detector/FrameTypes.h"
#include "logic/detector/SeriesMeter.h"

#include <QObject>

#include <deque>
#include <memory>
#include <mutex>
#include <variant>

/// Hands frames of the reader to its own thread, that of the GUI, and keeps only the newest of
/// those that wait: a slow display fills no memory and holds nothing up.
///
/// Signals come in the order of the calls, newSeries() never fails to come before the frames of its
/// series. Connect the reader's signals to the slots with Qt::DirectConnection.
/// Thread: the slots from any, the rest from its own.
class FrameRelay : public QObject {
    Q_OBJECT
public:
    /// Frames that wait at most.
    static constexpr std::size_t MostFrames = 2;

    explicit FrameRelay(std::shared_ptr<SeriesMeter> meter, QObject* parent = nullptr);

public slots:
    void addSeries(const OptionalData& header, int seriesId);
    void addFrame(const ImageData& frame, int seriesId, int frameId);

signals:
    void newSeries(OptionalData header, int seriesId);
    void newFrame(ImageData frame, int seriesId, int frameId);

private:
    struct Series {
        OptionalData header;
        int id;
    };
    struct Frame {
        ImageData pixels;
        int seriesId;
        int id;
    };
    using Item = std::variant<Series, Frame>;

    void _add(Item item);
    void _deliver();

    const std::shared_ptr<SeriesMeter> _meter;
    std::mutex _mutex;
    std::deque<Item> _items;  // while there are some, a call of _deliver() is on its way
};
