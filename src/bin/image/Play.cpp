// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Stepping through a series, and the summary.
#include "bin/image/Play.h"

#include "imagelib/ipc/MMessageQueue.h"
#include "logic/core/TarvikCore.h"
#include "logic/loading/StepTimes.h"
#include "logic/preload/PreloaderClient.h"
#include "logic/preload/PreloaderProcess.h"
#include "logic/service/TarvikService.h"
#include "logic/support/Console.h"
#include "logic/support/FailureSummary.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <ostream>

namespace tarvik::tool {

namespace {

constexpr std::chrono::seconds startOfPreloader{60};

/// The viewer's program, which is in the same folder.
QString viewerProgram()
{
    const QString path = QCoreApplication::applicationDirPath() + QStringLiteral("/tarvik");
    if (!QFileInfo(path).isExecutable())
        throw morvend::MNoFileAccessException(
            "Cannot start the preloader, play with --no-preloader: " + path.toStdString());
    return path;
}

/// Waits for it. Doesn't throw: called from the event loop.
bool preloaderComes()
{
    using morvend::imglib::MMessageQueue;
    try {
        const MMessageQueue queue(PreloaderClient::messageQueueId().c_str());
        return queue.waitForPeer(startOfPreloader) != MMessageQueue::NoPeer;
    } catch (const morvend::MException& error) {
        console::warn("tarvik-image: " + std::string(error.what()) + '\n');
        return false;
    }
}

/// One run through the series. The first image, with the opening of the series and the start of
/// the preloader, comes before the clock starts.
class Run : public QObject {
public:
    Run(TarvikService& view, int frames, bool preloader)
        : _view(view)
        , _left(frames)
        , _preloader(preloader)
    {
        connect(&view, &TarvikService::newImageSignal, this, &Run::_arrived);
        connect(&view, &TarvikService::imageLoadErrorSignal, this, &Run::_failed);
    }

    /// Later images that can't be read are reported at the end, one line for each kind.
    /// @throws MRuntimeException when the first image can't be read
    void play(const std::string& path)
    {
        _view.openImage(path.c_str());
        QCoreApplication::exec();
        if (!_view.imageLoaded())
            throw morvend::MRuntimeException(_failure.toStdString());
        for (const std::string& line : _reasons.lines())
            console::warn("tarvik-image: " + line + '\n');
    }

    void report(std::ostream& out) const
    {
        const double seconds = static_cast<double>(_clockEnd) * 1e-9;
        const StepTimes& a = _before;
        const StepTimes& b = _after;
        out << "Size                  " << _view.imageSize().width() << " x "
            << _view.imageSize().height() << " pixels\n"
            << "Frames                " << _played << '\n';
        if (_failures)
            out << "Failed                " << _failures << '\n';
        if (_played == 0)
            return;
        out << line("Frames per second", _played / seconds, "") << "\nCache hits            "
            << b.hits - a.hits << " of " << _played << '\n';
        const auto share = [&](const char* name, double step) {
            out << line(name, 1e3 * step / _played, " ms") << "  "
                << static_cast<int>(100 * step / seconds + 0.5) << " %\n";
        };
        constexpr std::pair<StepTimes::Step, const char*> steps[] = {
            {StepTimes::Cache, "Cache"},
            {StepTimes::Source, "Source"},
            {StepTimes::Mask, "Mask"},
            {StepTimes::Statistics, "Statistics"},
            {StepTimes::Region, "Thumbnail, region"}};
        double rest = seconds;
        for (const auto& [step, name] : steps) {
            const double spent =
                std::chrono::duration<double>(b.spent[step] - a.spent[step]).count();
            share(name, spent);
            rest -= spent;
        }
        share("Hand-over to the view", rest);
    }

private:
    static std::string line(const char* name, double value, const char* unit)
    {
        char text[80];
        std::snprintf(text, sizeof text, "%-22s%.2f%s", name, value, unit);
        return text;
    }

    void _arrived()
    {
        if (!_clock.isValid())
            _begin();
        else
            ++_played;
        _next = _view.imageIndex() + 1;
        _goOn();
    }

    void _failed(const QString& reason)
    {
        if (!_view.imageLoaded()) {
            _failure = reason;
            return QCoreApplication::exit();
        }
        _reasons.add(_next, reason.toStdString());
        ++_failures;
        ++_next;
        _goOn();
    }

    void _begin()
    {
        if (_preloader && !preloaderComes())
            console::warn("tarvik-image: the preloader does not come\n");
        _before = StepTimes::now();
        _clock.start();
    }

    void _goOn()
    {
        if (_left-- > 0 && _next <= _view.lastIndex())
            return _view.openImage(_next);
        _clockEnd = _clock.nsecsElapsed();
        _after = StepTimes::now();
        QCoreApplication::exit();
    }

    TarvikService& _view;
    int _left;
    const bool _preloader;
    int _next = 0;
    int _played = 0;
    int _failures = 0;
    QString _failure;
    FailureSummary _reasons;
    QElapsedTimer _clock;
    qint64 _clockEnd = 0;
    StepTimes _before;
    StepTimes _after;
};

}  // namespace

void Play::run(const Arguments& arguments, std::ostream& out)
{
    int count = 1;
    char name[] = "tarvik-image";
    char* words[] = {name, nullptr};
    const QCoreApplication application(count, words);
    console::muteInformation();  // standard output is for the summary
    std::unique_ptr<PreloaderProcess> preloader;
    if (arguments.preloader)
        preloader = std::make_unique<PreloaderProcess>(viewerProgram(), true);
    TarvikCore core;
    core.setDefaultColorTable(QStringLiteral("High Dynamic Range"));
    Run run(*core.newService({}), arguments.playFrames, arguments.preloader);
    run.play(arguments.file);
    run.report(out);
}

}  // namespace tarvik::tool
