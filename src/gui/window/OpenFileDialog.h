// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The dialog that asks for image files.
#pragma once

#include <QFileDialog>
#include <QString>
#include <QStringList>

/// Lists image files in the remembered folder; of an HDF5 series only the master, until the user
/// chooses another filter. Remembers the folder when files were chosen.
class OpenFileDialog : public QFileDialog {
    Q_OBJECT
public:
    explicit OpenFileDialog(QWidget* parent);

    /// Runs the dialog. @returns all marked files, empty if cancelled
    QStringList choose();

    /// Each entry followed by its ending in upper case.
    static QStringList doubleUpper(const QStringList& endings);
    /// A name filter of a file dialog: the name and a pattern for each ending.
    static QString filter(const QString& name, const QStringList& endings);
    /// The filters of the dialog: images and masters, then images and all containers, then all
    /// files.
    static QStringList imageFilters();
};
