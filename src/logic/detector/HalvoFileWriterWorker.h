// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writes the frames of a series into a file.
#pragma once

#include "logic/detector/FrameBudget.h"
#include "logic/detector/FrameTypes.h"
#include "logic/detector/SeriesMeter.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace morvend::imglib {
class MHdf5Writer;
}

/// The writer. Failures are reported by error() and never stop the reader: what can't be written is
/// dropped, and its bytes are given back.
///
/// Nothing is compressed here, which takes longer than a frame of a fast detector lasts: frames go
/// as the detector sent them, packed (bitshuffle+LZ4) or plain. Only plain ones, as they are after
/// decoding, would be more than a disk takes: 1.8 GB/s for 4 megapixels at 100 Hz. Beside what the
/// disk has, a reserve is kept: the file of a disk that gets full is closed while it can be, and
/// holds all frames up to there. The same happens when a frame can't be written for another reason.
/// In both cases nothing more is written, nor reported, until the next series.
///
/// Frames become readable for others at the latest a second or so after they came. An existing file
/// is never replaced: if the name has been taken since it was chosen, the next free one is used.
/// Threads: one of its own.
class HalvoFileWriterWorker : public QObject {
    Q_OBJECT
public:
    /// Bytes that the disk of a folder has left; nothing if that is not known.
    using DiskFree = std::function<std::optional<std::int64_t>(const QString& folder)>;

    /// @param budget    that each frame's bytes are given back to; null: none
    /// @param meter     null: one that nobody sees
    /// @param diskFree  that of the system, another one in tests
    explicit HalvoFileWriterWorker(std::shared_ptr<FrameBudget> budget = nullptr,
                                   std::shared_ptr<SeriesMeter> meter = nullptr,
                                   DiskFree diskFree = {});
    ~HalvoFileWriterWorker() override;

public slots:
    /// The next series goes into this file, and is complete with so many images (0: not known).
    void start(const QString& fileName, int nImages);
    /// Makes the file.
    void initSeries(const OptionalData& header, int seriesId);
    void add(const ImageData& frame, int seriesId, int frameId);
    /// Closes the file.
    void finish();

signals:
    /// A text for the user.
    void error(QString message);
    /// The file, if there is one, is complete.
    void seriesFinished();

private:
    void _write(const ImageData& frame, int frameId);
    void _warnOfSpace(std::int64_t frameBytes);
    bool _hasSpace(std::int64_t frameBytes);
    void _flush();
    void _close();
    void _giveUp(const QString& reason, int frameId);
    QString _folder() const;

    const std::shared_ptr<FrameBudget> _budget;
    const std::shared_ptr<SeriesMeter> _meter;
    const DiskFree _diskFree;
    std::unique_ptr<morvend::imglib::MHdf5Writer> _writer;
    QString _fileName;
    int _nImages = 0;
    std::int64_t _frameCount = 0;
    std::int64_t _firstFrame = 0;

    OptionalData _header;       // goes with the first frame
    std::int64_t _written = 0;  // into the file that is open
    bool _gaveUp = false;       // and said so
    QString _refusal;           // the last one that was reported
    QElapsedTimer _sinceFlush;
    QTimer _pause;  // of the detector
};
