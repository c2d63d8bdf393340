// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/HalvoService.h"

#include "logic/detector/HalvoMonitor.h"

HalvoService::HalvoService(QObject* parent, const QString& machineSettings)
    : QObject(parent)
    , _machineSettings(machineSettings)
{
    qRegisterMetaType<MImage>("morvend::imglib::MImage");
}

QString HalvoService::defaultHost() { return HalvoMonitor::defaultHost(); }
int HalvoService::defaultPort() { return HalvoMonitor::defaultPort(); }
void HalvoService::setDefaultHost(const QString& host) { HalvoMonitor::setDefaultHost(host); }
void HalvoService::setDefaultPort(int port) { HalvoMonitor::setDefaultPort(port); }

void HalvoService::setConnected(bool connect)
{
    if (connect)
        emit error(QStringLiteral("This version cannot connect to a detector: %1:%2")
                       .arg(defaultHost())
                       .arg(defaultPort()));
}

bool HalvoService::permission() const
{
    const GlobalSettings settings(_machineSettings);
    return settings.isWritable() || settings.usersMayDriveDetector();
}

bool HalvoService::userPermission() const
{
    return GlobalSettings(_machineSettings).usersMayDriveDetector();
}

void HalvoService::setUserPermission(bool permitted)
{
    GlobalSettings settings(_machineSettings);
    if (!settings.isWritable())
        return;
    settings.setValue(GlobalSettings::accessibleInUserMode, permitted);
    emit permissionSignal(permitted);
}
