// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which texts are shown for a position.
#include "logic/service/CursorInfo.h"

#include "logic/TarvikService.h"

QString CursorInfo::imgXKey() { return QStringLiteral("Image X"); }
QString CursorInfo::imgYKey() { return QStringLiteral("Image Y"); }
QString CursorInfo::intensityKey() { return QStringLiteral("Intensity"); }
QString CursorInfo::distanceKey() { return QStringLiteral("Distance (mm)"); }
QString CursorInfo::resolutionKey() { return QStringLiteral(u"Resolution (\u212B)"); }

namespace {

/// Truncates a coordinate; what no int can hold is far outside of any image.
int toPixel(double coordinate) { return morvend::datatypes::convertPixel<int>(coordinate); }

}  // namespace

CursorInfo::CursorInfo(const TarvikService* service, double imgX, double imgY)
{
    for (const QString& key : {imgXKey(), imgYKey(), intensityKey()})
        _texts.insert(key, QLatin1String(""));
    if (!service->imageLoaded())
        return;
    if (service->distanceDefined())
        _texts.insert(distanceKey(), QLatin1String(""));
    if (service->resolutionDefined())
        _texts.insert(resolutionKey(), QLatin1String(""));
    if (!(imgX >= 0 && imgY >= 0))
        return;
    const int x = toPixel(imgX);
    const int y = toPixel(imgY);
    _texts[imgXKey()] = QString::number(x);
    _texts[imgYKey()] = QString::number(y);
    _texts[intensityKey()] = service->intensityString(x, y);
    if (service->distanceDefined())
        _texts[distanceKey()] = QString::number(service->distance(x, y) * 1000.0, 'f', 1);
    if (service->resolutionDefined())
        _texts[resolutionKey()] = QString::number(service->resolution(x, y), 'f', 3);
}
