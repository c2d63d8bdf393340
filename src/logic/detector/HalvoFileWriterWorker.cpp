// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One file a series, and what happens when there is no room for it.
#include "logic/detector/HalvoFileWriterWorker.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/MHdf5Writer.h"
#include "logic/detector/SeriesFile.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <filesystem>
#include <span>
#include <utility>

using morvend::MBadParameterException;
using morvend::imglib::MCompression;
using morvend::imglib::MHdf5Writer;

namespace {

/// For what a file needs to be closed: the index of its frames, a few kilobytes a thousand.
constexpr std::int64_t ReserveBytes = 8 << 20;
constexpr int FlushMs = 1000;

std::optional<std::int64_t> freeBytes(const QString& folder)
{
    std::error_code failure;
    const auto space = std::filesystem::space(QFile::encodeName(folder).toStdString(), failure);
    if (failure)
        return {};
    return static_cast<std::int64_t>(space.available);
}

QString sizeText(std::int64_t bytes) { return QLocale::c().formattedDataSize(bytes); }

}  // namespace

HalvoFileWriterWorker::HalvoFileWriterWorker(std::shared_ptr<FrameBudget> budget,
                                             std::shared_ptr<SeriesMeter> meter, DiskFree diskFree)
    : _budget(std::move(budget))
    , _meter(meter ? std::move(meter) : std::make_shared<SeriesMeter>())
    , _diskFree(diskFree ? std::move(diskFree) : freeBytes)
    , _pause(this)
{
    _pause.setSingleShot(true);
    _pause.setInterval(FlushMs);
    connect(&_pause, &QTimer::timeout, this, &HalvoFileWriterWorker::_flush);
}

HalvoFileWriterWorker::~HalvoFileWriterWorker() = default;

QString HalvoFileWriterWorker::_folder() const { return QFileInfo(_fileName).path(); }

void HalvoFileWriterWorker::start(const QString& fileName, int nImages)
{
    _close();
    _fileName = fileName;
    _nImages = nImages;
    _frameCount = 0;
    _firstFrame = 0;
    _gaveUp = false;
    _meter->startWriting(nImages);
}

void HalvoFileWriterWorker::initSeries(const OptionalData& header, int)
{
    _close();
    _frameCount = 0;
    _firstFrame = 0;
    _gaveUp = false;
    _refusal.clear();
    _header = header;
    try {
        const QString free = freeSeriesFile(_fileName);
        if (free != _fileName)
            emit error(QStringLiteral("%1 exists by now: the series is written to %2")
                           .arg(_fileName, free));
        _fileName = free;
        // The bytes of a name in ASCII; any other name keeps its letters too.
        _writer = std::make_unique<MHdf5Writer>(QFile::encodeName(_fileName).toStdString(), 0,
                                                header.nexusTree(), MCompression::BITSHUFFLE_LZ4,
                                                MHdf5Writer::Existing::Keep);
        _meter->setFileOpen(true);
    } catch (const morvend::MException& failure) {
        _gaveUp = true;
        emit error(QFile::decodeName(failure.what()));
    }
}

void HalvoFileWriterWorker::add(const ImageData& frame, int, int frameId)
{
    if (_frameCount != 0) {
        // Counts right for series whose first frame is 0, which all are.
        if (_frameCount - _firstFrame != frameId)
            emit error(QStringLiteral("Lost %1 frames").arg(frameId - _frameCount + _firstFrame));
    } else {
        _firstFrame = frameId;
    }
    _frameCount = std::int64_t(frameId) + 1 - _firstFrame;
    if (_writer)
        _write(frame, frameId);
    else if (!_gaveUp)
        emit error(QStringLiteral("Cannot add image before new file has been started"));
    if (_frameCount == _nImages) {
        _flush();
        emit seriesFinished();
        _close();
    }
    if (_budget)
        _budget->giveBack(static_cast<std::int64_t>(frame.dataSize()));
}

void HalvoFileWriterWorker::finish()
{
    _flush();
    emit seriesFinished();
    _close();
}

void HalvoFileWriterWorker::_write(const ImageData& frame, int frameId)
{
    const auto plain = static_cast<std::int64_t>(frame.dataSize());
    const std::span packed = frame.packed ? std::span(*frame.packed) : std::span<const std::byte>();
    const auto bytes = frame.packed ? static_cast<std::int64_t>(packed.size()) : plain;
    if (_written == 0)
        _warnOfSpace(plain);
    if (!_hasSpace(bytes))
        return _giveUp(QStringLiteral("The disk is full"), frameId);
    try {
        if (_written == 0)
            _writer->writeAsIs(withHeader(frame, _header), packed);
        else
            _writer->writeAsIs(frame, packed);
    } catch (const MBadParameterException& refusal) {
        const QString text = QFile::decodeName(refusal.what());
        if (std::exchange(_refusal, text) != text)
            emit error(QStringLiteral("Frame %1 is not written: %2").arg(frameId).arg(text));
        return;
    } catch (const std::exception& failure) {
        return _giveUp(QFile::decodeName(failure.what()), frameId);
    }
    ++_written;
    _meter->written(bytes);
    if (_written == 1 || _sinceFlush.elapsed() >= FlushMs)
        _flush();
    else if (!_pause.isActive())
        _pause.start();
}

void HalvoFileWriterWorker::_warnOfSpace(std::int64_t frameBytes)
{
    const auto free = _diskFree(_folder());
    const std::int64_t needed = frameBytes * _nImages;
    if (free && needed > *free)
        emit error(QStringLiteral("The series needs up to %1, the disk has %2: %3")
                       .arg(sizeText(needed), sizeText(*free), _fileName));
}

bool HalvoFileWriterWorker::_hasSpace(std::int64_t frameBytes)
{
    const auto free = _diskFree(_folder());
    if (!free)
        return true;
    _meter->setDiskFree(*free);
    return *free >= frameBytes + ReserveBytes;
}

/// Makes all frames so far readable.
void HalvoFileWriterWorker::_flush()
{
    _pause.stop();
    _sinceFlush.start();
    if (!_writer || _written == 0)
        return;
    try {
        _writer->flush();
    } catch (const std::exception& failure) {
        if (!std::exchange(_gaveUp, true))
            emit error(QFile::decodeName(failure.what()));
    }
}

void HalvoFileWriterWorker::_close()
{
    _flush();
    _writer.reset();
    _written = 0;
    _meter->setFileOpen(false);
}

void HalvoFileWriterWorker::_giveUp(const QString& reason, int frameId)
{
    _gaveUp = true;
    emit error(QStringLiteral("%1: frames from %2 on are not written; %3 are in %4")
                   .arg(reason)
                   .arg(frameId)
                   .arg(_written)
                   .arg(_fileName));
    _close();
}
