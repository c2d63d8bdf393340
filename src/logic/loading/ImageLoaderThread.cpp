// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The steps from a request to a finished record.
#include "logic/loading/ImageLoaderThread.h"

#include "imagelib/image/ErrorPlace.h"
#include "imagelib/image/MException.h"
#include "logic/analysis/roi/RoiComputer.h"
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "logic/loading/Thumbnail.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <chrono>
#include <utility>

ImageLoaderThread::ImageLoaderThread(std::shared_ptr<LoaderContext> context, unsigned int number,
                                     const LoaderRequest& request)
    : _context(std::move(context))
    , _session(_context->session)
    , _number(number)
    , _request(request)
{}

ImageLoaderThread::~ImageLoaderThread() { _context->requests.leave(_number); }

LoaderRequest ImageLoaderThread::request() const
{
    const std::lock_guard lock(_mutex);
    return _request;
}

bool ImageLoaderThread::join(const LoaderRequest& newer)
{
    const std::lock_guard lock(_mutex);
    if (_begun || _dropped())
        return false;
    _request.join(newer);
    _context->requests.setWay(_number, _request.way());
    return true;
}

bool ImageLoaderThread::_overtaken() const
{
    return _context->abandoned() || _dropped() ||
           _context->requests.overtaken(_number, _request.way());
}

void ImageLoaderThread::run()
{
    {
        const std::lock_guard lock(_mutex);
        if (!_context->requests.begin(_number))
            return;
        _begun = true;
        _data = _request.data;
    }
    _total.start();
    _step.start();
    try {
        const auto work = [this] {
            const bool loaded = _load();
            if (loaded && !_context->abandoned())
                _analyse();
            return loaded;
        };
        const bool found = morvend::imglib::withPlace([this] { return _place(); }, work);
        if (_context->abandoned())
            return;
        if (found)
            _deliver();
        else
            _endWithoutImage({});
    } catch (const std::exception& error) {
        _fail(error.what());
    } catch (...) {
        _fail("The image can't be loaded, for a reason that is not known: " + _place());
    }
    _session.closeOther();
}

std::string ImageLoaderThread::_place() const
{
    return _data.path.empty() ? "image " + std::to_string(_data.index) : _data.path;
}

bool ImageLoaderThread::_load()
{
    if (_request.task != LoaderRequest::TaskOpenSeries)
        _data.path.clear();  // of no meaning here, and not known yet
    switch (_request.task) {
    case LoaderRequest::TaskOpenSeries:
        _openSeries();
        break;
    case LoaderRequest::TaskOpenIndex:
        _session.comeBack();
        if (!_request.steps.empty())
            return _openStep();
        _openIndex();
        break;
    case LoaderRequest::TaskPushImage:
        _pushImage();
        break;
    }
    _complete();
    return true;
}

void ImageLoaderThread::_complete()
{
    _checkPixels();
    _data.path = _session.pathTo(_data.index);
}

void ImageLoaderThread::_checkPixels() const
{
    if (_data.image.empty())
        throw morvend::MRuntimeException("The image has no pixels");
}

void ImageLoaderThread::_openSeries()
{
    _step.restart();
    _data.index = _session.open(_data.path);
    _endStep(StepTimes::Open, "\nTIME OPENING SERIES: ");
    _step.restart();
    _data.image = _session.read(_data.index);
    _endStep(StepTimes::Source, "TIME LOADING IMAGE: ");
}

void ImageLoaderThread::_openIndex()
{
    _session.setAsked(_data.index);
    if (_data.index < 0)
        throw morvend::MOutOfRangeException("There is no image " + std::to_string(_data.index) +
                                            _session.rangeText());
    _readFromCacheOrSource();
}

bool ImageLoaderThread::_openStep()
{
    Steps steps = _session.steps();
    const int from = _request.fromAsked ? _session.asked() : _data.index;
    int number = from;
    bool ended = false;
    for (const int n : _request.steps) {
        const int next = steps.to(number, n);
        ended = next == number;
        number = next;
    }
    _data.index = number;
    if (number == _session.shown()) {
        if (ended && _request.signalLoadError)
            _context->notice("Image " + std::to_string(number) + " is the " +
                             (steps.forward() ? "last" : "first") + " of the series");
        return false;
    }
    if (number == from) {
        // Not in the series. Its number was requested explicitly, so it may still come.
        if (_request.fromAsked)
            return false;
        _openIndex();
        _complete();
        return true;
    }
    _session.setAsked(number);
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
    Steps::Failure failure;
    if (_canRead(first, true, failure))
        return true;
    bool say = true;
    if (!_request.signalLoadError) {
        // Asked for again and again: the rest only now and then.
        AwaitedImage& awaited = _session.awaited();
        const bool again = awaited.is(first);
        say = awaited.isOverdue(first, _session.stampOf(first), std::chrono::steady_clock::now());
        const int end = _session.end(steps.forward());
        Steps::Failure ignored;
        if (again && !say && (end == first || !_canRead(end, false, ignored)))
            return false;
    }
    int number = first;
    while (const auto next = steps.beyond(number, failure)) {
        if (_overtaken())
            return false;
        number = *next;
        if (_canRead(number, false, failure))
            return true;
    }
    if (steps.gaveUp())
        _gaveUpAt = number;
    if (say || _gaveUpAt)
        _sayNothingFound(steps);
    return false;
}

void ImageLoaderThread::_sayNothingFound(const Steps& steps) const
{
    const std::string limit =
        _gaveUpAt ? " as far as image " + std::to_string(*_gaveUpAt) : std::string();
    _context->notice(std::string("There is nothing to show ") +
                     (steps.forward() ? "after" : "before") + " image " +
                     std::to_string(_session.shown()) + limit + ": " + steps.leftOut().text());
}

bool ImageLoaderThread::_canRead(int number, bool cached, Steps::Failure& failure)
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
        throw;  // the next one would hang just as long
    } catch (const morvend::MException& error) {
        failure = Steps::Failure(error);
        return false;
    }
}

void ImageLoaderThread::_readFromCacheOrSource()
{
    _step.restart();
    const bool hit = _session.readAhead(_data.index, _data.image);
    _endStep(StepTimes::Cache, "\nTIME LOADING IMAGE FROM CACHE: ");
    // The preloader may know images that have come since the last look; even without a hit the
    // series may have grown.
    _session.catchUp(_data.index);
    if (hit)
        StepTimes::addHit();
    else
        _readFromSource();
}

void ImageLoaderThread::_readFromSource()
{
    _step.restart();
    _data.image = _session.read(_data.index);
    _endStep(StepTimes::Source, "TIME LOADING IMAGE FROM SOURCE: ");
}

void ImageLoaderThread::_pushImage()
{
    if (_data.image.empty())
        return;  // refused by the caller, before the series takes it
    _data.index = _session.push(_data.image);
}

void ImageLoaderThread::_analyse()
{
    _data.mask = _session.maskFixup()(_data.image);
    _step.restart();
    _data.thumbnailMask = _session.maskThumbnails().of(_data.mask);
    _endStep(StepTimes::Mask, "TIME COMPUTING MASK: ");
    _printSubtotal();

    _step.restart();
    _data.statistics.reset(new ImageStatistics);
    // The thumbnail is made along with the statistics: a pass of its own would wait for the memory.
    thumbnail::Builder thumbnail(_data.image);
    ComputeStatistics(_data.statistics.data())
        .compute(_data.image, _data.mask, [&](std::size_t pixel) { thumbnail.upTo(pixel); });
    if (_session.maskFixup().replaces(_data.image, *_data.statistics)) {
        _data.mask = *std::as_const(_data.image).optionalData().pixel_mask();
        _data.thumbnailMask = _session.maskThumbnails().of(_data.mask);
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
    if (_data.peakData.numberOfPeaks != 0)
        _data.peaks.emplace().setImage(_data.image, _data.mask);
    _endStep(StepTimes::Region, "TIME FOR ADDITIONAL COMPUTATION: ");
    if (_data.wantsMaxima)
        _data.maxima = std::make_shared<const morvend::imglib::BlockMaxima>(
            morvend::imglib::BlockMaxima::of(_data.image, &_data.mask));
    if (_data.pack)
        _data.packed = morvend::codec::PackedPixels::of(_data.image);
    // Hundreds of images may wait for a view that is slower than the workers.
    if (_data.packed)
        _data.image = morvend::codec::PackedPixels::outline(_data.image);
}

void ImageLoaderThread::_deliver()
{
    _session.keep(_data);
    _data.seriesPath = _session.openedAs();
    StepTimes::addImage();
    _context->requests.answer(_number);
    _printSubtotal();  // before the view prints its own lines
    _context->deliver(_data);
    if (!_leftOut.empty())
        _context->notice(_leftOut);
}

void ImageLoaderThread::_endWithoutImage(const std::string& message)
{
    // Waiting steps now count from its number. A search that gave up goes on with the next
    // step.
    if (!_context->requests.overtaken(_number, 0))
        _session.setAsked(_gaveUpAt.value_or(_session.shown()));
    _context->requests.answer(_number);
    _context->fail(message);
}

void ImageLoaderThread::_fail(const std::string& message)
{
    _endWithoutImage(_request.signalLoadError ? message : std::string());
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
