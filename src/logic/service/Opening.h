// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Requests of a view for images.
#pragma once

#include "logic/loading/ImageLoader.h"
#include "logic/service/ContainerWatch.h"
#include "logic/service/Records.h"

#include <QElapsedTimer>
#include <QObject>

#include <list>
#include <memory>
#include <optional>

/// Hands requests to the loader, each with the view's records, and finished loads to the view; has
/// the folder of the image watched. The functions that open are those of TarvikService.
/// Thread: GUI only.
class Opening : public QObject {
    Q_OBJECT
public:
    using MImage = morvend::imglib::MImage;

    /// @param shown, records  outlive this object
    Opening(const ShownImage& shown, const Records& records);

    /// Whether images come with their reduced images of largest pixels from now on.
    void setMaxima(bool on) { _maxima = on; }
    /// Whether their pixels come packed.
    void setPacking(bool packing) { _packing = packing; }
    const ImageLoader& loader() const { return _loader; }
    void openImage(const char* fileName);
    void openImage(int imageIndex, bool signalLoadError = true);
    void openImage(const MImage& image);
    void nextImage(int n, bool signalLoadError);
    void seekImage(int imageIndex);
    SeriesState seriesState() const;
    void listReadAhead() { _loader.listReadAhead(); }
    void openLast(bool signalLoadError);
    /// Drops the requests that have not begun.
    void dropRequests() { _loader.dropTaskQueue(); }
    bool loading() const { return _loader.loading(); }
    /// -1 without an image.
    int firstIndex() const;
    int lastIndex() const;

    /// The oldest load that was finished, one for each newImage() of the loader.
    std::optional<LoaderData> takeFinished();
    /// Milliseconds since the last request.
    qint64 elapsed() const { return _clock.elapsed(); }

    void scan() { _loader.update(); }
    void watch(bool on);
    /// Moves a watch to the image's folder.
    void watchShownImage();

signals:
    /// Something may have changed in the folder being watched.
    void folderChangedSignal(const QString& folder);

private:
    LoaderData _request() const;

    const ShownImage& _shown;
    const Records& _records;
    ImageLoader _loader;
    bool _packing = false;
    bool _maxima = false;
    std::list<LoaderData> _finished;  // loads that are not visible yet
    QElapsedTimer _clock;             // restarted by every request
    std::unique_ptr<ContainerWatch> _watch;
};
