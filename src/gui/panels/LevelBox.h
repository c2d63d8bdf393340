// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The field of a level of the contrast.
#pragma once

#include <QDoubleSpinBox>

/// Shows an intensity with four decimals, with fewer where its field has no room for them, or with
/// an exponent where neither is enough. All forms may be typed. A number beyond the range becomes
/// the end of it. Thread: GUI only.
class LevelBox : public QDoubleSpinBox {
    Q_OBJECT
public:
    explicit LevelBox(QWidget* parent = nullptr);

    QString textFromValue(double value) const override;
    double valueFromText(const QString& text) const override;
    QValidator::State validate(QString& text, int& position) const override;
};
