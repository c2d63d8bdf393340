// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/SeriesFile.h"

#include "imagelib/image/MException.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

constexpr int MostNumber = 99999;

bool taken(const QDir& folder, const QString& stem, const QString& ending)
{
    if (QFileInfo::exists(folder.filePath(stem + "_master" + ending)))
        return true;
    static const QRegularExpression special(QStringLiteral("([*?\\[\\]])"));
    QString literally = stem;
    literally.replace(special, QStringLiteral("[\\1]"));
    return !folder.entryList({literally + "_data_*" + ending}, QDir::AllEntries | QDir::Hidden)
                .isEmpty();
}

}  // namespace

QString freeSeriesFile(const QString& master)
{
    const QFileInfo file(master);
    const QDir folder = file.dir();
    static const QRegularExpression parts(
        QStringLiteral("^(.*?)(?:_(\\d{1,5}))?(_master)?(\\.[^.]*)?$"),
        QRegularExpression::DotMatchesEverythingOption);
    const auto match = parts.match(file.fileName());
    const QString ending = match.captured(4);
    const QString digits = match.captured(2);
    const QString whole = match.captured(1) + (digits.isEmpty() ? "" : "_" + digits);
    if (!QFileInfo::exists(master) && !taken(folder, whole, ending))
        return master;
    const int width = digits.isEmpty() ? 3 : int(digits.size());
    for (int number = digits.toInt() + 1; number <= MostNumber; ++number) {
        const QString stem =
            match.captured(1) + "_" + QString::number(number).rightJustified(width, '0');
        if (!taken(folder, stem, ending))
            return folder.filePath(stem + "_master" + ending);
    }
    throw morvend::MNoFileAccessException("All numbers of the series are taken: " +
                                          QFile::encodeName(master).toStdString());
}
