// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// HDF5 series on disk and loaders that step through them, for the benchmarks of loading.
#pragma once

#include "bench/LoadingFrame.h"
#include "imagelib/io/MHdf5Writer.h"
#include "logic/loading/ImageLoader.h"
#include "tests/support/TempFolder.h"

#include <QSemaphore>

#include <stdexcept>
#include <string>

namespace tarvik::bench {

/// A series of 32-bit frames, packed by bitshuffle and LZ4, with a mask; its frames are numbered
/// from 1 and repeat three different ones.
class LoadingSeries {
public:
    LoadingSeries(int megapixels, int frames)
        : _frames(frames)
    {
        using morvend::imglib::MCompression;
        std::vector<LoadingFrame<unsigned>> different;
        for (unsigned seed = 1; seed <= 3; ++seed)
            different.emplace_back(megapixels, seed);
        _mask = different.front().mask;
        morvend::imglib::MHdf5Writer writer(master(), frames, {}, MCompression::BITSHUFFLE_LZ4);
        for (int i = 0; i < frames; ++i) {
            morvend::imglib::MImage& image = different[std::size_t(i) % different.size()].image;
            image.optionalData().set_pixel_mask(_mask);
            image.optionalData().set_saturation_value(0x7ffffffe);
            writer.write(image);
        }
    }

    int frames() const { return _frames; }
    const morvend::imglib::MImage& mask() const { return _mask; }
    std::string master() const { return _folder / "bench_master.h5"; }
    std::string dataFile() const { return _folder / "bench_data_000001.h5"; }

private:
    const tests::TempFolder _folder;
    int _frames;
    morvend::imglib::MImage _mask;
};

/// A view's loader, driven from one thread.
class Stepper {
public:
    explicit Stepper(const std::string& path)
    {
        QObject::connect(
            &_loader, &ImageLoader::newImage, &_loader, [this] { _done.release(); },
            Qt::DirectConnection);
        QObject::connect(
            &_loader, &ImageLoader::loadError, &_loader,
            [this](const QString& reason) {
                _failure = reason.toStdString();
                _done.release();
            },
            Qt::DirectConnection);
        ImageLoader::Data request;
        request.path = path;
        _run(ImageLoader::TaskOpenSeries, request);
    }

    /// Goes to an image; returns when its record is finished.
    void go(int index)
    {
        ImageLoader::Data request;
        request.index = index;
        _run(ImageLoader::TaskOpenIndex, request);
    }
    const ImageLoader::Data& record() const { return _record; }

private:
    void _run(ImageLoader::Task task, const ImageLoader::Data& request)
    {
        _loader.open(task, request, true);
        _done.acquire();
        if (!_failure.empty())
            throw std::runtime_error(_failure);
        std::list<ImageLoader::Data> records;
        _loader.results(records);
        _record = records.back();
    }

    QSemaphore _done;
    std::string _failure;
    ImageLoader::Data _record;
    ImageLoader _loader;  // last: its jobs use the others
};

}  // namespace tarvik::bench
