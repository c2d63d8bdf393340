// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The texts about the pixel under the cursor.
#pragma once

#include "imagelib/image/MImage.h"

#include <QMap>
#include <QString>
#include <QStringList>

class TarvikService;

/// A map of keys to texts; keys come out in sorted order. A value, sent by a service to its
/// widgets.
class CursorInfo {
public:
    /// No keys.
    CursorInfo() = default;
    /// The texts for a position in an image, whose header decides which exist. Outside the image
    /// (negative or NaN) and without one the keys stay, with empty texts, so that panels keep their
    /// lines.
    static CursorInfo of(const morvend::imglib::MImage& image, double imgX, double imgY);
    /// The same for the service's image; defined with the service.
    CursorInfo(const TarvikService* service, double imgX, double imgY);

    /// Text of a pixel's value, "0" outside the image, empty without image.
    static QString intensityOf(const morvend::imglib::MImage& image, int x, int y);

    static QString imgXKey();
    static QString imgYKey();
    static QString intensityKey();
    static QString distanceKey();
    static QString resolutionKey();

    QStringList infoKeys() const { return _texts.keys(); }
    QStringList infoValues() const { return _texts.values(); }

    /// The stored texts; null when the key is absent.
    QString imgX() const { return _texts.value(imgXKey()); }
    QString imgY() const { return _texts.value(imgYKey()); }
    QString intensity() const { return _texts.value(intensityKey()); }
    QString distance() const { return _texts.value(distanceKey()); }
    QString resolution() const { return _texts.value(resolutionKey()); }

private:
    QMap<QString, QString> _texts;
};
