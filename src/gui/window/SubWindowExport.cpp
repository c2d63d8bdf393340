// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The slots of a view that write pictures and copies of its image.
#include "gui/kit/ErrorDialog.h"
#include "gui/kit/SaveFileDialog.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/ExportDialog.h"
#include "gui/window/LaterSettings.h"
#include "gui/window/OpenDirectory.h"
#include "gui/window/SubWindow.h"
#include "logic/output/OutputFiles.h"
#include "logic/output/OutputJob.h"
#include "logic/service/TarvikService.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QPointer>
#include <QProgressDialog>

namespace {

const QString ExportDirectory = QStringLiteral("ExportDirectory");
const QString SaveAsDirectory = QStringLiteral("SaveAsDirectory");

struct Target {
    QString file;  // empty if cancelled
    QString extension;
};

/// @param endings  of file names that name a format themselves
Target askForTarget(QWidget* parent, const QStringList& extensions, const QStringList& endings,
                    const QString& caption, const QString& directoryKey, const QString& extension)
{
    QString folder = later_settings::value(directoryKey).toString();
    if (!folder.isEmpty() && open_directory::answering(folder).isEmpty())
        folder = QDir::currentPath();
    // The window may be closed while a dialog of it is open, and takes the dialog with it.
    const QPointer<SaveFileDialog> dialog = new SaveFileDialog(parent, extensions, caption, folder);
    dialog->setExtension(extension);
    Target target;
    if (dialog->exec() == QDialog::Accepted && dialog)
        target = {dialog->selectedFiles().value(0), dialog->extension()};
    // A name with the ending of another format than the chosen one would deceive all readers.
    if (const QString ending = QFileInfo(target.file).suffix().toLower(); endings.contains(ending))
        target.extension = ending;
    delete dialog;
    return target;
}

void rememberDirectory(const QString& key, const QString& file)
{
    later_settings::set(key, QFileInfo(file).absolutePath());
}

QStringList pictureFormats()
{
    QStringList formats;
    for (const QByteArray& format : QImageWriter::supportedImageFormats())
        formats << QString::fromLatin1(format);
    return formats;
}

/// Writes a copy of an image, with a progress that can be cancelled. The view may close meanwhile.
void saveInBackground(QWidget* window, const ImageSnapshot& snapshot, const Target& target)
{
    auto* progress =
        new QProgressDialog(QStringLiteral("Saving %1").arg(QFileInfo(target.file).fileName()),
                            QStringLiteral("Cancel"), 0, 0, window);
    progress->setAttribute(Qt::WA_DeleteOnClose);
    progress->setAutoReset(false);
    progress->setMinimumDuration(500);
    auto* job = new OutputJob(
        [image = snapshot.image, target](const pictures::Progress&) {
            output::saveAs(image, target.file, target.extension);
        },
        progress);
    QObject::connect(progress, &QProgressDialog::canceled, progress, &QObject::deleteLater);
    QObject::connect(progress, &QProgressDialog::canceled, job, &OutputJob::cancel);
    QObject::connect(job, &OutputJob::finishedSignal, progress, [=](const QString& error) {
        progress->deleteLater();
        progress->hide();
        if (error.isEmpty())
            rememberDirectory(SaveAsDirectory, target.file);
        else
            ErrorDialog::showMessage(error.toUtf8().constData());
    });
}

}  // namespace

void SubWindow::openExportDialog()
{
    const QPointer<SubWindow> self(this);
    if (!_service->imageLoaded())
        return;
    const QStringList formats = pictureFormats();
    const Target target = askForTarget(window(), formats, formats, QStringLiteral("Export"),
                                       ExportDirectory, QStringLiteral("png"));
    if (target.file.isEmpty() || !self)
        return;
    const QPointer<ExportDialog> dialog = new ExportDialog(this, target.file, target.extension);
    if (dialog->exec() == QDialog::Accepted)
        rememberDirectory(ExportDirectory, target.file);
    delete dialog;
}

void SubWindow::exportToFile(const QString& fileName, const QString& format, MRect colorLegendPos)
{
    output::exportView(_imageDrawer->grab(), _service->shownContrast(), fileName, format,
                       colorLegendPos);
}

void SubWindow::exportToFile(const QString& fileName, const QString& format)
{
    exportToFile(fileName, format, MRect());
}

void SubWindow::openSaveAsDialog()
{
    const QPointer<SubWindow> self(this);
    if (!_service->imageLoaded())
        return;
    const Target target =
        askForTarget(window(), {"cbf", "tif", "h5"}, {"cbf", "tif", "tiff", "h5", "hdf5"},
                     QStringLiteral("Save As"), SaveAsDirectory, QStringLiteral("cbf"));
    if (!target.file.isEmpty() && self)
        saveInBackground(window(), _service->snapshot(), target);
}
