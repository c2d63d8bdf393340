// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/plot/SavedPlot.h"

#include "gui/kit/ErrorDialog.h"
#include "gui/kit/SaveFileDialog.h"
#include "logic/output/OutputFiles.h"
#include "logic/output/OutputJob.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QSettings>
#include <QSvgGenerator>

namespace plot {
namespace {

/// Pixels of a PNG file for each of the screen.
constexpr int PngScale = 2;

const QString ExportDirectory = QStringLiteral("ExportDirectory");

void paintWithBackground(QPainter& painter, const SavedPlot& saved)
{
    painter.fillRect(QRect(QPoint(), saved.picture.frame.size), saved.background);
    paint(painter, saved.picture);
}

QByteArray asPng(const SavedPlot& saved)
{
    QImage image(saved.picture.frame.size * PngScale, QImage::Format_RGB32);
    image.setDevicePixelRatio(PngScale);
    QPainter painter(&image);
    paintWithBackground(painter, saved);
    painter.end();
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

QByteArray asSvg(const SavedPlot& saved)
{
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(saved.picture.frame.size);
    generator.setViewBox(QRect(QPoint(), saved.picture.frame.size));
    QPainter painter(&generator);
    paintWithBackground(painter, saved);
    painter.end();
    return buffer.data();
}

}  // namespace

QByteArray bytesOf(const SavedPlot& saved, const QString& extension)
{
    if (extension == QLatin1String("png"))
        return asPng(saved);
    return extension == QLatin1String("svg") ? asSvg(saved) : saved.text.toUtf8();
}

void askAndSave(QWidget* parent, const SavedPlot& saved)
{
    // The panel may be closed while a dialog of it is open, and takes the dialog with it.
    const QPointer<SaveFileDialog> dialog =
        new SaveFileDialog(parent, {"png", "svg", "txt"}, QStringLiteral("Save Plot"),
                           QSettings().value(ExportDirectory).toString());
    dialog->setExtension(QStringLiteral("png"));
    const bool accepted = dialog->exec() == QDialog::Accepted && dialog;
    if (!dialog)
        return;
    const QString file = dialog->selectedFiles().value(0);
    const QString extension = dialog->extension();
    delete dialog;
    if (!accepted)
        return;
    auto* job = new OutputJob(
        [bytes = bytesOf(saved, extension), file](const auto&) {
            output::writeBytes(bytes, file);
            QSettings().setValue(ExportDirectory, QFileInfo(file).absolutePath());
        },
        parent);
    QObject::connect(job, &OutputJob::finishedSignal, job, [job](const QString& error) {
        job->deleteLater();
        if (!error.isEmpty())
            ErrorDialog::showMessage(error.toUtf8().constData());
    });
}

}  // namespace plot
