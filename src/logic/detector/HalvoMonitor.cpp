// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The monitor of a view, its thread, and its defaults.
#include "logic/detector/HalvoMonitor.h"

#include "imagelib/control/MHalvoMonitor.h"
#include "imagelib/image/MException.h"
#include "logic/detector/AbstractWorker.h"

#include <QDeadlineTimer>
#include <QMutex>
#include <QSettings>
#include <QUrl>
#include <QWaitCondition>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

using morvend::MException;
using morvend::MTimeoutException;
using morvend::imglib::MHalvoMonitor;
using morvend::imglib::MImage;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int PictureMs = 100;
/// Until a unit is asked once more that could not be switched to give pictures.
constexpr std::chrono::milliseconds SwitchPause{100};

const QString HostKey = QStringLiteral("HalvoHost");
const QString PortKey = QStringLiteral("HalvoPort");
const QString MinPauseKey = QStringLiteral("HalvoMinPause");

/// A setting of the user, read each time.
QVariant setting(const QString& key, const QVariant& absent)
{
    const QSettings settings;
    return settings.contains(key) ? settings.value(key) : absent;
}

/// A pause in whole microseconds; none for what is no number or negative, a day at most.
Clock::duration pauseOf(double seconds)
{
    return std::chrono::microseconds(
        seconds > 0 ? static_cast<std::int64_t>(std::min(seconds, 86400.0) * 1e6) : 0);
}

}  // namespace

/// Asks the unit for pictures until it is aborted, asleep while it is not to run.
/// Threads: run() on its own, the commands on that of its owner.
class HalvoMonitor::Worker : public AbstractWorker {
public:
    explicit Worker(HalvoMonitor& owner)
        : _owner(owner)
    {}

    /// @param number  that the pictures of this start carry
    void start(const std::string& host, int port, double minPause, unsigned int number);
    void stop();
    void abort();
    /// The last picture has been taken.
    void cont();
    void run() override;

private:
    struct Order {
        bool reconnect = false;
        std::string host{};
        int port = 0;
        double minPause = 0;
        unsigned int number = 0;
    };

    std::optional<Order> _next();
    void _connect(const Order& order);
    bool _mayHandOn();
    void _sleep(Clock::duration pause);
    void _cycle(const Order& order);

    HalvoMonitor& _owner;
    // Of the thread of run().
    std::unique_ptr<MHalvoMonitor> _monitor;
    bool _switchOn = false;  // the unit must still be made to give pictures

    std::atomic<bool> _cancel = false;  // what the unit is being asked for
    QMutex _mutex;                      // for all below
    QWaitCondition _changed;
    Order _order;
    bool _running = false;
    bool _waiting = false;  // for a picture to be taken
    bool _abortRequested = false;
};

void HalvoMonitor::Worker::start(const std::string& host, int port, double minPause,
                                 unsigned int number)
{
    const QMutexLocker lock(&_mutex);
    _running = true;
    _cancel = true;
    _order = {true, host, port, minPause, number};
    // A picture from before a stop may have been dropped on its way to the view.
    _waiting = false;
    _changed.wakeAll();
}

void HalvoMonitor::Worker::stop()
{
    const QMutexLocker lock(&_mutex);
    _running = false;
    _cancel = true;
    _changed.wakeAll();
}

void HalvoMonitor::Worker::abort()
{
    const QMutexLocker lock(&_mutex);
    _running = true;
    _abortRequested = true;
    _cancel = true;
    _changed.wakeAll();
}

void HalvoMonitor::Worker::cont()
{
    const QMutexLocker lock(&_mutex);
    _waiting = false;
    _changed.wakeAll();
}

/// Sleeps until there is something to do. @returns nothing to end
std::optional<HalvoMonitor::Worker::Order> HalvoMonitor::Worker::_next()
{
    const QMutexLocker lock(&_mutex);
    while (!_running && !_abortRequested)
        _changed.wait(&_mutex);
    if (_abortRequested)
        return {};
    _cancel = false;
    Order order = _order;
    _order.reconnect = false;
    return order;
}

void HalvoMonitor::Worker::_connect(const Order& order)
{
    if (!_monitor || order.reconnect) {
        _monitor = std::make_unique<MHalvoMonitor>(order.host, order.port);
        _switchOn = order.reconnect;
    }
    if (_switchOn)
        _monitor->setEnabled(true, _cancel);
    _switchOn = false;
}

/// Waits until the view has taken the last picture. @returns false to end
bool HalvoMonitor::Worker::_mayHandOn()
{
    const QMutexLocker lock(&_mutex);
    while (_waiting && !_abortRequested)
        _changed.wait(&_mutex);
    _waiting = true;
    return !_abortRequested;
}

/// Sleeps until a command comes that ends the present cycle, or the pause is over.
void HalvoMonitor::Worker::_sleep(Clock::duration pause)
{
    const QDeadlineTimer end(pause, Qt::PreciseTimer);
    const QMutexLocker lock(&_mutex);
    while (!_cancel && !end.hasExpired())
        _changed.wait(&_mutex, end);
}

void HalvoMonitor::Worker::_cycle(const Order& order)
{
    _connect(order);
    const auto begun = Clock::now();
    const MImage picture = _monitor->monitor(PictureMs, _cancel);
    if (!_cancel && !_mayHandOn())
        return;
    QMetaObject::invokeMethod(
        &_owner,
        [owner = &_owner, picture, number = order.number] { owner->_take(picture, number); },
        Qt::QueuedConnection);
    _sleep(begun + pauseOf(order.minPause) - Clock::now());
}

void HalvoMonitor::Worker::run()
{
    while (const auto order = _next()) {
        try {
            _cycle(*order);
        } catch (const MTimeoutException&) {
            // No new picture: there is none while the detector takes none.
            if (_switchOn)
                _sleep(SwitchPause);
        } catch (const std::exception& failure) {
            if (_cancel)
                continue;
            emit error(QString::fromUtf8(failure.what()));
            if (_switchOn)
                _sleep(SwitchPause);
            // A unit that was gone may have forgotten it.
            _switchOn = true;
        }
    }
}

HalvoMonitor::HalvoMonitor(QObject* parent)
    : QObject(parent)
{}

HalvoMonitor::~HalvoMonitor()
{
    if (!_worker)
        return;
    _worker->abort();
    _thread.quit();
    _thread.wait();
}

void HalvoMonitor::_makeWorker()
{
    _worker = new Worker(*this);
    connect(_worker, &AbstractWorker::error, this, &HalvoMonitor::errorSignal);
    connect(_worker, &AbstractWorker::finished, _worker, &QObject::deleteLater);
    connect(&_thread, &QThread::started, _worker, &AbstractWorker::work);
    _worker->moveToThread(&_thread);
    _thread.start();
}

void HalvoMonitor::start(const std::string& host, int port, double minPause)
{
    if (!_worker)
        _makeWorker();
    _running = true;
    const bool url = host.find("://") != std::string::npos;
    _worker->start(url ? QUrl(QString::fromStdString(host)).host().toStdString() : host, port,
                   minPause, ++_starts);
}

void HalvoMonitor::stop()
{
    _running = false;
    if (_worker)
        _worker->stop();
}

/// Takes a picture of the worker, in the thread of this object.
void HalvoMonitor::_take(const MImage& picture, unsigned int start)
{
    // What was on its way when the monitor was stopped or got another address is not wanted; what
    // is empty would never be shown.
    if (!_running || start != _starts || picture.empty())
        _worker->cont();
    else
        emit newImage(picture);
}

QString HalvoMonitor::defaultHost()
{
    return setting(HostKey, QStringLiteral("0.0.0.0")).toString();
}
int HalvoMonitor::defaultPort() { return setting(PortKey, 80).toInt(); }
double HalvoMonitor::defaultMinPause() { return setting(MinPauseKey, 0.0).toDouble(); }
void HalvoMonitor::setDefaultHost(const QString& host) { QSettings().setValue(HostKey, host); }
void HalvoMonitor::setDefaultPort(int port) { QSettings().setValue(PortKey, port); }
void HalvoMonitor::setDefaultMinPause(double seconds)
{
    QSettings().setValue(MinPauseKey, seconds);
}

void HalvoMonitor::newImageSlot()
{
    if (_worker)
        _worker->cont();
}
