// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A plot as a file.
#pragma once

#include "gui/plot/PlotPainter.h"

#include <QByteArray>
#include <QColor>
#include <QString>

class QWidget;

namespace plot {

/// What goes into the file.
struct SavedPlot {
    Picture picture;
    QColor background;
    QString text;
};

/// The bytes of a file of type "png" (at twice the size on the screen), "svg" or "txt".
QByteArray bytesOf(const SavedPlot& saved, const QString& extension);

/// Asks for a file and writes it. A failure is shown, and leaves an older file as it was.
void askAndSave(QWidget* parent, const SavedPlot& saved);

}  // namespace plot
