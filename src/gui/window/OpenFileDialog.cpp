// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/OpenFileDialog.h"

#include "gui/window/OpenDirectory.h"

#include <QApplication>
#include <QPointer>
#include <QSignalBlocker>

OpenFileDialog::OpenFileDialog(QWidget* parent)
    : QFileDialog(parent, QString(), QStringLiteral("/"))
{
    setOptions(DontResolveSymlinks | DontConfirmOverwrite | DontUseNativeDialog | ReadOnly |
               HideNameFilterDetails);
    setFileMode(ExistingFiles);
    setViewMode(List);
    setNameFilters(imageFilters());
    setDirectory(open_directory::get());
}

QStringList OpenFileDialog::choose()
{
    // The frames must not react to the focus moving to the dialog and back.
    const QSignalBlocker quiet(qApp);
    const QPointer<OpenFileDialog> self(this);
    if (exec() != Accepted || !self)
        return {};
    open_directory::set(directory().absolutePath());
    return selectedFiles();
}

QStringList OpenFileDialog::doubleUpper(const QStringList& endings)
{
    QStringList result;
    for (const QString& ending : endings)
        result << ending << ending.toUpper();
    return result;
}

QString OpenFileDialog::filter(const QString& name, const QStringList& endings)
{
    QString result = name + '(';
    for (const QString& ending : endings)
        result += '*' + ending + ' ';
    return result + ')';
}

QStringList OpenFileDialog::imageFilters()
{
    QStringList images = doubleUpper({".cbf", ".tif", ".tiff", ".edf"});
    // Files packed as a whole. Patterns without the inner ending would show every archive.
    for (const QString& ending : QStringList(images))
        images << ending + ".gz" << ending + ".bz2";
    const QStringList containers = doubleUpper({".h5", ".hdf5"});
    const QStringList entries = doubleUpper({".nxs"});  // others depend on it, like a master
    QStringList masters;
    for (const QString& ending : containers)
        masters << "_master" + ending;
    return {filter(QStringLiteral("Morvend images"), images + masters + entries),
            filter(QStringLiteral("Image files"), images + containers + entries),
            QStringLiteral("All files(*)")};
}
