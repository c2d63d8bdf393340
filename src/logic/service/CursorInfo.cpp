// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/CursorInfo.h"

#include "logic/geometry/Geometry.h"

QString CursorInfo::imgXKey() { return QStringLiteral("Image X"); }
QString CursorInfo::imgYKey() { return QStringLiteral("Image Y"); }
QString CursorInfo::intensityKey() { return QStringLiteral("Intensity"); }
QString CursorInfo::distanceKey() { return QStringLiteral("Distance (mm)"); }
QString CursorInfo::resolutionKey() { return QStringLiteral(u"Resolution (\u212B)"); }

namespace {

/// Truncates a coordinate; a value beyond int is far outside any image.
int toPixel(double coordinate) { return morvend::datatypes::convertPixel<int>(coordinate); }

}  // namespace

CursorInfo CursorInfo::of(const morvend::imglib::MImage& image, double imgX, double imgY)
{
    CursorInfo info;
    QMap<QString, QString>& texts = info._texts;
    for (const QString& key : {imgXKey(), imgYKey(), intensityKey()})
        texts.insert(key, QLatin1String(""));
    if (image.empty())
        return info;
    const geometry::Header& header = image.optionalData();
    const bool distance = geometry::distanceDefined(header);
    const bool resolution = geometry::resolutionDefined(header);
    if (distance)
        texts.insert(distanceKey(), QLatin1String(""));
    if (resolution)
        texts.insert(resolutionKey(), QLatin1String(""));
    if (!(imgX >= 0 && imgY >= 0))
        return info;
    const int x = toPixel(imgX);
    const int y = toPixel(imgY);
    texts[imgXKey()] = QString::number(x);
    texts[imgYKey()] = QString::number(y);
    texts[intensityKey()] = intensityOf(image, x, y);
    if (distance)
        texts[distanceKey()] = QString::number(geometry::distance(header, x, y) * 1000.0, 'f', 1);
    if (resolution)
        texts[resolutionKey()] = QString::number(geometry::resolution(header, x, y), 'f', 3);
    return info;
}

QString CursorInfo::intensityOf(const morvend::imglib::MImage& image, int x, int y)
{
    if (image.empty())
        return {};
    if (image.type() == morvend::datatypes::FLOAT)
        return QStringLiteral("%1").arg(image.pixel<double>(x, y, 0), 0, 'g', 6, u'0');
    return QString::number(image.pixel<long long>(x, y, 0));
}
