// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/regionseries/SeriesReport.h"

#include "logic/output/RegionReport.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr std::size_t FirstWidth = 12;
/// Room for nearly all numbers with all digits.
constexpr std::size_t ColumnWidth = 20;

bool isCircle(const StatisticsData& region) { return region.roiType == StatisticsData::Circle; }

/// The shortest text that gives the same number again.
std::string textOf(double value)
{
    if (std::isnan(value))
        return "nan";
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return {text, end};
}

std::string aligned(const std::vector<std::string>& texts)
{
    std::string line;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        line += texts[i];
        if (i + 1 < texts.size()) {
            const std::size_t column = FirstWidth + i * ColumnWidth;
            line.append(std::max(column, line.size() + 1) - line.size(), ' ');
        }
    }
    return line + '\n';
}

}  // namespace

std::string seriesreport::columns(const StatisticsData& region)
{
    std::vector<std::string> titles{"# Image", "Mean", "Sum", "Maximum"};
    if (isCircle(region))
        titles.insert(titles.end(), {"Intensity", "Sigma"});
    return aligned(titles);
}

std::string seriesreport::row(const StatisticsData& region, const SeriesPoint& point)
{
    using Quantity = SeriesPoint::Quantity;
    std::vector<std::string> texts{"  " + std::to_string(point.number)};
    for (const Quantity quantity : {Quantity::Mean, Quantity::Sum, Quantity::Maximum})
        texts.push_back(textOf(point.value(quantity)));
    if (isCircle(region)) {
        texts.push_back(textOf(point.value(Quantity::Intensity)));
        texts.push_back(textOf(point.good() ? point.intensitySigma : std::nan("")));
    }
    return aligned(texts);
}

QString seriesreport::head(const QString& path, const StatisticsData& region)
{
    StatisticsData active = region;
    active.roiActive = true;
    QString lines = output::regionHead(path, active);
    if (region.roiType == StatisticsData::CentredCircle)
        lines += QStringLiteral("# Centre X %1\n# Centre Y %2\n")
                     .arg(region.powderX, 0, 'g', 10)
                     .arg(region.powderY, 0, 'g', 10);
    return lines;
}

QString seriesreport::text(const QString& path, const StatisticsData& region,
                           const std::vector<SeriesPoint>& points, const RegionSeries::News& state)
{
    std::string lines =
        "# Images " + std::to_string(state.first) + " to " + std::to_string(state.last) + '\n';
    if (state.done < state.images)
        lines += "# Incomplete: " + std::to_string(state.done) + " of " +
                 std::to_string(state.images) + " images\n";
    std::vector<std::string> reasons = state.failures;
    if (!state.error.empty())
        reasons.push_back("Ended early: " + state.error);
    for (std::string reason : reasons) {
        std::replace(reason.begin(), reason.end(), '\n', ' ');
        lines += "# " + reason + '\n';
    }
    lines += '\n' + columns(region);
    for (const SeriesPoint& point : points)
        lines += row(region, point);
    return head(path, region) + QString::fromStdString(lines);
}
