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

#include <new>

using morvend::imglib::MImage;

ImageLoaderThread::ImageLoaderThread(ImageLoader* loader, ImageLoader::Task task,
                                     const ImageLoader::Data& data, bool signalLoadError,
                                     const std::atomic<bool>& abort)
    : _loader(loader)
    , _task(task)
    , _data(data)
    , _signalLoadError(signalLoadError)
    , _abort(abort)
    , _generation(loader->_generation)
{
    ++_loader->_requests;
}

ImageLoaderThread::~ImageLoaderThread() { --_loader->_requests; }

void ImageLoaderThread::run()
{
    _loader->_awaitHandOver();
    if (_abort || _generation != _loader->_generation)
        return;
    _total.start();
    _step.start();
    try {
        _load();
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
        _data.path = _loader->_series->pathToImage(static_cast<std::size_t>(_data.index));
    } catch (const morvend::MRuntimeException&) {
        _data.path.clear();  // a series in memory
    }
}

void ImageLoaderThread::_openSeries()
{
    _step.restart();
    _data.index = _loader->_series->open(_data.path);
    console::printTime("\nTIME OPENING SERIES: ", _step.elapsed());
    _step.restart();
    _data.image = _loader->_series->at(static_cast<std::size_t>(_data.index));
    console::printTime("TIME LOADING IMAGE: ", _step.elapsed());
}

void ImageLoaderThread::_openIndex()
{
    if (_data.index < 0)
        throw morvend::MOutOfRangeException("There is no image " + std::to_string(_data.index) +
                                            " in this series");
    _step.restart();
    _data.image = _loader->_series->at(static_cast<std::size_t>(_data.index));
    console::printTime("TIME LOADING IMAGE FROM SOURCE: ", _step.elapsed());
}

void ImageLoaderThread::_pushImage()
{
    if (_data.image.empty())
        return;  // refused by the caller, before the series takes it
    morvend::imglib::MImageSeries& series = *_loader->_series;
    try {
        series.pushBack(_data.image);
    } catch (const morvend::MRuntimeException&) {
        // The open series comes from a file: begin one in memory.
        series.open(pushedImages);
        series.pushBack(_data.image);
    }
    _data.index = series.last();
}

void ImageLoaderThread::_analyse()
{
    _data.mask = _loader->_maskFixup(_data.image);
    _step.restart();
    _data.thumbnailMask = thumbnail::ofMask(_data.mask);
    console::printTime("TIME COMPUTING MASK: ", _step.elapsed());
    _printSubtotal();

    _data.statistics.reset(new ImageStatistics);
    ComputeStatistics(_data.statistics.data()).compute(_data.image, _data.mask);
    _printSubtotal();

    _step.restart();
    _data.thumbnail = thumbnail::ofImage(_data.image, _data.statistics->hasNegatives);
    assert(_data.thumbnail.width() == _data.thumbnailMask.width());
    assert(_data.thumbnail.height() == _data.thumbnailMask.height());
    _data.thumbnail.optionalData().set_pixel_mask(_data.thumbnailMask);
    RoiComputer region;
    region.setImage(_data.image);
    region.setMask(_data.mask);
    region.setStatisticsData(_data.statisticsData);
    _data.roiStatistics = region.computeOrWarn();
    console::printTime("TIME FOR ADDITIONAL COMPUTATION: ", _step.elapsed());
}

void ImageLoaderThread::_deliver()
{
    // Held until the last line is printed, so that the consumer's own line comes after it.
    const std::lock_guard lock(_loader->_mutex);
    _loader->_noteBounds();
    _loader->_results.push_back(_data);
    emit _loader->newImage();
    _printSubtotal();
}

void ImageLoaderThread::_fail(const QString& message)
{
    {
        const std::lock_guard lock(_loader->_mutex);
        _loader->_noteBounds();
    }
    if (_signalLoadError)
        emit _loader->loadError(message);
}

void ImageLoaderThread::_printSubtotal() const
{
    console::printTime("               SUBTOTAL TIME LOADING: ", _total.elapsed());
}
