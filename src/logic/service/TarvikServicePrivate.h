// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The state of one image view.
#pragma once

#include "logic/TarvikService.h"
#include "logic/analysis/roi/RegionWorker.h"
#include "logic/core/RecordGroups.h"
#include "logic/detector/HalvoClient.h"
#include "logic/loading/ImageLoader.h"
#include "logic/service/AutoModes.h"
#include "logic/service/ContainerWatch.h"
#include "logic/service/HeaderEdits.h"
#include "logic/service/ViewRecord.h"

#include <QElapsedTimer>

/// What a service holds, and the work behind its operations; signals go out through the service.
class TarvikService::TarvikServicePrivate {
public:
    TarvikServicePrivate(RecordGroups& groups, std::shared_ptr<HalvoService> detector,
                         TarvikService& owner);
    /// Ends what works by itself. The first step of destruction, as long as the service is whole.
    void end();

    /// A request with the view's records.
    ImageLoader::Data request() const;
    /// Goes to an image of the open series; without image nothing happens.
    void openIndex(int index, bool signalLoadError);

    /// Makes a finished load visible.
    void newImage();
    /// Moves the view to the group of the new image's size. What the user has not changed during
    /// the load is taken over from the group.
    void changeGroups(const ImageLoader::Data& request);

    /// Has the view's region computed anew, off this thread.
    void computeRegion();
    /// Takes a region over that has been computed meanwhile.
    void regionComputed();
    /// Waits for the region that is being computed.
    void awaitRegion();
    void setStatisticsData(const StatisticsData& data);
    /// An active centred circle and the beam centre of the header follow one another.
    void applyPowderCentreToBeamCentre();
    void applyBeamCentreToPowderCentre();

    TarvikService& service;
    ViewRecord<ContrastData> _contrast;
    ViewRecord<ViewportData> _viewport;
    ViewRecord<StatisticsData> _statisticsRecord;
    ViewRecord<PeakData> _peaks;
    /// Restarted by every request.
    QElapsedTimer _loadClock;
    std::list<ImageLoader::Data> _finished;  // loads that are not visible yet
    MImage _image;
    MImage _thumbnail;
    MImage _mask;
    MImage _thumbnailMask;
    HeaderEdits _headerEdits;
    PlottingMode _plottingMode = PlottingMode::Flat;
    bool _showResolutionRings = false;
    bool _highlightDefective = true;
    bool _highlightSaturated = true;
    int _imageIndex = -1;
    std::unique_ptr<ContainerWatch> _watch;
    QSharedPointer<ImageStatistics> _statistics;
    ComputedRegion _region;
    ImagePeaks _imagePeaks;
    bool _imagePeaksDirty = true;  // must be searched for before they are read
    std::string _imagePath;
    QString _additionalSyncID;
    const MColorTable* _defaultColorTable = nullptr;
    std::list<const MColorTable*> _colorTables;
    MDrawingList _paintList;
    ImageLoader _imageLoader;
    AutoModes _modes;
    std::unique_ptr<HalvoClient> _halvoClient;
    StatisticsData _regionAskedFor;
    bool _regionUnsignalled = false;  // there, but not announced yet
    RegionWorker _regionWorker;

private:
    bool _activeCentredCircle() const;
    bool _beamCentreIsPowderCentre() const;
};
