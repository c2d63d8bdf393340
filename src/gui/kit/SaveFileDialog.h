// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The dialog that asks where to write a file, and in which format.
#pragma once

#include <QFileDialog>
#include <QMap>
#include <QString>
#include <QStringList>

/// A file dialog with one name filter for each format; the name in it follows the filter. Prints
/// "0 " and its folder on standard output.
class SaveFileDialog : public QFileDialog {
    Q_OBJECT
public:
    /// @param extensions  of the formats, without dots
    SaveFileDialog(QWidget* parent, const QStringList& extensions, const QString& caption,
                   const QString& directory);

    void setExtension(const QString& extension);
    /// Empty if the filter is none of the dialog's own.
    QString extension() const;

private slots:
    void _applyFilterSlot(const QString& filter);

private:
    QMap<QString, QString> _extensionToFilter;
    QMap<QString, QString> _filterToExtension;
};
