// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The steps from a request to a finished record.
#include "logic/ImageLoaderThread.h"

#include "imagelib/image/MException.h"
#include "logic/RoiComputer.h"
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "logic/loading/Thumbnail.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <new>
#include <utility>

using morvend::imglib::FileStamp;
using morvend::imglib::MImage;
using morvend::imglib::MImageSeries;

namespace {

/// The path as another process finds it, wherever that one stands.
std::string absolute(const std::string& path)
{
    std::error_code error;
    const auto result = std::filesystem::absolute(path, error);
    return error ? path : result.string();
}

std::string rangeText(const MImageSeries& series)
{
    if (series.empty())
        return ": the series is empty";
    return " in the series, which goes from " + std::to_string(series.first()) + " to " +
           std::to_string(series.last());
}

/// The file of an image as it is now.
FileStamp stampOf(const MImageSeries& series, int number)
{
    try {
        return FileStamp(series.pathToImage(static_cast<std::size_t>(number)));
    } catch (const morvend::MException&) {
        return {};
    }
}

}  // namespace

ImageLoaderThread::ImageLoaderThread(std::shared_ptr<LoaderContext> context, unsigned int number,
                                     const ImageLoader::Request& request)
    : _context(std::move(context))
    , _number(number)
    , _request(request)
    , _generation(_context->generation)
{
    _context->setWay(_number, _way());
}

ImageLoaderThread::~ImageLoaderThread() { _context->leave(_number); }

ImageLoader::Request ImageLoaderThread::request() const
{
    const std::lock_guard lock(_mutex);
    return _request;
}

bool ImageLoaderThread::join(const ImageLoader::Request& newer)
{
    const std::lock_guard lock(_mutex);
    if (_begun || _dropped())
        return false;
    if (newer.steps.empty()) {
        _request = newer;
    } else {
        const int from = _request.data.index;
        _request.data = newer.data;
        _request.data.index = from;
        _request.signalLoadError = _request.signalLoadError || newer.signalLoadError;
        _request.steps.insert(_request.steps.end(), newer.steps.begin(), newer.steps.end());
    }
    _context->setWay(_number, _way());
    return true;
}

int ImageLoaderThread::_way() const
{
    const auto& steps = _request.steps;
    if (!_request.fromAsked)
        return 0;
    const bool forward = steps.back() > 0;
    const bool same =
        std::all_of(steps.begin(), steps.end(), [=](int n) { return (n > 0) == forward; });
    return !same ? 0 : forward ? 1 : -1;
}

void ImageLoaderThread::run()
{
    {
        const std::lock_guard lock(_mutex);
        if (_dropped())
            return;
        _begun = true;
        _data = _request.data;
    }
    _context->begin(_number);
    _total.start();
    _step.start();
    try {
        const bool found = _load();
        if (_context->abandoned())
            return;
        if (found) {
            _analyse();
            _deliver();
        } else {
            _endWithoutImage({}, true);
        }
    } catch (const std::bad_alloc&) {
        _fail(QStringLiteral("Not enough memory to load the image"));
    } catch (const std::exception& error) {
        _fail(QString::fromStdString(error.what()));
    } catch (...) {
        _fail(QStringLiteral("The image can't be loaded, for a reason that is not known"));
    }
    _opened.reset();  // here, since closing files may take long
}

MImageSeries& ImageLoaderThread::_series() { return _opened ? *_opened : _context->series; }

bool ImageLoaderThread::_load()
{
    switch (_request.task) {
    case ImageLoader::TaskOpenSeries:
        _openSeries();
        break;
    case ImageLoader::TaskOpenIndex:
        _context->comeBack();
        if (!_request.steps.empty())
            return _openStep();
        _openIndex();
        break;
    case ImageLoader::TaskPushImage:
        _pushImage();
        break;
    }
    _complete();
    return true;
}

void ImageLoaderThread::_complete()
{
    _checkPixels();
    try {
        _data.path = _series().pathToImage(static_cast<std::size_t>(_data.index));
    } catch (const morvend::MRuntimeException&) {
        _data.path.clear();  // a series in memory
    }
}

void ImageLoaderThread::_checkPixels() const
{
    if (_data.image.empty())
        throw morvend::MRuntimeException("The image has no pixels");
}

void ImageLoaderThread::_openSeries()
{
    _step.restart();
    _opened.emplace(_context->series.beside());
    _requestedPath = _data.path;
    _data.index = _opened->open(_data.path);
    _endStep(StepTimes::Open, "\nTIME OPENING SERIES: ");
    _step.restart();
    _data.image = _opened->at(static_cast<std::size_t>(_data.index));
    _endStep(StepTimes::Source, "TIME LOADING IMAGE: ");
}

void ImageLoaderThread::_openIndex()
{
    _context->asked = _data.index;
    if (_data.index < 0)
        throw morvend::MOutOfRangeException("There is no image " + std::to_string(_data.index) +
                                            rangeText(_series()));
    _readFromCacheOrSource();
}

bool ImageLoaderThread::_openStep()
{
    Steps steps(_series());
    const int from = _request.fromAsked ? _context->asked : _data.index;
    int number = from;
    bool ended = false;
    for (const int n : _request.steps) {
        const int next = steps.to(number, n);
        ended = next == number;
        number = next;
    }
    _data.index = number;
    if (number == _context->delivered) {
        if (ended && _request.signalLoadError)
            _context->notice(
                QStringLiteral("Image %1 is the %2 of the series")
                    .arg(number)
                    .arg(steps.forward() ? QStringLiteral("last") : QStringLiteral("first")));
        return false;
    }
    if (number == from) {
        // None of the series. Its number was asked for explicitly, and that may wait yet.
        if (_request.fromAsked)
            return false;
        _openIndex();
        _complete();
        return true;
    }
    _context->asked = number;
    if (!_search(steps))
        return false;
    if (!steps.leftOut().empty())
        _leftOut = "Left out: " + steps.leftOut().text();
    _complete();
    return true;
}

bool ImageLoaderThread::_search(Steps& steps)
{
    const int first = _data.index;
    std::string reason;
    if (_canRead(first, true, reason))
        return true;
    bool say = true;
    if (!_request.signalLoadError) {
        // Asked for again and again: all that follows only now and then.
        AwaitedImage& awaited = _context->awaited;
        const bool again = awaited.is(first);
        say = awaited.isOverdue(first, stampOf(_series(), first), std::chrono::steady_clock::now());
        const int end = steps.forward() ? _series().last() : _series().first();
        std::string ignored;
        if (again && !say && (end == first || !_canRead(end, false, ignored)))
            return false;
    }
    for (auto each = steps.beyond(first, reason); each; each = steps.beyond(*each, reason)) {
        if (_context->abandoned() || _dropped() || _context->overtaken(_number, _way()))
            return false;
        if (_canRead(*each, false, reason))
            return true;
    }
    if (say)
        _context->notice(
            QStringLiteral("There is nothing to show %1 image %2: %3")
                .arg(steps.forward() ? QStringLiteral("after") : QStringLiteral("before"))
                .arg(_context->delivered)
                .arg(QString::fromStdString(steps.leftOut().text())));
    return false;
}

bool ImageLoaderThread::_canRead(int number, bool cached, std::string& reason)
{
    _data.index = number;
    try {
        if (cached)
            _readFromCacheOrSource();
        else
            _readFromSource();
        _checkPixels();
        return true;
    } catch (const morvend::imglib::MTerminateException&) {
        throw;
    } catch (const morvend::MTimeoutException&) {
        throw;  // the next one would hang as long
    } catch (const morvend::MException& error) {
        reason = error.what();
        return false;
    }
}

void ImageLoaderThread::_readFromCacheOrSource()
{
    MImageSeries& series = _series();
    _step.restart();
    const bool hit =
        _context->preloader.get(_data.image, static_cast<unsigned long>(_data.index), "");
    _endStep(StepTimes::Cache, "\nTIME LOADING IMAGE FROM CACHE: ");
    // The preloader may know images that have come since the last look; without a hit too the
    // series may have grown.
    if (_data.index > series.last())
        series.update();
    if (hit)
        StepTimes::addHit();
    else
        _readFromSource();
}

void ImageLoaderThread::_readFromSource()
{
    _step.restart();
    _data.image = _series().at(static_cast<std::size_t>(_data.index));
    _endStep(StepTimes::Source, "TIME LOADING IMAGE FROM SOURCE: ");
}

void ImageLoaderThread::_pushImage()
{
    if (_data.image.empty())
        return;  // refused by the caller, before the series takes it
    try {
        _series().pushBack(_data.image);
    } catch (const morvend::MRuntimeException&) {
        // The open series comes from a file: begin one in memory.
        _opened.emplace(_context->series.beside());
        _opened->open(pushedImages);
        _opened->pushBack(_data.image);
    }
    _data.index = _series().last();
}

void ImageLoaderThread::_analyse()
{
    _data.mask = _context->maskFixup(_data.image);
    _step.restart();
    _data.thumbnailMask = _context->maskThumbnails.of(_data.mask);
    _endStep(StepTimes::Mask, "TIME COMPUTING MASK: ");
    _printSubtotal();

    _step.restart();
    _data.statistics.reset(new ImageStatistics);
    // The thumbnail goes along with the statistics: a pass of its own would wait for the memory.
    thumbnail::Builder thumbnail(_data.image);
    ComputeStatistics(_data.statistics.data())
        .compute(_data.image, _data.mask, [&](std::size_t pixel) { thumbnail.upTo(pixel); });
    if (_context->maskFixup.replaces(_data.image, *_data.statistics)) {
        _data.mask = *std::as_const(_data.image).optionalData().pixel_mask();
        _data.thumbnailMask = _context->maskThumbnails.of(_data.mask);
        ComputeStatistics(_data.statistics.data()).computeAgain(_data.image, _data.mask);
    }
    StepTimes::add(StepTimes::Statistics, std::chrono::nanoseconds(_step.nsecsElapsed()));
    _printSubtotal();

    _step.restart();
    _data.thumbnail = thumbnail.finish(_data.statistics->hasNegatives);
    assert(_data.thumbnail.width() == _data.thumbnailMask.width());
    assert(_data.thumbnail.height() == _data.thumbnailMask.height());
    _data.thumbnail.optionalData().set_pixel_mask(_data.thumbnailMask);
    RoiComputer region;
    region.setImage(_data.image);
    region.setMask(_data.mask);
    region.setStatisticsData(_data.statisticsData);
    _data.roiStatistics = region.computeOrWarn();
    _endStep(StepTimes::Region, "TIME FOR ADDITIONAL COMPUTATION: ");
}

void ImageLoaderThread::_deliver()
{
    if (_opened)
        _adoptSeries();
    else if (_request.task == ImageLoader::TaskPushImage)
        _context->opened({});
    _context->asked = _context->delivered = _data.index;
    _context->awaited.clear();
    StepTimes::addImage();
    _context->answer(_number);
    _context->deliver(_data, [this] { _printSubtotal(); });
    if (!_leftOut.empty())
        _context->notice(QString::fromStdString(_leftOut));
}

void ImageLoaderThread::_adoptSeries()
{
    _context->series.exchange(*_opened);
    _context->opened(_requestedPath);
    PreloaderClient& preloader = _context->preloader;
    if (_request.task == ImageLoader::TaskPushImage) {
        preloader.setEnabled(false);  // there is no file to read ahead
        return;
    }
    preloader.put(static_cast<unsigned long>(_data.index), absolute(_requestedPath));
    preloader.setDefaultOptData(std::as_const(_data.image).optionalData());
}

void ImageLoaderThread::_endWithoutImage(const QString& message, bool silent)
{
    // Steps that wait already count from its number.
    if (!_context->overtaken(_number, 0))
        _context->asked = _context->delivered;
    _context->answer(_number);
    _context->fail(message, silent);
}

void ImageLoaderThread::_fail(const QString& message)
{
    _endWithoutImage(message, !_request.signalLoadError);
}

void ImageLoaderThread::_endStep(StepTimes::Step step, const char* label) const
{
    console::printTime(label, _step.elapsed());
    StepTimes::add(step, std::chrono::nanoseconds(_step.nsecsElapsed()));
}

void ImageLoaderThread::_printSubtotal() const
{
    console::printTime("               SUBTOTAL TIME LOADING: ", _total.elapsed());
}
