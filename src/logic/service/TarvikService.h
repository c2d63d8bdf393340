// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The model of one image view.
#pragma once

#include "imagelib/display/BlockMaxima.h"
#include "imagelib/display/MDrawingList.h"
#include "imagelib/display/MRect.h"
#include "imagelib/image/MImage.h"
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/analysis/statistics/ImageStatistics.h"
#include "logic/loading/SeriesState.h"
#include "logic/output/ImageSnapshot.h"
#include "logic/records/ContrastData.h"
#include "logic/records/Minification.h"
#include "logic/records/PeakData.h"
#include "logic/records/PlottingMode.h"
#include "logic/records/StatisticsData.h"
#include "logic/records/ViewportData.h"
#include "logic/service/ComputedRegion.h"
#include "logic/service/ContrastChoice.h"
#include "logic/service/CursorInfo.h"

#include <QImage>
#include <QObject>
#include <QRect>
#include <QSharedPointer>
#include <QSize>
#include <QString>

#include <list>
#include <memory>
#include <string>
#include <vector>

class HalvoClient;
class HalvoService;
class RecordGroups;
class WriteHeaderToFilesThread;

/// The model of one image view, and the only object that its widgets talk to: they copy a record,
/// change it and hand it back by a setter, and show what the signals return.
///
/// A service has no image until the first newImageSignal(); from then on it always has one. A
/// failed load changes nothing and ends in imageLoadErrorSignal(). Thread: GUI only.
class TarvikService : public QObject {
    Q_OBJECT
public:
    using MColorTable = morvend::imglib::MColorTable;
    using MDrawingList = morvend::imglib::MDrawingList<>;
    using MImage = morvend::imglib::MImage;
    using Header = morvend::imglib::MBasicImageOptionalData<>;
    using ComputedRegion = ::ComputedRegion;

    /// Services are made by TarvikCore::newService.
    /// @param groups  the groups of all views; they outlive the service
    TarvikService(RecordGroups& groups, std::shared_ptr<HalvoService> detector, QObject* parent);
    ~TarvikService() override;

    // The records that the views of a group share.
    ContrastData contrastData() const;
    ViewportData viewportData() const;
    StatisticsData statisticsData() const;
    PeakData peakData() const;

    /// The image with its header as edited, and what belongs to it: all empty without image. The
    /// mask is never empty with one; thumbnails have at most 200 pixels on the longer side.
    const MImage& image() const;
    const MImage& thumbnail() const;
    const MImage& mask() const;
    const MImage& thumbnailMask() const;
    /// For a view at whose pixels nobody looks for long, such as one of many small ones: from now
    /// on they are packed, unless the view is in a mode. A look at image() brings them back for a
    /// second, at the price of about a millisecond a megapixel. Called again, it drops them at
    /// once: not while a reference to image() is in use.
    void setPixelsPacked(bool packed);
    /// Is there an image whose pixels are not packed?
    bool pixelsAtHand() const;
    bool imageLoaded() const;
    /// Width and height, -1 and -1 without image.
    QSize imageSize() const;
    /// Are the image's pixels floating-point numbers? False without image.
    bool floatingPixels() const;
    /// Number of the image in its series, and the series' lowest and highest: -1 without image.
    int imageIndex() const;
    int firstIndex() const;
    int lastIndex() const;
    /// What is known of all images of the series, without reading them; empty without image.
    SeriesState seriesState() const;
    /// The image's file; empty without image or file.
    QString imagePath() const;
    /// What openImage() takes to open the whole series anew; empty without image or file.
    QString seriesPath() const;
    /// The header's text about the image; empty if there isn't one.
    QString imageDescription() const;
    /// Null without image.
    QSharedPointer<const ImageStatistics> statistics() const;
    /// Numbers and curves of the region in statisticsData(). A region from the group
    /// counts from the next image or setStatisticsData() on. Waits until they are computed:
    /// for reports and scripts, and for widgets that take them at once.
    const RoiStatistics& roiStatistics() const;
    /// The results of the region as text, see output::regionReport(); waits as roiStatistics()
    /// does.
    QString roiStatisticsToString() const;
    /// Writes them to a file as UTF-8.
    /// @throws std::runtime_error with the file's name when it can't be written
    void writeRoiStatisticsToFile(const char* fileName) const;
    /// True while the numbers are being computed; regionComputedSignal() follows.
    bool regionPending() const;
    /// The available numbers, without waiting, and their region: an older one
    /// while regionPending().
    const ComputedRegion& computedRegion() const;
    /// The strongest maxima of the image, empty without one. Searched for off this thread while
    /// peakData() asks for any, else here, where they are missing: for scripts.
    ImagePeaks imagePeaks();
    /// True while the maxima of the image are searched for; peaksComputedSignal() follows.
    bool peaksPending() const;
    /// The maxima that are there, without waiting: those of the image before while peaksPending(),
    /// none before the first search.
    const ImagePeaks& computedPeaks() const;
    /// The header of the current image, edits included.
    const Header& optionalData() const;
    /// The edits that apply to the header of each image of the series.
    const Header& globalHeader() const;

    ContrastChoice contrastChoice() const;
    PlottingMode plottingMode() const;
    Minification minification() const;
    /// The largest pixels of the image's blocks; null unless that minification is set, and, when it
    /// has just been, until blockMaximaSignal().
    std::shared_ptr<const morvend::imglib::BlockMaxima> blockMaxima() const;
    bool showResolutionRings() const;
    bool highlightDefective() const;
    bool highlightSaturated() const;

    const MColorTable* defaultColorTable() const;
    void setDefaultColorTable(const MColorTable* colorTable);
    const std::list<const MColorTable*>& colorTables() const;
    void setColorTables(const std::list<const MColorTable*>& colorTables);

    /// The modes that keep the view moving; at most one is on.
    bool movieMode() const;
    bool watchSeriesMode() const;
    bool halvoMonitorMode() const;
    /// Images from one picture of a movie to the next.
    int movieModeStep() const;
    /// Where the monitor looks for a detector, and the seconds between two of its pictures.
    QString halvoMonitorHost() const;
    int halvoMonitorPort() const;
    double halvoMonitorMinPause() const;
    /// This view's handle on the detector.
    HalvoClient* halvoClient() const;
    /// True if a request for an image is queued or running.
    bool loading() const;

    /// A batch, not started yet, that writes header values into the files of the image's numbered
    /// series.
    /// @throws MUnknownFormatException when the image's file has no ending
    std::unique_ptr<WriteHeaderToFilesThread> writeHeaderToFilesThread(const Header& header) const;

    /// The overlay of a scripting client.
    const MDrawingList& paintList() const;

    /// Name of the group of this view: image width, "_", image height, "_" and the additional sync
    /// id; empty without image.
    std::string syncID() const;
    void setAdditionalSyncID(const QString& additionalSyncID);

    // Geometry from the header, with edits. Positions are image pixels.
    /// True if beam centre, pixel sizes, detector distance and wavelength are known.
    bool resolutionDefined() const;
    /// True if beam centre and pixel sizes are known.
    bool distanceDefined() const;
    /// True if the beam centre is known.
    bool powderPlotDefined() const;
    /// In pixels; both NaN unless both are known.
    void beamCentre(double& x, double& y) const;
    /// Whole pixels from the beam centre to a point, -1 without beam centre.
    int computePowderRadius(int x, int y) const;
    /// Metres from the beam centre on the detector, -1 when not defined.
    double distance(int x, int y) const;
    /// Resolution in Angstrom, -1 when not defined; infinite at the beam centre.
    double resolution(int x, int y) const;
    /// Text of a pixel's value, "0" outside the image, empty without image.
    QString intensityString(int x, int y) const;
    /// Rings to draw over the image: their centre in pixels, radii in pixels of mean size, and
    /// labels. The centre stays as it was unless resolutionDefined().
    void recommendResolutionRadius(int n, double& centreX, double& centreY,
                                   std::vector<double>& radii, std::vector<QString>& labels) const;

    // Pictures and files of the image; they wait until all is written, for scripts. Widgets give
    // the snapshot to an OutputJob instead.
    ImageSnapshot snapshot() const;
    /// The contrast with the default colour table if it has none.
    ContrastData shownContrast() const;
    /// A picture of a colour bar with ticks.
    QImage colorLegend(int width, int height) const;
    /// Writes the image in its colours; without image nothing happens.
    /// @param legend  place of a colour bar beside the picture, MRect() for none
    /// @throws MNoFileAccessException "Cannot write to " and the name
    void exportImage(const QString& fileName, const QString& format,
                     const morvend::imglib::MRect& legend) const;
    /// Writes the image's data with its header as edited; without image nothing happens.
    /// @param extension  cbf, tif, tiff, h5 or hdf5, in any case
    /// @throws MBadParameterException "Unrecognized file format" for another one, MException when
    /// the file can't be written
    void saveAs(const QString& fileName, const QString& extension) const;

public slots:
    // Setters of a record store it, signal it in any case, and hand it to the group when it is new
    // there.
    void setContrastData(ContrastData data);
    /// What chooseContrast() does from now on.
    void setContrastChoice(const ContrastChoice& choice);
    /// Sets the levels by the range of pixels that was chosen. Those of the part in view are
    /// counted off this thread, once the view names it after partInViewWantedSignal().
    void chooseContrast();
    /// @param part  in pixels of the image
    void chooseContrastOf(const QRect& part);
    void setViewportData(ViewportData data);
    /// Without image the record is only stored. With one the region is computed, off this thread; a
    /// newer one takes its place. A centred circle that is active moves the beam centre of the
    /// series.
    void setStatisticsData(StatisticsData data);
    void setPeakData(PeakData data);

    /// Opens the series that a file belongs to at that file's image. The name is in the encoding
    /// of the file system, as QFile::encodeName makes it.
    void openImage(const char* fileName);
    /// Goes to an image of the open series; without image nothing happens. Of requests by number,
    /// steps included, one that has not begun when the next one comes is never read.
    void openImage(int imageIndex);
    /// Appends an image to a series in memory and shows it.
    void openImage(morvend::imglib::MImage image);
    /// Goes n images forward, or back when negative, from the number that was asked for last, while
    /// that has not come, else from the image; without image nothing happens. Missing
    /// and unreadable images are skipped, which noticeSignal() reports, and the ends of the series
    /// are not left. 0 loads the image again.
    /// @param signalLoadError false for a request that repeats automatically: no end of the
    /// series is announced, and no image that may be half written
    void nextImage(int n = 1, bool signalLoadError = true);
    /// Goes to an image of the open series, or, away from the one shown, to the next that can be
    /// shown; noticeSignal() reports what is skipped. For a hand that is dragged over the series:
    /// the newest request wins.
    void seekImage(int imageIndex);
    /// Looks at the read-ahead; readAheadSignal() follows, and seriesState() has the answer.
    void listReadAhead();
    /// Goes to the last image of the series; without image nothing happens.
    void openLast(bool signalLoadError = true);
    /// Looks for images that were added to the series; imageContainerChangedSignal() follows.
    void scanImageContainer();
    /// Scans whenever the folder of the image changes, and every other second since not every
    /// file system notifies.
    void watchImageContainer(bool watch);

    /// Plays the series from the image on, or stops. Without image nothing happens. A mode that is
    /// left signals its end before.
    void setMovieMode(bool on);
    void setMovieModeStep(int step);
    /// Goes to the last image whenever the series grows. Without image nothing happens.
    void setWatchSeriesMode(bool on);
    /// Shows the pictures that a detector takes.
    void setHalvoMonitorMode(bool on);
    /// Kept in the user's settings as well.
    void setHalvoMonitorHost(QString host, int port, double minPause);

    void setPlottingMode(PlottingMode mode);
    /// From the next image on the largest pixels come with it.
    void setMinification(Minification minification);
    void toggleShowResolutionRings(bool show);
    void toggleHighlightDefective(bool highlight);
    void toggleHighlightSaturated(bool highlight);

    void addToPaintList(const MDrawingList& list);
    void setPaintList(MDrawingList list);
    void clearPaintList();

    /// Announces what is under the cursor; negative coordinates mean that it has left the image.
    void setCursorCoordinates(double imgX, double imgY);

    /// Drops all header edits.
    void resetHeader();
    /// Applies header values to the image and all further ones of its series. The start angle keeps
    /// counting from image to image; it needs a step.
    void applyHeaderToSeries(const Header& header);

signals:
    /// A new image is shown. Contrast and viewport may have changed with it: receivers read them.
    void newImageSignal();
    void newImageSignalIntern();  // part of the interface, without receiver
    void imageLoadErrorSignal(QString message);
    /// What the view has been waiting for, in words; empty when the wait is over.
    void waitingSignal(const QString& text);
    /// A sentence to show for a while without a question: what a step has skipped, or why it ended
    /// without an image.
    void noticeSignal(QString message);
    void headerChangedSignal();
    void newViewportSignal(ViewportData data);
    void newContrastSignal(ContrastData data);
    void contrastChoiceSignal();
    void partInViewWantedSignal();
    void newStatisticsSignal(StatisticsData data);
    void newPeakSignal(PeakData data);
    /// Numbers missing at newStatisticsSignal() have arrived.
    void regionComputedSignal();
    /// Maxima missing at newPeakSignal() have been found.
    void peaksComputedSignal();
    /// The series was scanned for new images.
    void imageContainerChangedSignal();
    /// listReadAhead() has an answer.
    void readAheadSignal();
    void minificationSignal(Minification minification);
    /// blockMaxima() has changed without a new image.
    void blockMaximaSignal();
    void plottingModeSignal(PlottingMode mode);
    void resolutionRingsSignal(bool show);
    void resolutionDefinedSignal(bool defined);
    void powderPlotDefinedSignal(bool defined);
    void defectiveSignal(bool highlight);
    void saturatedSignal(bool highlight);
    void movieModeSignal(bool on);
    void watchSeriesModeSignal(bool on);
    void halvoMonitorModeSignal(bool on);
    void halvoMonitorHostSignal(QString host, int port, double minPause);
    void paintListSignal();
    void cursorInfoSignal(CursorInfo info);

private slots:
    void _newImageSlot();
    void _scanImageContainterSlot(const QString& path);  // the spelling is part of the interface

private:
    class TarvikServicePrivate;
    const std::unique_ptr<TarvikServicePrivate> _d;
};
