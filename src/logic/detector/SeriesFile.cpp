// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/SeriesFile.h"

#include "imagelib/image/MException.h"
#include "logic/detector/FileNamePattern.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

bool seriesExists(const std::string& master)
{
    const QFileInfo file(QFile::decodeName(master.c_str()));
    if (file.exists() || file.isSymLink())
        return true;
    const QString stem = file.completeBaseName();
    const QString data = (stem.endsWith("_master") ? stem.chopped(7) : stem) + "_data_";
    for (const QString& name : file.dir().entryList(QDir::AllEntries | QDir::Hidden | QDir::System))
        if (name.startsWith(data))
            return true;
    return false;
}

}  // namespace

QString freeSeriesFile(const QString& master)
{
    const std::string name = QFile::encodeName(master).toStdString();
    if (!seriesExists(name))
        return master;
    const auto free = FileNamePattern(name).firstFree(seriesExists);
    if (!free)
        throw morvend::MNoFileAccessException("All numbers of the series are taken: " + name);
    return QFile::decodeName(free->c_str());
}
