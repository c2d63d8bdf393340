// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/output/RegionReport.h"

#include "imagelib/image/Assert.h"

#include <algorithm>
#include <cstddef>
#include <numbers>

namespace {

/// The columns of pairs of pixels.
constexpr qsizetype PairWidth = 13;
/// Blanks between two columns of a curve.
constexpr qsizetype Gap = 5;

QString line(const char* name, int value)
{
    return QStringLiteral("# %1 %2\n").arg(QLatin1String(name)).arg(value);
}

QString line(const char* name, double value)
{
    return QStringLiteral("# %1 %2\n").arg(QLatin1String(name)).arg(value);
}

QString number(double value) { return QString::number(value, 'g', 6); }

/// At least one blank.
QString filled(const QString& text, qsizetype width)
{
    return text + QString(std::max<qsizetype>(width - text.size(), 1), ' ');
}

QString corners(const StatisticsData& region)
{
    return line("Begin X", region.beginX) + line("Begin Y", region.beginY) +
           line("End X", region.endX) + line("End Y", region.endY);
}

QString extremes(const RoiStatistics& numbers)
{
    return line("Min", numbers.minimum) + line("Max", numbers.maximum);
}

/// The sums that a line, a box and a ring have in common, with their size between.
QString sums(const RoiStatistics& numbers, const char* sizeName, double size)
{
    return line("Integral", numbers.integral) + line("Mean", numbers.mean) +
           line("Sigma", numbers.sigma) + line(sizeName, size) + extremes(numbers);
}

QString circle(const RoiStatistics& numbers)
{
    return QStringLiteral("# Intensity %1 %2 %3\n")
               .arg(numbers.intensity)
               .arg(QChar(0xB1))
               .arg(numbers.intensitySigma) +
           line("Integral", numbers.integral) + line("Background", numbers.backgroundMean) +
           line("Mean", numbers.mean) + line("Sigma", numbers.sigma) + line("Area", numbers.area) +
           extremes(numbers) +
           QStringLiteral("# Centroid (%1 %2)\n").arg(numbers.centroidX).arg(numbers.centroidY);
}

QString coordinates(const StatisticsData& region)
{
    switch (region.roiType) {
    case StatisticsData::Line:
    case StatisticsData::Box:
        return corners(region);
    case StatisticsData::Circle:
        return line("Centre X", region.circleX) + line("Centre Y", region.circleY) +
               line("Radius X", region.radius) +
               line("Theta/deg", region.theta * (180 / std::numbers::pi));
    case StatisticsData::CentredCircle:
        return line("Inner Radius", region.innerRadius) + line("Outer Radius", region.outerRadius);
    default:
        return {};
    }
}

QString block(const StatisticsData& region, const RoiStatistics& numbers)
{
    switch (region.roiType) {
    case StatisticsData::Line:
        return sums(numbers, "Length", numbers.length);
    case StatisticsData::Box:
    case StatisticsData::CentredCircle:
        return sums(numbers, "Area", numbers.area);
    case StatisticsData::Circle:
        return circle(numbers);
    default:
        return {};
    }
}

QString latticeDistances(const RoiStatistics& numbers)
{
    const auto& pixels = numbers.reflectionPixels;
    if (pixels.empty())
        return {};
    QString text =
        QStringLiteral("\n\n# Lattice Distances\n# (x1,y1)      (x2,y2)      Distance\n");
    const auto place = [](const std::vector<int>& pixel) {
        return filled(QStringLiteral("(%1,%2)").arg(pixel[0]).arg(pixel[1]), PairWidth);
    };
    for (std::size_t i = 0; i + 1 < pixels.size(); ++i) {
        assert(i < numbers.lineSpotsString.size());
        text += "# " + place(pixels[i]) + place(pixels[i + 1]) +
                QString::fromStdString(numbers.lineSpotsString[i]) + '\n';
    }
    return text;
}

QString plot(const std::vector<std::vector<double>>& curve, const std::vector<std::string>& labels)
{
    if (curve.empty())
        return {};
    const QString first = QString::fromStdString(labels.at(0));
    QString text = "\n# " + first + QString(Gap, ' ') + QString::fromStdString(labels.at(1)) + '\n';
    for (const auto& row : curve) {
        // NaN is no mask.
        const bool masked = row[2] < 0 || row[2] > 0;
        text +=
            "  " + filled(number(row[0]), first.size() + Gap) + number(masked ? 0 : row[1]) + '\n';
    }
    return text;
}

}  // namespace

QString output::regionHead(const QString& path, const StatisticsData& region)
{
    return "# " + path + '\n' + (region.roiActive ? coordinates(region) : QString());
}

QString output::regionReport(const QString& path, const StatisticsData& region,
                             const RoiStatistics& numbers)
{
    QString report = regionHead(path, region);
    if (!region.roiActive)
        return report;
    report += block(region, numbers);
    if (region.roiType == StatisticsData::Line)
        report += latticeDistances(numbers);
    return report + '\n' + plot(numbers.curve, numbers.curveLabels) +
           plot(numbers.secondCurve, numbers.secondCurveLabels);
}
