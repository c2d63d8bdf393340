// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// All keys and gestures on one sheet.
#pragma once

#include <QDialog>
#include <QList>
#include <QString>

/// Tables of keys or gestures and their effects. It stays open beside the work. Thread: GUI only.
class ShortcutSheet : public QDialog {
    Q_OBJECT
public:
    struct Row {
        QString keys;
        QString effect;
    };
    struct Section {
        QString title;
        QList<Row> rows;
    };

    ShortcutSheet(const QList<Section>& sections, QWidget* parent);

    /// The first line of a tool tip, without the key at its end.
    static QString effectOf(const QString& toolTip);
};
