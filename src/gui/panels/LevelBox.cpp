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
    constexpr int Decimals = 4;
    // As short as the box is narrow: without its end, a number deceives.
    constexpr qsizetype MostCharacters = 8;
    for (int decimals = Decimals; decimals >= 0; --decimals) {
        QString text = QString::number(value, 'f', decimals);
        if (text.size() <= MostCharacters &&
            std::abs(text.toDouble() - value) <= Loss * std::abs(value))
            return text;
    }
    return QString::number(value, 'g', 4)
        .replace(QStringLiteral("e-0"), QStringLiteral("e-"))
        .replace(QStringLiteral("e+0"), QStringLiteral("e+"));
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
