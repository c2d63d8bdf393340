// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/info/InfoBarImage.h"

#include "gui/info/HeaderPreviewDialog.h"
#include "gui/kit/ErrorDialog.h"
#include "logic/analysis/statistics/ImageStatistics.h"
#include "logic/headerfiles/UndoHeadersThread.h"
#include "logic/headerfiles/WriteHeaderToFilesThread.h"
#include "logic/service/TarvikService.h"

#include <QSharedPointer>

namespace {

constexpr double EnergyTimesWavelength = 12398.42;  // eV and Angstrom

QString textOf(const boost::optional<std::string>& text)
{
    return text ? QString::fromStdString(*text) : QString();
}

/// The number between percent signs, which make a field of it; an empty field without one.
template <class T>
QString field(const boost::optional<T>& value, int digits = -1)
{
    return value ? QStringLiteral("%%1%").arg(double(*value), 0, 'g', digits)
                 : QStringLiteral("%%");
}

}  // namespace

InfoBarImage::InfoBarImage(unsigned long long syncClass, TarvikService* service)
    : InfoBar(syncClass, service)
{
    _fields.fill(-1);
    setTitle(QStringLiteral("Image Info"));
    addButtons();
    _newImageSlot();
    connect(service, &TarvikService::newImageSignal, this, &InfoBarImage::_newImageSlot);
    connect(this, &InfoBar::clickedApply, this, &InfoBarImage::apply);
    connect(this, &InfoBar::clickedReset, this, &InfoBarImage::reset);
    connect(this, &InfoBar::clickedWriteToAll, this, &InfoBarImage::writeHeaderToAllImages);
    connect(this, &InfoBar::clickedUndo, this, &InfoBarImage::undoLastWrite);
}

void InfoBarImage::_newImageSlot()
{
    enableWriteToAllButton(
        tarvikService()->imagePath().endsWith(QLatin1String(".cbf"), Qt::CaseInsensitive));
}

void InfoBarImage::setText()
{
    const Header header = tarvikService()->optionalData();
    _fields.fill(-1);
    _addDetector(header);
    _addImage(header);
    _addBeamline(header);
}

void InfoBarImage::_addDetector(const Header& header)
{
    addHeader(QStringLiteral("Detector"));
    QString description = textOf(header.description());
    const QString number = textOf(header.detector_number());
    if (!description.contains(number))
        description += ", " + number;
    addText(description);
    addEmptyLine();
    if (header.data_collection_date())
        addLine(QStringLiteral("Date"), textOf(header.data_collection_date()));
    if (tarvikService()->imageLoaded()) {
        const QSize size = tarvikService()->imageSize();
        addLine("%d", "Number of pixels in X-direction", size.width());
        addLine("%d", "Number of pixels in Y-direction", size.height());
    }
    const auto addIf = [this](const auto& value, const char* key) {
        if (value)
            addLine("%.3g", key, double(*value));
    };
    const auto& width = header.x_pixel_size();
    if (width && width == header.y_pixel_size()) {
        addIf(width, "Pixel size (m)");
    } else {
        addIf(width, "X pixel size (m)");
        addIf(header.y_pixel_size(), "Y pixel size (m)");
    }
    addIf(header.sensor_thickness(), "Sensor thickness (m)");
    addIf(header.threshold_energy(), "Threshold setting (eV)");
    if (const auto statistics = tarvikService()->statistics())
        addLine("%d", "Number of defective", int(statistics->defective));
}

void InfoBarImage::_addImage(const Header& header)
{
    addHeader(QStringLiteral("Image"));
    if (const auto statistics = tarvikService()->statistics()) {
        addLine("%.3e", "Total intensity", statistics->sum);
        addLine("%.3e", "Maximum intensity", statistics->maximum);
        addLine("%d", "# zeros", int(statistics->zeros));
        addLine("%d", "# saturated pixels", int(statistics->saturated));
    }
    if (header.saturation_value())
        addLine("%d", "Saturation Intensity (Count cutoff)", *header.saturation_value());
}

void InfoBarImage::_addBeamline(const Header& header)
{
    const auto addIf = [this](const auto& value, const char* key) {
        if (value)
            addLine("%.3e", key, double(*value));
    };
    addHeader(QStringLiteral("Beamline"));
    _fields[StartAngle] = addEditLine("Start angle (deg): " + field(header.rotation_angle()));
    _fields[Step] = addEditLine("Oscillation range (deg): " + field(header.rotation_angle_step()));
    const bool centre = header.beam_center_x() && header.beam_center_y();
    addEditLine(centre ? "Beam Centre: ( " + field(header.beam_center_x()) + ", " +
                             field(header.beam_center_y()) + " )"
                       : QStringLiteral("Beam Centre: ( %%, %% )"),
                _fields[CentreX], _fields[CentreY]);
    addIf(header.count_time(), "Exposure time (s)");
    addIf(header.frame_time(), "Exposure period (s)");
    addIf(header.beam_flux(), "Flux (1/s)");
    _fields[Wavelength] = addEditLine("Wavelength (" + QString(QChar(0x212B)) +
                                      "): " + field(header.wavelength(), 4));
    if (header.wavelength())
        addLine("%.3e", "Beam energy (eV)", EnergyTimesWavelength / double(*header.wavelength()));
    _fields[Distance] = addEditLine("Distance (m): " + field(header.detector_distance(), 3));
    _fields[Transmission] =
        addEditLine("Filter transmission: " + field(header.filter_transmission(), 3));
}

InfoBarImage::Header InfoBarImage::apply()
{
    Header edits = tarvikService()->globalHeader();
    const auto take = [&](Field which, auto set) {
        double value = 0;
        if (getValue(_fields[which], value))
            (edits.*set)(float(value));
    };
    using Set = void (Header::*)(const float&);
    take(StartAngle, static_cast<Set>(&Header::set_rotation_angle));
    take(Step, static_cast<Set>(&Header::set_rotation_angle_step));
    take(CentreX, static_cast<Set>(&Header::set_beam_center_x));
    take(CentreY, static_cast<Set>(&Header::set_beam_center_y));
    take(Wavelength, static_cast<Set>(&Header::set_wavelength));
    take(Distance, static_cast<Set>(&Header::set_detector_distance));
    take(Transmission, static_cast<Set>(&Header::set_filter_transmission));
    tarvikService()->applyHeaderToSeries(edits);
    return edits;
}

void InfoBarImage::reset() { tarvikService()->resetHeader(); }

void InfoBarImage::writeHeaderToAllImages()
{
    try {
        auto job = HeaderJob::write(tarvikService()->writeHeaderToFilesThread(apply()));
        (new HeaderPreviewDialog(std::move(job), window()))->start();
    } catch (const std::exception&) {
        ErrorDialog::showMessage("No image loaded or unknown file type");
    }
}

void InfoBarImage::undoLastWrite()
{
    auto job = HeaderJob::undo(std::make_unique<UndoHeadersThread>());
    (new HeaderPreviewDialog(std::move(job), window()))->start();
}
