// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Queueing of requests and re-scans, and the watch over those that take long.
#include "logic/loading/ImageLoader.h"

#include "logic/loading/ImageLoaderThread.h"
#include "logic/support/Assert.h"

#include <QFile>

#include <string>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr qint64 scanPeriod = 100;  // ms
/// A view that waits longer shows it.
constexpr auto quietTime = 400ms;
/// A request that has been waiting longer is shown with its time.
constexpr auto plainTime = 2s;
/// A job that has been at its files longer keeps no other file waiting.
constexpr auto patience = 500ms;

/// A text that may hold paths, for users.
QString textOf(const std::string& text)
{
    return QFile::decodeName(QByteArray::fromStdString(text));
}

std::chrono::milliseconds inMilliseconds(RequestList::Clock::duration time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time);
}

}  // namespace

ImageLoader::ImageLoader(QObject* parent)
    : QObject(parent)
    , _desk(std::make_shared<LoaderDesk>(LoaderDesk::Signals{
          [this] { emit newImage(); }, [this] { emit imageContainerChangedSignal(); },
          [this](const std::string& message) { emit loadError(textOf(message)); },
          [this](const std::string& message) { emit notice(textOf(message)); },
          [this] { emit readAheadSignal(); }}))
    , _context(std::make_shared<LoaderContext>(_desk))
    , _strand(Strand::create(WorkerPool::process()))
{
    _desk->serve(_context.get());
    _updateTimer.setSingleShot(true);
    connect(&_updateTimer, &QTimer::timeout, this, &ImageLoader::update);
    _updateClock.start();
    _watch.setSingleShot(true);
    connect(&_watch, &QTimer::timeout, this, &ImageLoader::_look);
    // An answer ends the text at once.
    connect(this, &ImageLoader::newImage, this, &ImageLoader::_look, Qt::QueuedConnection);
    connect(this, &ImageLoader::loadError, this, &ImageLoader::_look, Qt::QueuedConnection);
    connect(this, &ImageLoader::notice, this, &ImageLoader::_look, Qt::QueuedConnection);
}

ImageLoader::~ImageLoader()
{
    _desk->serve(nullptr);
    _leaveBehind();
}

void ImageLoader::_leaveBehind()
{
    _context->abandon();
    _strand->leaveBehind();
    // Closing files may take as long as reading them: not here, and after the job that runs.
    _strand->post([context = std::move(_context)]() mutable {
        context.reset();
        WorkerPool::process().askToTidy();
    });
}

void ImageLoader::_supersede()
{
    auto context = std::make_shared<LoaderContext>(_desk);
    _desk->serve(context.get());
    _leaveBehind();
    _context = std::move(context);
    _latest.reset();
    _strand = Strand::create(WorkerPool::process());
}

void ImageLoader::open(Task task, const Data& data, bool signalLoadError)
{
    if (_emptying)
        return;
    if (task != TaskOpenIndex) {
        if (_context->requests.hangs(patience))
            _supersede();
        _sinceOpening.clear();
        _openedPath = data.path;
    }
    _ask({task, data, signalLoadError});
}

void ImageLoader::step(int n, const Data& data, bool signalLoadError)
{
    assert(n != 0);
    if (!_emptying)
        _ask({TaskOpenIndex, data, signalLoadError, {n}, true});
}

void ImageLoader::seek(const Data& data, bool forward)
{
    if (_emptying)
        return;
    const int step = forward ? 1 : -1;
    Data beside = data;
    beside.index -= step;
    _ask({TaskOpenIndex, beside, true, {step}, false});
}

void ImageLoader::_ask(const Request& request)
{
    const bool byNumber = request.task == TaskOpenIndex;
    if (byNumber && !_openingWaits())
        _sinceOpening.clear();
    const auto latest = _latest.lock();
    if (!byNumber || !latest || !latest->join(request))
        _post(request);
}

bool ImageLoader::_openingWaits() const
{
    const auto first = _sinceOpening.empty() ? nullptr : _sinceOpening.front().lock();
    return first && _context->requests.queued(first->number());
}

void ImageLoader::_post(const Request& request)
{
    const unsigned int number =
        _context->requests.enter({_nameOf(request), request.task != TaskPushImage, request.way()});
    const auto job = std::make_shared<ImageLoaderThread>(_context, number, request);
    _strand->post([job] { job->run(); });
    const bool byNumber = request.task == TaskOpenIndex;
    _latest.reset();
    if (byNumber)
        _latest = job;
    if (!byNumber || !_sinceOpening.empty())
        _sinceOpening.push_back(job);
    if (!_watch.isActive())
        _watch.start(quietTime);
}

std::string ImageLoader::_nameOf(const Request& request)
{
    const std::string file = _openedPath.empty() ? "the image" : _openedPath;
    if (request.fromAsked)
        return "another image of " + file;
    const int beside = request.steps.empty() ? 0 : request.steps.front();
    return request.task == TaskOpenIndex
               ? "image " + std::to_string(request.data.index + beside) + " of " + file
               : file;
}

void ImageLoader::_look()
{
    const auto oldest = _context->requests.oldest();
    if (!oldest)
        return _say({});
    const auto time = inMilliseconds(oldest->time);
    if (time < quietTime) {
        _watch.start(quietTime - time);
        return _say({});
    }
    const QString what = textOf(oldest->what);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time).count();
    _say(time < plainTime ? QStringLiteral("Loading %1 ...").arg(what)
                          : QStringLiteral("Waiting for %1 for %2 s ...").arg(what).arg(seconds));
    if (_openingWaits() && _context->requests.hangs(patience)) {
        std::vector<Request> again;
        for (const auto& each : std::exchange(_sinceOpening, {}))
            if (const auto job = each.lock())
                again.push_back(job->request());
        _supersede();
        for (const Request& each : again)
            _post(each);
    }
    _watch.start(time < plainTime ? quietTime / 2 : 1000ms - time % 1000ms);
}

void ImageLoader::_say(const QString& text)
{
    if (std::exchange(_said, text) != text)
        emit waitingSignal(text);
}

void ImageLoader::dropTaskQueue()
{
    _context->requests.drop();
    _sinceOpening.clear();  // must not be requested again if a job hangs
    if (_watch.isActive())
        _watch.start(0ms);  // dropped requests are not waited for
}

void ImageLoader::emptyTaskQueue()
{
    _emptying = true;
    _latest.reset();
    _strand->drop();
    _strand->waitForDone();
    _emptying = false;
    _context->listQueued = false;
    if (_context->scanQueued.exchange(false))
        _updateTimer.start(static_cast<int>(scanPeriod));  // a scan was dropped: later, then
}

void ImageLoader::results(std::list<Data>& out) { _desk->take(out); }

int ImageLoader::firstIndex() const { return _desk->bounds().first; }

int ImageLoader::lastIndex() const { return _desk->bounds().last; }

SeriesState ImageLoader::seriesState() const { return _desk->bounds(); }

void ImageLoader::listReadAhead()
{
    if (!_context->listQueued.exchange(true))
        _strand->post([context = _context] { context->listReadAhead(); });
}

void ImageLoader::update()
{
    if (_updateClock.elapsed() >= scanPeriod) {
        _updateClock.restart();
        // One scan that has not begun yet serves all who asked for it.
        if (!_context->scanQueued.exchange(true))
            _strand->post([context = _context] { context->scan(); });
    } else if (!_updateTimer.isActive()) {
        _updateTimer.start(static_cast<int>(scanPeriod));
    }
}
