// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// LegendScale: rows of intensities and round numbers.
#include "imagelib/display/LegendScale.h"

#include <algorithm>
#include <cmath>

namespace morvend::imglib {

namespace {

/// Least number of rows between two ticks: room for their texts.
constexpr int spacing = 24;

double powerOfTen(int exponent) { return std::pow(10.0, exponent); }

/// count * mantissa * 10^exponent, exact to the last digit for short decimal numbers.
double decimal(double count, int exponent)
{
    return exponent < 0 ? count / powerOfTen(-exponent) : count * powerOfTen(exponent);
}

}  // namespace

LegendScale::LegendScale(double foreground, double background, double logForeground,
                         bool logarithmic, int rows)
    : _foreground(foreground)
    , _background(background)
    , _logForeground(logForeground)
    , _linearShare(logarithmic && logForeground > foreground ? 0.5 : 1.0)
    , _rows(rows)
{}

bool LegendScale::_valid() const
{
    return _rows > 0 && _foreground > _background && std::isfinite(_foreground - _background) &&
           (_linearShare == 1.0 || std::isfinite(_logForeground - _background));
}

std::optional<int> LegendScale::row(double intensity) const
{
    if (!_valid() || !(intensity >= _background))
        return {};
    double place = (intensity - _background) / (_foreground - _background);
    if (intensity <= _foreground) {
        place *= _linearShare;
    } else {
        if (_linearShare == 1.0 || intensity > _logForeground)
            return {};
        const double range = std::log((_logForeground - _background) / (_foreground - _background));
        place = _linearShare + (1.0 - _linearShare) * std::log(place) / range;
    }
    const int fromBottom = static_cast<int>(place * _rows);
    return _rows - 1 - std::clamp(fromBottom, 0, _rows - 1);
}

std::map<int, double> LegendScale::ticks() const
{
    Ticks ticks;
    if (_valid()) {
        _addLinear(ticks);
        if (_linearShare < 1.0)
            _addLogarithmic(ticks);
    }
    return ticks;
}

/// True where the texts of the existing ticks leave room.
void LegendScale::_add(Ticks& ticks, double intensity) const
{
    const auto place = row(intensity);
    if (!place)
        return;
    const auto next = ticks.lower_bound(*place - spacing + 1);
    if (next == ticks.end() || next->first >= *place + spacing)
        ticks[*place] = intensity;
}

void LegendScale::_addLinear(Ticks& ticks) const
{
    const double intervals = std::max(1.0, std::floor(_rows * _linearShare / spacing));
    const double least = (_foreground - _background) / intervals;
    if (!std::isnormal(least))
        return;
    int exponent = static_cast<int>(std::floor(std::log10(least)));
    double mantissa = 1.0;
    for (const double candidate : {1.0, 2.0, 5.0, 10.0}) {
        mantissa = candidate;
        if (decimal(mantissa, exponent) >= least)
            break;
    }
    const double step = decimal(mantissa, exponent);
    const double first = std::ceil(_background / step);
    for (double i = 0; i <= intervals; ++i)
        if (const double value = decimal((first + i) * mantissa, exponent); value <= _foreground)
            _add(ticks, value);
}

void LegendScale::_addLogarithmic(Ticks& ticks) const
{
    // Decades first: they are what the eye looks for.
    const auto exponentOf = [](double value) {
        return static_cast<int>(std::floor(std::log10(value)));
    };
    const double lowest = std::max(_foreground, _logForeground * 1e-12);
    if (!(lowest > 0.0) || !std::isnormal(lowest))
        return;
    for (const double factor : {1.0, 5.0, 2.0})
        for (int e = exponentOf(lowest); e <= exponentOf(_logForeground); ++e)
            _add(ticks, decimal(factor, e));
}

}  // namespace morvend::imglib
