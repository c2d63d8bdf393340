// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The view service: wiring, and access to what the view holds.
#include "logic/TarvikService.h"

#include "logic/geometry/RingAdvice.h"
#include "logic/service/TarvikServicePrivate.h"

#include <QFile>

#include <limits>

using morvend::imglib::MImage;

TarvikService::TarvikServicePrivate::TarvikServicePrivate(RecordGroups& groups,
                                                          std::shared_ptr<HalvoService> detector,
                                                          TarvikService& owner)
    : service(owner)
    , _contrast(groups.of<ContrastData>(),
                [this] { emit service.newContrastSignal(_contrast.value()); })
    , _viewport(groups.of<ViewportData>(),
                [this] { emit service.newViewportSignal(_viewport.value()); })
    , _statisticsRecord(groups.of<StatisticsData>(),
                        [this] {
                            applyPowderCentreToBeamCentre();
                            emit service.newStatisticsSignal(_statisticsRecord.value());
                        })
    , _peaks(groups.of<PeakData>(), [this] { emit service.newPeakSignal(_peaks.value()); })
    , _modes(owner, _imageLoader)
    , _halvoClient(std::make_unique<HalvoClient>(std::move(detector)))
    , _regionWorker([&owner] {
        QMetaObject::invokeMethod(&owner, &TarvikService::_regionComputedSlot,
                                  Qt::QueuedConnection);
    })
{
    connect(&_imageLoader, &ImageLoader::newImage, &service, &TarvikService::_newImageSlot);
    connect(&_imageLoader, &ImageLoader::loadError, &service, &TarvikService::imageLoadErrorSignal);
    connect(&_imageLoader, &ImageLoader::waitingSignal, &service, &TarvikService::waitingSignal);
    connect(&_imageLoader, &ImageLoader::notice, &service, &TarvikService::noticeSignal);
    connect(&_imageLoader, &ImageLoader::imageContainerChangedSignal, &service,
            &TarvikService::imageContainerChangedSignal);
    const auto open = qOverload<MImage>(&TarvikService::openImage);
    connect(&_modes.monitor(), &HalvoMonitor::newImage, &service, open);
    connect(&service, &TarvikService::newImageSignal, &_modes.monitor(),
            &HalvoMonitor::newImageSlot);
    connect(_halvoClient.get(), &HalvoClient::monitorSignal, &service, open);
}

void TarvikService::TarvikServicePrivate::end()
{
    _halvoClient.reset();
    _modes.end();
}

TarvikService::TarvikService(RecordGroups& groups, std::shared_ptr<HalvoService> detector,
                             QObject* parent)
    : QObject(parent)
    , _d(std::make_unique<TarvikServicePrivate>(groups, std::move(detector), *this))
{}

TarvikService::~TarvikService() { _d->end(); }

void TarvikService::_newImageSlot() { _d->newImage(); }
void TarvikService::_regionComputedSlot() { _d->regionComputed(); }

ContrastData TarvikService::contrastData() const { return _d->_contrast.value(); }
ViewportData TarvikService::viewportData() const { return _d->_viewport.value(); }
StatisticsData TarvikService::statisticsData() const { return _d->_statisticsRecord.value(); }
PeakData TarvikService::peakData() const { return _d->_peaks.value(); }

const MImage& TarvikService::image() const { return _d->_image; }
const MImage& TarvikService::thumbnail() const { return _d->_thumbnail; }
const MImage& TarvikService::mask() const { return _d->_mask; }
const MImage& TarvikService::thumbnailMask() const { return _d->_thumbnailMask; }
bool TarvikService::imageLoaded() const { return !_d->_image.empty(); }

QSize TarvikService::imageSize() const
{
    return imageLoaded() ? QSize(_d->_image.width(), _d->_image.height()) : QSize(-1, -1);
}

int TarvikService::imageIndex() const { return _d->_imageIndex; }
int TarvikService::firstIndex() const { return imageLoaded() ? _d->_imageLoader.firstIndex() : -1; }
int TarvikService::lastIndex() const { return imageLoaded() ? _d->_imageLoader.lastIndex() : -1; }

QString TarvikService::imagePath() const
{
    return QFile::decodeName(QByteArray::fromStdString(_d->_imagePath));
}

QString TarvikService::imageDescription() const
{
    return QString::fromStdString(optionalData().imageDescription().get_value_or(std::string()));
}

QSharedPointer<const ImageStatistics> TarvikService::statistics() const { return _d->_statistics; }

const RoiStatistics& TarvikService::roiStatistics() const
{
    _d->awaitRegion();
    return _d->_region.numbers;
}

bool TarvikService::regionPending() const { return _d->_regionWorker.pending(); }
const TarvikService::ComputedRegion& TarvikService::computedRegion() const { return _d->_region; }

ImagePeaks TarvikService::imagePeaks()
{
    if (_d->_imagePeaksDirty && imageLoaded()) {
        _d->_imagePeaks.setImage(_d->_image, _d->_mask);
        _d->_imagePeaksDirty = false;
    }
    return _d->_imagePeaks;
}

const TarvikService::Header& TarvikService::optionalData() const { return image().optionalData(); }

const TarvikService::Header& TarvikService::globalHeader() const
{
    return _d->_headerEdits.edits();
}

PlottingMode TarvikService::plottingMode() const { return _d->_plottingMode; }
bool TarvikService::showResolutionRings() const { return _d->_showResolutionRings; }
bool TarvikService::highlightDefective() const { return _d->_highlightDefective; }
bool TarvikService::highlightSaturated() const { return _d->_highlightSaturated; }

void TarvikService::setPlottingMode(PlottingMode mode)
{
    _d->_plottingMode = mode;
    emit plottingModeSignal(mode);
}

void TarvikService::toggleShowResolutionRings(bool show)
{
    if (std::exchange(_d->_showResolutionRings, show) != show)
        emit resolutionRingsSignal(show);
}

void TarvikService::toggleHighlightDefective(bool highlight)
{
    if (std::exchange(_d->_highlightDefective, highlight) != highlight)
        emit defectiveSignal(highlight);
}

void TarvikService::toggleHighlightSaturated(bool highlight)
{
    if (std::exchange(_d->_highlightSaturated, highlight) != highlight)
        emit saturatedSignal(highlight);
}

const TarvikService::MColorTable* TarvikService::defaultColorTable() const
{
    return _d->_defaultColorTable;
}

void TarvikService::setDefaultColorTable(const MColorTable* colorTable)
{
    if (std::exchange(_d->_defaultColorTable, colorTable) == colorTable)
        return;
    // A view whose contrast names no table shows this one.
    ContrastData recoloured = contrastData();
    if (recoloured.colorTable || !recoloured.defined)
        return;
    recoloured.dragUpdate = false;
    emit newContrastSignal(recoloured);
}

const std::list<const TarvikService::MColorTable*>& TarvikService::colorTables() const
{
    return _d->_colorTables;
}

void TarvikService::setColorTables(const std::list<const MColorTable*>& colorTables)
{
    _d->_colorTables = colorTables;
}

void TarvikService::setMovieMode(bool on) { _d->_modes.setMovie(on); }
bool TarvikService::movieMode() const { return _d->_modes.movie(); }
void TarvikService::setMovieModeStep(int step) { _d->_modes.autoLoader().setStepSize(step); }
int TarvikService::movieModeStep() const { return _d->_modes.autoLoader().stepSize(); }
void TarvikService::setWatchSeriesMode(bool on) { _d->_modes.setWatchSeries(on); }
bool TarvikService::watchSeriesMode() const { return _d->_modes.watchSeries(); }
void TarvikService::setHalvoMonitorMode(bool on) { _d->_modes.setHalvoMonitor(on); }
bool TarvikService::halvoMonitorMode() const { return _d->_modes.halvoMonitor(); }

void TarvikService::setHalvoMonitorHost(QString host, int port, double minPause)
{
    _d->_modes.setHalvoMonitorHost(host, port, minPause);
}

QString TarvikService::halvoMonitorHost() const { return _d->_modes.host(); }
int TarvikService::halvoMonitorPort() const { return _d->_modes.port(); }
double TarvikService::halvoMonitorMinPause() const { return _d->_modes.minPause(); }
HalvoClient* TarvikService::halvoClient() const { return _d->_halvoClient.get(); }
bool TarvikService::loading() const { return _d->_imageLoader.loading(); }

const TarvikService::MDrawingList& TarvikService::paintList() const { return _d->_paintList; }

void TarvikService::addToPaintList(const MDrawingList& list)
{
    for (std::size_t i = 0; i < list.size(); ++i)
        _d->_paintList.pushBack(list[i]);
    emit paintListSignal();
}

void TarvikService::setPaintList(MDrawingList list)
{
    _d->_paintList.swap(list);
    emit paintListSignal();
}

void TarvikService::clearPaintList()
{
    _d->_paintList.clear();
    emit paintListSignal();
}

std::string TarvikService::syncID() const
{
    if (!imageLoaded())
        return {};
    return std::to_string(_d->_image.width()) + '_' + std::to_string(_d->_image.height()) + '_' +
           _d->_additionalSyncID.toStdString();
}

void TarvikService::setAdditionalSyncID(const QString& additionalSyncID)
{
    _d->_additionalSyncID = additionalSyncID;
}

bool TarvikService::resolutionDefined() const
{
    return geometry::resolutionDefined(optionalData());
}

bool TarvikService::distanceDefined() const { return geometry::distanceDefined(optionalData()); }

bool TarvikService::powderPlotDefined() const
{
    return geometry::beamCentreDefined(optionalData());
}

void TarvikService::beamCentre(double& x, double& y) const
{
    x = y = std::numeric_limits<double>::quiet_NaN();
    if (powderPlotDefined()) {
        x = *optionalData().beam_center_x();
        y = *optionalData().beam_center_y();
    }
}

int TarvikService::computePowderRadius(int x, int y) const
{
    return geometry::powderRadius(optionalData(), x, y);
}

double TarvikService::distance(int x, int y) const
{
    return geometry::distance(optionalData(), x, y);
}

double TarvikService::resolution(int x, int y) const
{
    return geometry::resolution(optionalData(), x, y);
}

QString TarvikService::intensityString(int x, int y) const
{
    return CursorInfo::intensityOf(image(), x, y);
}

void TarvikService::recommendResolutionRadius(int n, double& centreX, double& centreY,
                                              std::vector<double>& radii,
                                              std::vector<QString>& labels) const
{
    geometry::RingAdvice advice =
        geometry::adviseRings(optionalData(), image().width(), image().height(), n);
    radii = std::move(advice.radii);
    labels = std::move(advice.labels);
    if (resolutionDefined())
        beamCentre(centreX, centreY);
}

void TarvikService::setCursorCoordinates(double imgX, double imgY)
{
    emit cursorInfoSignal(CursorInfo::of(image(), imgX, imgY));
}

CursorInfo::CursorInfo(const TarvikService* service, double imgX, double imgY)
    : CursorInfo(of(service->image(), imgX, imgY))
{}

void TarvikService::resetHeader()
{
    if (!imageLoaded())
        return;
    _d->_headerEdits.reset(_d->_image);
    emit headerChangedSignal();
    _d->applyBeamCentreToPowderCentre();
}

void TarvikService::applyHeaderToSeries(const Header& header)
{
    if (!imageLoaded())
        return;
    _d->_headerEdits.apply(header, _d->_image, _d->_imageIndex);
    emit headerChangedSignal();
    _d->applyBeamCentreToPowderCentre();
}
