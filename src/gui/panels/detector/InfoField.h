// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the detector's panel has to report.
#pragma once

#include <QLabel>

/// A framed text that can be selected; hidden while it has none. Thread: GUI only.
class InfoField : public QLabel {
    Q_OBJECT
public:
    explicit InfoField(QWidget* parent = nullptr);

    /// Shows the text in the place of the one before; an empty one hides the field. Words that are
    /// longer than a line, such as paths, get places where they may break.
    void report(const QString& plain);
    /// The same in italics.
    void reportError(const QString& plain);

public slots:
    /// Hides the field, too.
    void clearReport();
};
