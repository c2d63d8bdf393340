// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/SeriesThreads.h"

#include "logic/detector/FrameBudget.h"
#include "logic/detector/FrameRelay.h"
#include "logic/detector/HalvoFileWriterWorker.h"
#include "logic/detector/HalvoMonitorWorker.h"

SeriesThreads::SeriesThreads(const std::shared_ptr<SeriesMeter>& meter, FrameRelay& relay)
    : _budget(std::make_shared<FrameBudget>())
    , _reader(new HalvoMonitorWorker(_budget, meter))
{
    using Reader = HalvoMonitorWorker;
    using Writer = HalvoFileWriterWorker;
    auto* const writer = new Writer(_budget, meter);  // deleted by the end of its thread
    _reader->moveToThread(&_reading);
    writer->moveToThread(&_writing);
    _lastCall.moveToThread(&_writing);
    connect(&_reading, &QThread::finished, _reader, &QObject::deleteLater);
    connect(&_writing, &QThread::finished, writer, &QObject::deleteLater);

    connect(this, &SeriesThreads::startFileWriter, writer, &Writer::start);
    connect(this, &SeriesThreads::startMonitor, _reader, &Reader::startMonitor,
            Qt::DirectConnection);
    connect(this, &SeriesThreads::startStream, _reader, &Reader::startStream, Qt::DirectConnection);
    connect(_reader, &Reader::newSeries, writer, &Writer::initSeries);
    connect(_reader, &Reader::newFrame, writer, &Writer::add);
    connect(_reader, &Reader::finished, writer, &Writer::finish);
    connect(_reader, &Reader::newSeries, &relay, &FrameRelay::addSeries, Qt::DirectConnection);
    connect(_reader, &Reader::newFrame, &relay, &FrameRelay::addFrame, Qt::DirectConnection);

    // This object's thread is busy as long as a series lasts.
    connect(_reader, &Reader::error, this, &SeriesThreads::error, Qt::DirectConnection);
    connect(writer, &Writer::error, this, &SeriesThreads::error, Qt::DirectConnection);
    connect(writer, &Writer::seriesFinished, this, &SeriesThreads::seriesFinished,
            Qt::DirectConnection);
    _reading.start();
    _writing.start();
}

SeriesThreads::~SeriesThreads()
{
    _reader->abort();
    _reading.quit();
    // First all that has arrived, then the end of the file, then the end of the writer's loop.
    _reading.wait();
    QMetaObject::invokeMethod(
        &_lastCall, [this] { _writing.quit(); }, Qt::QueuedConnection);
    _writing.wait();
}

void SeriesThreads::abort() { _reader->abort(); }
void SeriesThreads::abortOnTimeout() { _reader->abortOnTimeout(); }
