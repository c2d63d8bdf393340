// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Start and stop of a monitor, and its defaults.
#include "logic/detector/HalvoMonitor.h"

#include "logic/support/Console.h"

#include <QSettings>

namespace {

const QString hostKey = QStringLiteral("HalvoHost");
const QString portKey = QStringLiteral("HalvoPort");
const QString minPauseKey = QStringLiteral("HalvoMinPause");

/// A setting of the user, read each time.
QVariant setting(const QString& key, const QVariant& absent)
{
    const QSettings settings;
    return settings.contains(key) ? settings.value(key) : absent;
}

}  // namespace

HalvoMonitor::HalvoMonitor(QObject* parent)
    : QObject(parent)
{}

void HalvoMonitor::start(const std::string& host, int port, double)
{
    _running = true;
    const QString message = QStringLiteral("This version cannot show pictures of a detector: %1:%2")
                                .arg(QString::fromStdString(host))
                                .arg(port);
    console::warn("ERROR: " + message.toStdString() + '\n');
    emit errorSignal(message);
}

void HalvoMonitor::stop() { _running = false; }

QString HalvoMonitor::defaultHost()
{
    return setting(hostKey, QStringLiteral("0.0.0.0")).toString();
}
int HalvoMonitor::defaultPort() { return setting(portKey, 80).toInt(); }
double HalvoMonitor::defaultMinPause() { return setting(minPauseKey, 0.0).toDouble(); }
void HalvoMonitor::setDefaultHost(const QString& host) { QSettings().setValue(hostKey, host); }
void HalvoMonitor::setDefaultPort(int port) { QSettings().setValue(portKey, port); }
void HalvoMonitor::setDefaultMinPause(double seconds)
{
    QSettings().setValue(minPauseKey, seconds);
}

void HalvoMonitor::newImageSlot()
{
    // Without a detector no picture is waiting.
}
