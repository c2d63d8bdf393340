// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The identity of the program.
#pragma once

#include <QDialog>

class QVBoxLayout;

/// Name, version and date of the program, with its list of changes and its licence.
class About : public QDialog {
    Q_OBJECT
public:
    explicit About(QWidget* parent);

private slots:
    void _updateGeometry();

private:
    /// A read-only text from the resources, hidden, and beneath it the button that shows it.
    void _addText(QVBoxLayout& layout, const QString& resource, const QString& button);
};
