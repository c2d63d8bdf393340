// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Text and JSON from the records of the analysis.
#include "bin/image/Analysis.h"

#include "bin/image/JsonText.h"
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/analysis/roi/RoiComputer.h"
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "logic/support/Console.h"

#include <algorithm>
#include <ostream>
#include <type_traits>
#include <utility>

namespace tarvik::tool {

using morvend::imglib::MImage;

namespace {

/// Named numbers, as a JSON object or as lines for people.
class Report {
public:
    explicit Report(bool json)
        : _json(json)
    {}
    template <class T>
    void add(const std::string& name, const T& value)
    {
        if (_json)
            _object.add(name, jsonOf(value));
        else
            _line(name, textOf(value));
    }
    void write(std::ostream& out) const
    {
        if (_json)
            out << _object.text() << '\n';
        else
            out << _text;
    }

private:
    static std::string textOf(double value) { return numberOf(value).text(); }
    static std::string textOf(int value) { return ImageNumber(value).text(); }
    static std::string textOf(unsigned int value) { return ImageNumber(value).text(); }
    static std::string textOf(bool value) { return value ? "yes" : "no"; }
    static std::string textOf(const std::string& value) { return value; }
    template <class T>
    static std::string textOf(const std::vector<T>& values)
    {
        // Points of a curve are on lines of their own, all else in a row.
        constexpr bool Points = !std::is_same_v<T, double> && !std::is_same_v<T, int> &&
                                !std::is_same_v<T, std::string>;
        std::string text;
        for (const T& value : values)
            text += (Points ? "\n  " : text.empty() ? "" : "  ") + textOf(value);
        return text;
    }
    void _line(const std::string& name, const std::string& value)
    {
        constexpr std::size_t Column = 22;
        if (value.empty())
            return;
        _text += name;
        if (value.front() != '\n')
            _text.append(Column - std::min(Column - 1, name.size()), ' ');
        _text += value + '\n';
    }

    bool _json;
    JsonObject _object;
    std::string _text;
};

}  // namespace

Analysis::Analysis(Arguments arguments)
    : _arguments(std::move(arguments))
    , _chosen(_arguments)
    , _mask(_chosen.mask())
{}

void Analysis::write(std::ostream& out) const
{
    console::muteInformation();  // standard output is for the numbers
    switch (_arguments.command) {
    case Arguments::Command::Stats:
        return _writeStatistics(out);
    case Arguments::Command::Peaks:
        return _writePeaks(out);
    default:
        return _writeRegion(out);
    }
}

void Analysis::_writeStatistics(std::ostream& out) const
{
    ImageStatistics statistics;
    ComputeStatistics(&statistics).compute(_chosen.image, _mask);
    Report report(_arguments.json);
    report.add("minimum", statistics.minimum);
    report.add("maximum", statistics.maximum);
    report.add("mean", statistics.mean);
    report.add("sigma", statistics.sigma);
    report.add("foreground", statistics.foreground);
    report.add("background", statistics.background);
    report.add("zeros", statistics.zeros);
    report.add("defective", statistics.defective);
    report.add("saturated", statistics.saturated);
    report.add("sum", statistics.sum);
    report.add("hasNegatives", statistics.hasNegatives);
    if (!_arguments.countAt.empty()) {
        std::vector<std::vector<double>> counts;
        for (const double value : _arguments.countAt)
            counts.push_back({value, double(statistics.histogram.value(value))});
        report.add("countAt", counts);
    }
    report.write(out);
}

void Analysis::_writePeaks(std::ostream& out) const
{
    ImagePeaks peaks;
    peaks.setImage(_chosen.image, _mask);
    std::vector<std::vector<double>> rows;
    for (int i = 0; i < std::min(_arguments.count, peaks.numberOfPeaks()); ++i)
        rows.push_back({double(peaks[i].x), double(peaks[i].y), peaks[i].value});
    Report report(_arguments.json);
    report.add("peaks", rows);
    report.write(out);
}

void Analysis::_writeRegion(std::ostream& out) const
{
    RoiComputer region;
    region.setImage(_chosen.image);
    region.setMask(_mask);
    region.setStatisticsData(_arguments.region);
    const RoiStatistics result = region.compute();
    Report report(_arguments.json);
    report.add("integral", result.integral);
    report.add("mean", result.mean);
    report.add("sigma", result.sigma);
    report.add("length", result.length);
    report.add("area", result.area);
    report.add("backgroundMean", result.backgroundMean);
    report.add("backgroundSigma", result.backgroundSigma);
    report.add("intensity", result.intensity);
    report.add("intensitySigma", result.intensitySigma);
    report.add("centroidX", result.centroidX);
    report.add("centroidY", result.centroidY);
    report.add("minimum", result.minimum);
    report.add("maximum", result.maximum);
    report.add("curve", result.curve);
    report.add("curveLabels", result.curveLabels);
    report.add("secondCurve", result.secondCurve);
    report.add("secondCurveLabels", result.secondCurveLabels);
    report.add("reflectionPositions", result.reflectionPositions);
    report.add("reflectionPixels", result.reflectionPixels);
    report.add("lineSpotsString", result.lineSpotsString);
    report.write(out);
}

}  // namespace tarvik::tool
