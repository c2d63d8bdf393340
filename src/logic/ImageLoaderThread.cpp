// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The steps from a request to a finished record.
#include "logic/ImageLoaderThread.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/MImageSeries.h"
#include "logic/RoiComputer.h"
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "logic/loading/Thumbnail.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <chrono>
#include <filesystem>
#include <new>
#include <utility>

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

}  // namespace

ImageLoaderThread::ImageLoaderThread(std::shared_ptr<LoaderContext> context, unsigned int number,
                                     ImageLoader::Task task, const ImageLoader::Data& data,
                                     bool signalLoadError)
    : _context(std::move(context))
    , _number(number)
    , _task(task)
    , _data(data)
    , _signalLoadError(signalLoadError)
    , _generation(_context->generation)
{}

ImageLoaderThread::~ImageLoaderThread() { _context->leave(_number); }

void ImageLoaderThread::run()
{
    if (_generation != _context->generation)
        return;
    _context->begin(_number);
    _total.start();
    _step.start();
    try {
        _load();
        if (_context->abandoned())
            return;
        _analyse();
        _deliver();
    } catch (const std::bad_alloc&) {
        _fail(QStringLiteral("Not enough memory to load the image"));
    } catch (const std::exception& error) {
        _fail(QString::fromStdString(error.what()));
    } catch (...) {
        _fail(QStringLiteral("The image can't be loaded, for a reason that is not known"));
    }
}

void ImageLoaderThread::_load()
{
    switch (_task) {
    case ImageLoader::TaskOpenSeries:
        _openSeries();
        break;
    case ImageLoader::TaskOpenIndex:
        _openIndex();
        break;
    case ImageLoader::TaskPushImage:
        _pushImage();
        break;
    }
    if (_data.image.empty())
        throw morvend::MRuntimeException("The image has no pixels");
    try {
        _data.path = _context->series.pathToImage(static_cast<std::size_t>(_data.index));
    } catch (const morvend::MRuntimeException&) {
        _data.path.clear();  // a series in memory
    }
}

void ImageLoaderThread::_openSeries()
{
    MImageSeries& series = _context->series;
    PreloaderClient& preloader = _context->preloader;
    _step.restart();
    _data.index = series.open(_data.path);
    _context->opened(_data.path);
    _context->headerKnown = false;  // what the client has is of the series before
    preloader.put(static_cast<unsigned long>(_data.index), absolute(_data.path));
    _endStep(StepTimes::Open, "\nTIME OPENING SERIES: ");
    _step.restart();
    _data.image = series.at(static_cast<std::size_t>(_data.index));
    _noteHeader();
    _endStep(StepTimes::Source, "TIME LOADING IMAGE: ");
}

void ImageLoaderThread::_openIndex()
{
    _context->comeBack();
    MImageSeries& series = _context->series;
    if (_data.index < 0)
        throw morvend::MOutOfRangeException("There is no image " + std::to_string(_data.index) +
                                            rangeText(series));
    _step.restart();
    const auto index = static_cast<unsigned long>(_data.index);
    const bool hit = _context->headerKnown && _context->preloader.get(_data.image, index, "");
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
    _data.image = _context->series.at(static_cast<std::size_t>(_data.index));
    if (!_context->headerKnown)
        _noteHeader();  // the image that the series was opened at can't be read
    _endStep(StepTimes::Source, "TIME LOADING IMAGE FROM SOURCE: ");
}

void ImageLoaderThread::_noteHeader()
{
    _context->preloader.setDefaultOptData(std::as_const(_data.image).optionalData());
    _context->headerKnown = true;
}

void ImageLoaderThread::_pushImage()
{
    if (_data.image.empty())
        return;                             // refused by the caller, before the series takes it
    _context->preloader.setEnabled(false);  // there is no file to read ahead
    MImageSeries& series = _context->series;
    try {
        series.pushBack(_data.image);
    } catch (const morvend::MRuntimeException&) {
        // The open series comes from a file: begin one in memory.
        series.open(pushedImages);
        series.pushBack(_data.image);
    }
    _context->opened({});
    _data.index = series.last();
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
    StepTimes::addImage();
    _context->answer(_number);
    _context->deliver(_data, [this] { _printSubtotal(); });
}

void ImageLoaderThread::_fail(const QString& message)
{
    _context->answer(_number);
    _context->fail(message, !_signalLoadError);
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
