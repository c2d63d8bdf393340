// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/OptToString.h"

#include <cmath>

namespace {

constexpr double SameNumber = 1e-6;  // relative

/// @param typed  the number in the text, 0 if there is none
QString chosen(const QString& present, bool parsed, double typed, double value,
               const QString& formatted)
{
    const double sum = std::abs(typed) + std::abs(value);
    // A zero stays as it was typed, and so does what is no number beside a zero.
    if (sum == 0 || (parsed && std::abs(typed - value) / sum < SameNumber))
        return present;
    return formatted;
}

}  // namespace

QString optToString(const QString& present, std::optional<int> value)
{
    if (!value)
        return {};
    bool parsed = false;
    const int typed = present.toInt(&parsed);
    return chosen(present, parsed, typed, *value, QStringLiteral("%1").arg(*value));
}

QString optToString(const QString& present, std::optional<double> value)
{
    if (!value)
        return {};
    bool parsed = false;
    const double typed = present.toDouble(&parsed);
    return chosen(present, parsed, typed, *value, QStringLiteral("%1").arg(*value));
}
