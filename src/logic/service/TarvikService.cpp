// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/TarvikService.h"

#include "logic/geometry/RingAdvice.h"
#include "logic/output/OutputFiles.h"
#include "logic/output/Pictures.h"
#include "logic/output/RegionReport.h"
#include "logic/service/HeaderFiles.h"
#include "logic/service/TarvikServicePrivate.h"
#include "logic/support/Console.h"

#include <QFile>

#include <limits>
#include <stdexcept>
#include <utility>

using morvend::imglib::MImage;

TarvikService::TarvikService(RecordGroups& groups, std::shared_ptr<HalvoService> detector,
                             QObject* parent)
    : QObject(parent)
    , _d(std::make_unique<TarvikServicePrivate>(*this, groups, std::move(detector)))
{}

TarvikService::~TarvikService() { _d->end(); }

// Records.

ContrastData TarvikService::contrastData() const { return _d->records.contrast(); }
ViewportData TarvikService::viewportData() const { return _d->records.viewport(); }
StatisticsData TarvikService::statisticsData() const { return _d->records.statistics(); }
PeakData TarvikService::peakData() const { return _d->records.peaks(); }

// The image.

const MImage& TarvikService::image() const
{
    _d->packer.looked();
    return _d->shown.whole();
}

void TarvikService::setPixelsPacked(bool packed)
{
    _d->packsPixels = packed;
    _d->updatePacking();
}

bool TarvikService::pixelsAtHand() const
{
    return std::as_const(_d->shown.image).cdata() != nullptr;
}

const MImage& TarvikService::thumbnail() const { return _d->shown.thumbnail; }
const MImage& TarvikService::mask() const { return _d->shown.mask; }
const MImage& TarvikService::thumbnailMask() const { return _d->shown.thumbnailMask; }
bool TarvikService::imageLoaded() const { return _d->shown.loaded(); }

QSize TarvikService::imageSize() const
{
    return imageLoaded() ? QSize(_d->shown.image.width(), _d->shown.image.height()) : QSize(-1, -1);
}

bool TarvikService::floatingPixels() const { return _d->shown.floatingPixels(); }

int TarvikService::imageIndex() const { return _d->shown.index; }
int TarvikService::firstIndex() const { return _d->opening.firstIndex(); }
int TarvikService::lastIndex() const { return _d->opening.lastIndex(); }

QString TarvikService::imagePath() const
{
    return QFile::decodeName(QByteArray::fromStdString(_d->shown.path));
}

QString TarvikService::seriesPath() const
{
    return QFile::decodeName(QByteArray::fromStdString(_d->shown.seriesPath));
}

QString TarvikService::imageDescription() const
{
    return QString::fromStdString(optionalData().imageDescription().get_value_or(std::string()));
}

QSharedPointer<const ImageStatistics> TarvikService::statistics() const
{
    return _d->shown.statistics;
}

const RoiStatistics& TarvikService::roiStatistics() const
{
    return _d->records.region().awaitNumbers();
}

QString TarvikService::roiStatisticsToString() const
{
    return output::regionReport(imagePath(), statisticsData(), roiStatistics());
}

void TarvikService::writeRoiStatisticsToFile(const char* fileName) const
{
    try {
        output::writeBytes(roiStatisticsToString().toUtf8(), QFile::decodeName(fileName));
    } catch (const morvend::MNoFileAccessException&) {
        throw std::runtime_error(fileName);
    }
}

bool TarvikService::regionPending() const { return _d->records.region().pending(); }
const ComputedRegion& TarvikService::computedRegion() const
{
    return _d->records.region().computed();
}

ImagePeaks TarvikService::imagePeaks() { return _d->records.foundPeaks().foundNow(); }
bool TarvikService::peaksPending() const { return _d->records.foundPeaks().pending(); }
const ImagePeaks& TarvikService::computedPeaks() const { return _d->records.foundPeaks().found(); }

const TarvikService::Header& TarvikService::optionalData() const
{
    return std::as_const(_d->shown.image).optionalData();
}
const TarvikService::Header& TarvikService::globalHeader() const { return _d->headerEdits.edits(); }

// How it is shown.

ContrastChoice TarvikService::contrastChoice() const { return _d->contrastChooser.choice; }
PlottingMode TarvikService::plottingMode() const { return _d->plottingMode; }
Minification TarvikService::minification() const { return _d->maximaMaker.minification(); }

std::shared_ptr<const morvend::imglib::BlockMaxima> TarvikService::blockMaxima() const
{
    return _d->shown.maxima;
}

bool TarvikService::showResolutionRings() const { return _d->showResolutionRings; }
bool TarvikService::highlightDefective() const { return _d->highlightDefective; }
bool TarvikService::highlightSaturated() const { return _d->highlightSaturated; }

const TarvikService::MColorTable* TarvikService::defaultColorTable() const
{
    return _d->records.defaultColorTable();
}

void TarvikService::setDefaultColorTable(const MColorTable* colorTable)
{
    _d->records.setDefaultColorTable(colorTable);
}

const std::list<const TarvikService::MColorTable*>& TarvikService::colorTables() const
{
    return _d->colorTables;
}

void TarvikService::setColorTables(const std::list<const MColorTable*>& colorTables)
{
    _d->colorTables = colorTables;
}

// Pictures and files.

ImageSnapshot TarvikService::snapshot() const
{
    return {imageLoaded() ? image() : MImage(), mask(), shownContrast(), highlightDefective(),
            highlightSaturated()};
}

ContrastData TarvikService::shownContrast() const
{
    ContrastData contrast = contrastData();
    if (!contrast.colorTable)
        contrast.colorTable = defaultColorTable();
    return contrast;
}

QImage TarvikService::colorLegend(int width, int height) const
{
    return pictures::colorLegend(shownContrast(), width, height);
}

void TarvikService::exportImage(const QString& fileName, const QString& format,
                                const morvend::imglib::MRect& legend) const
{
    output::exportImage(snapshot(), fileName, format, legend);
}

void TarvikService::saveAs(const QString& fileName, const QString& extension) const
{
    output::saveAs(snapshot().image, fileName, extension);
}

// Modes and the detector.

bool TarvikService::movieMode() const { return _d->modes.on(ViewDriver::Mode::Movie); }
bool TarvikService::watchSeriesMode() const { return _d->modes.on(ViewDriver::Mode::WatchSeries); }
bool TarvikService::halvoMonitorMode() const { return _d->modes.on(ViewDriver::Mode::Monitor); }
int TarvikService::movieModeStep() const { return _d->modes.autoLoader().stepSize(); }
QString TarvikService::halvoMonitorHost() const { return _d->modes.host(); }
int TarvikService::halvoMonitorPort() const { return _d->modes.port(); }
double TarvikService::halvoMonitorMinPause() const { return _d->modes.minPause(); }
HalvoClient* TarvikService::halvoClient() const { return _d->halvoClient.get(); }
bool TarvikService::loading() const { return _d->opening.loading(); }

std::unique_ptr<WriteHeaderToFilesThread>
TarvikService::writeHeaderToFilesThread(const Header& header) const
{
    return headerFilesBatch(_d->shown.path, header);
}

const TarvikService::MDrawingList& TarvikService::paintList() const { return _d->paintList; }

std::string TarvikService::syncID() const { return _d->records.syncId(); }

void TarvikService::setAdditionalSyncID(const QString& additionalSyncID)
{
    _d->records.setAdditionalSyncId(additionalSyncID);
}

// Geometry from the header.

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
        geometry::adviseRings(optionalData(), _d->shown.image.width(), _d->shown.image.height(), n);
    radii = std::move(advice.radii);
    labels = std::move(advice.labels);
    if (resolutionDefined())
        beamCentre(centreX, centreY);
}

// Setters of records. Slots keep copies of what they are given, which may be the very record that
// they change.
// NOLINTBEGIN(performance-unnecessary-value-param)

void TarvikService::setContrastData(ContrastData data) { _d->records.setContrast(data); }
void TarvikService::setViewportData(ViewportData data) { _d->records.setViewport(data); }
void TarvikService::setStatisticsData(StatisticsData data) { _d->records.region().set(data); }
void TarvikService::setPeakData(PeakData data) { _d->records.setPeaks(data); }

// Opening.

void TarvikService::openImage(const char* fileName) { _d->opening.openImage(fileName); }
void TarvikService::openImage(int imageIndex) { _d->opening.openImage(imageIndex); }
void TarvikService::openImage(MImage image) { _d->opening.openImage(image); }

void TarvikService::nextImage(int n, bool signalLoadError)
{
    _d->opening.nextImage(n, signalLoadError);
}

void TarvikService::seekImage(int imageIndex) { _d->opening.seekImage(imageIndex); }
void TarvikService::listReadAhead() { _d->opening.listReadAhead(); }
SeriesState TarvikService::seriesState() const { return _d->opening.seriesState(); }
void TarvikService::openLast(bool signalLoadError) { _d->opening.openLast(signalLoadError); }
void TarvikService::scanImageContainer() { _d->opening.scan(); }
void TarvikService::watchImageContainer(bool watch) { _d->opening.watch(watch); }

// Switching modes.

void TarvikService::setMovieMode(bool on) { _d->modes.setMovie(on); }
void TarvikService::setMovieModeStep(int step) { _d->modes.autoLoader().setStepSize(step); }
void TarvikService::setWatchSeriesMode(bool on) { _d->modes.setWatchSeries(on); }
void TarvikService::setHalvoMonitorMode(bool on) { _d->modes.setHalvoMonitor(on); }

void TarvikService::setHalvoMonitorHost(QString host, int port, double minPause)
{
    _d->modes.setHalvoMonitorHost(host, port, minPause);
}
// NOLINTEND(performance-unnecessary-value-param)

// Switching what is shown.

void TarvikService::setContrastChoice(const ContrastChoice& choice)
{
    if (std::exchange(_d->contrastChooser.choice, ContrastChoice(choice)) != choice)
        emit contrastChoiceSignal();
}

void TarvikService::chooseContrast()
{
    if (contrastChoice().partInView)
        emit partInViewWantedSignal();
    else
        _d->contrastChooser.chooseForAll();
}

void TarvikService::chooseContrastOf(const QRect& part)
{
    _d->packer.looked();
    _d->contrastChooser.chooseFor(part);
}

void TarvikService::setPlottingMode(PlottingMode mode)
{
    _d->plottingMode = mode;
    emit plottingModeSignal(mode);
}

void TarvikService::setMinification(Minification minification)
{
    if (this->minification() == minification)
        return;
    _d->opening.setMaxima(minification == Minification::Largest);
    _d->packer.looked();
    _d->maximaMaker.setMinification(minification);
    emit minificationSignal(minification);
}

void TarvikService::toggleShowResolutionRings(bool show)
{
    if (std::exchange(_d->showResolutionRings, show) != show)
        emit resolutionRingsSignal(show);
}

void TarvikService::toggleHighlightDefective(bool highlight)
{
    if (std::exchange(_d->highlightDefective, highlight) != highlight)
        emit defectiveSignal(highlight);
}

void TarvikService::toggleHighlightSaturated(bool highlight)
{
    if (std::exchange(_d->highlightSaturated, highlight) != highlight)
        emit saturatedSignal(highlight);
}

void TarvikService::addToPaintList(const MDrawingList& list)
{
    for (std::size_t i = 0; i < list.size(); ++i)
        _d->paintList.pushBack(list[i]);
    emit paintListSignal();
}

void TarvikService::setPaintList(MDrawingList list)
{
    _d->paintList.swap(list);
    emit paintListSignal();
}

void TarvikService::clearPaintList()
{
    _d->paintList.clear();
    emit paintListSignal();
}

void TarvikService::setCursorCoordinates(double imgX, double imgY)
{
    emit cursorInfoSignal(CursorInfo::of(image(), imgX, imgY));
}

// Not with the class, which knows no service.
CursorInfo::CursorInfo(const TarvikService* service, double imgX, double imgY)
    : CursorInfo(of(service->image(), imgX, imgY))
{}

// Header edits.

void TarvikService::resetHeader()
{
    if (!imageLoaded())
        return;
    _d->headerEdits.reset(_d->shown.image);
    emit headerChangedSignal();
    _d->records.region().followBeamCentre();
}

void TarvikService::applyHeaderToSeries(const Header& header)
{
    if (!imageLoaded())
        return;
    _d->headerEdits.apply(header, _d->shown.image, _d->shown.index);
    emit headerChangedSignal();
    _d->records.region().followBeamCentre();
}

// Signals from the parts.

void TarvikService::_newImageSlot()
{
    const std::optional<LoaderData> load = _d->opening.takeFinished();
    if (!load)
        return;
    _d->arrival.show(*load);
    _d->contrastChooser.followNewImage();
    _d->maximaMaker.newImage();
    _d->opening.watchShownImage();
    emit newImageSignal();
    // Its viewport is known now.
    if (contrastChoice().follows && contrastChoice().partInView)
        emit partInViewWantedSignal();
    emit newStatisticsSignal(statisticsData());
    emit newPeakSignal(peakData());
    emit resolutionDefinedSignal(resolutionDefined());
    emit powderPlotDefinedSignal(powderPlotDefined());
    console::printTime("               TOTAL TIME LOADING IMAGE: ", _d->opening.elapsed());
}

void TarvikService::_scanImageContainterSlot(const QString&) { scanImageContainer(); }
