// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the views of a window show, to be shown again at another start.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class TarvikService;

/// The views of a session. A value.
struct Session {
    struct View {
        /// As it was opened: a data set in a file keeps its name.
        QString file;
        int image = -1;
        double offsetX = 0;
        double offsetY = 0;
        int zoomPower = 0;
        double foreground = 0;
        double background = 0;
        /// Identifier of the colour table.
        QString colours;

        static View of(const QString& file, const TarvikService& service);
        /// Gives a view that has opened the file the stored image, viewport and contrast.
        void apply(TarvikService& service) const;
    };

    QList<View> views;
    /// Whether views of one size shared viewport and contrast.
    bool viewportsTied = true;
    bool contrastsTied = true;
    /// Sizes of the columns, then of the rows of each column, in pixels.
    QList<QList<int>> layout;

    QByteArray toJson() const;
    /// What can't be understood is left out.
    static Session fromJson(const QByteArray& text);
};
