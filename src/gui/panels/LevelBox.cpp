// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/LevelBox.h"

#include <QRegularExpression>

#include <cmath>

LevelBox::LevelBox(QWidget* parent)
    : QDoubleSpinBox(parent)
{
    // Of the value, not of its text: floating pixels may be far below 1.
    setDecimals(40);
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    setLocale(plain);
    // A half typed number is no level.
    setKeyboardTracking(false);
}

QString LevelBox::textFromValue(double value) const
{
    constexpr double Loss = 1e-3;
    QString text = QString::number(value, 'f', 4);
    if (std::abs(text.toDouble() - value) <= Loss * std::abs(value))
        return text;
    // As short as the box is narrow: without its end, an exponent deceives.
    text = QString::number(value, 'g', 4);
    return text.replace(QStringLiteral("e-0"), QStringLiteral("e-"));
}

double LevelBox::valueFromText(const QString& text) const { return text.toDouble(); }

QValidator::State LevelBox::validate(QString& text, int&) const
{
    static const QRegularExpression started(
        QStringLiteral("^\\s*[+-]?\\d*\\.?\\d*([eE][+-]?\\d*)?\\s*$"));
    if (!started.match(text).hasMatch())
        return QValidator::Invalid;
    bool complete = false;
    text.toDouble(&complete);
    return complete ? QValidator::Acceptable : QValidator::Intermediate;
}
