// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/OpenDirectory.h"

#include "logic/loading/Strand.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace {

const QString key = QStringLiteral("ImageDirectory");

/// The folder itself or that of a file; empty if it doesn't exist.
QString existingFolder(const QString& path)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return {};
    return info.isDir() ? QDir(path).absolutePath() : info.absolutePath();
}

}  // namespace

QString OpenDirectory::get()
{
    const QSettings settings;
    const QString folder =
        settings.contains(key) ? existingFolder(settings.value(key).toString()) : QString();
    return folder.isEmpty() ? QDir::currentPath() : folder;
}

void OpenDirectory::set(const QString& path)
{
    QString folder = existingFolder(path);
    if (folder.isEmpty())  // perhaps a data set in a file
        folder = existingFolder(path.section(QStringLiteral("::/"), 0, 0));
    if (!folder.isEmpty())
        QSettings().setValue(key, folder);
}

void OpenDirectory::setSoon(const QString& path)
{
    static const auto& strand = *new std::shared_ptr(Strand::create(WorkerPool::process()));
    strand->post([path] { set(path); });
}
