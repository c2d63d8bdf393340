// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "bin/image/SeriesRegion.h"

#include "bin/image/CrashGuard.h"
#include "bin/image/JsonText.h"
#include "bin/image/Progress.h"
#include "bin/image/StopSignals.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/FormatRegistry.h"
#include "logic/regionseries/SeriesReport.h"
#include "logic/support/Console.h"

#include <chrono>
#include <map>
#include <optional>
#include <ostream>
#include <semaphore>

namespace tarvik::tool {

namespace {

using namespace std::chrono_literals;

/// How soon a signal is noticed.
constexpr auto SignalPause = 100ms;

std::string jsonLine(const StatisticsData& region, const SeriesPoint& point)
{
    JsonObject object;
    object.add("image", jsonOf(point.number));
    if (point.state == SeriesPoint::State::Masked)
        object.add("masked", jsonOf(true));
    else if (!point.good())
        object.add("failed", jsonOf(true));
    if (point.good()) {
        object.add("mean", jsonOf(point.mean));
        object.add("sum", jsonOf(point.sum));
        object.add("maximum", jsonOf(point.maximum));
        if (region.roiType == StatisticsData::Circle) {
            object.add("intensity", jsonOf(point.intensity));
            object.add("intensitySigma", jsonOf(point.intensitySigma));
        }
    }
    return object.text() + '\n';
}

/// Writes points in the order of their numbers, whatever the order in which they come.
class Lines {
public:
    Lines(const Arguments& arguments, std::ostream& out)
        : _arguments(arguments)
        , _out(out)
    {}

    void add(const RegionSeries::News& news)
    {
        for (const SeriesPoint& point : news.points)
            _waiting.emplace(point.number, point);
        if (!_begun && news.last >= 0)
            _begin();
        while (!_waiting.empty() && _waiting.begin()->first <= news.settled) {
            const SeriesPoint& point = _waiting.begin()->second;
            _out << (_arguments.json ? jsonLine(_arguments.region, point)
                                     : seriesreport::row(_arguments.region, point));
            ++_written;
            _failed += point.state == SeriesPoint::State::Failed;
            _waiting.erase(_waiting.begin());
        }
        _out.flush();
    }
    int written() const { return _written; }
    int failed() const { return _failed; }

private:
    void _begin()
    {
        _begun = true;
        if (!_arguments.json)
            _out << seriesreport::head(QString::fromLocal8Bit(_arguments.file.c_str()),
                                       _arguments.region)
                        .toLocal8Bit()
                        .toStdString()
                 << '\n'
                 << seriesreport::columns(_arguments.region);
    }

    const Arguments& _arguments;
    std::ostream& _out;
    std::map<int, SeriesPoint> _waiting;
    bool _begun = false;
    int _written = 0;
    int _failed = 0;
};

std::string share(int done, int images)
{
    return std::to_string(done) + " of " + std::to_string(images) + " images";
}

}  // namespace

void seriesregion::run(const Arguments& arguments, std::ostream& out)
{
    console::muteInformation();  // standard output is for the numbers
    morvend::imglib::FormatRegistry::readHdf5OutOfProcess(true);
    CrashGuard::note("reading the series: " + arguments.file);
    const StopSignals stop;
    Lines lines(arguments, out);
    std::counting_semaphore<> changed(0);
    RegionSeries series({arguments.file, arguments.region}, [&] { changed.release(); });
    RegionSeries::News news;
    std::optional<Progress> progress;
    while (!news.finished) {
        if (changed.try_acquire_for(SignalPause)) {
            news = series.take();
            lines.add(news);
            if (!progress && news.last >= 0)
                progress.emplace(news.last);
            if (progress)
                progress->show(news.settled);
        }
        try {
            stop.check();
        } catch (const morvend::imglib::MTerminateException& request) {
            const std::string left = share(lines.written(), news.images);
            if (!arguments.json)
                out << "# Incomplete: " << left << std::endl;
            throw morvend::imglib::MTerminateException(std::string(request.what()) + " after " +
                                                       left);
        }
    }
    progress.reset();
    for (const std::string& failure : news.failures)
        console::warn("tarvik-image: " + failure + '\n');
    if (!news.error.empty())
        throw morvend::MRuntimeException(news.error);
    if (lines.failed() != 0)
        throw morvend::MRuntimeException(share(lines.failed(), news.images) + " can't be read");
}

}  // namespace tarvik::tool
